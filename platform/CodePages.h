#pragma once

#include <cstdint>

#include "core/Service.h"
#include "kivtools/Text.h"

namespace kiv::platform {

/// What the system answers about code pages and about itself. A test puts a system with other answers in its place.
class CodePages {
 public:
  CodePages() = default;
  virtual ~CodePages() = default;
  CodePages(const CodePages&) = delete;
  CodePages& operator=(const CodePages&) = delete;

  /// The text, read in a code page, as UTF-16 up to its first zero; nothing where the system knows no such code page or
  /// the result has more units than the text has bytes. Bytes that mean nothing become U+FFFD or what the system's
  /// table has in their place.
  [[nodiscard]] virtual WideText ToWide(TextView text, std::uint32_t codePage) const;

  /// UTF-16 in a code page, up to its first zero; nothing where the system knows no such code page or the result has
  /// more than one byte beyond the number of units. Units that the code page lacks become "?" or a similar letter.
  [[nodiscard]] virtual Text FromWide(std::u16string_view wide, std::uint32_t codePage) const;

  /// The number of the code page of the system's narrow texts. Example: 65001 on today's Linux.
  [[nodiscard]] virtual std::uint32_t AnsiCodePage() const;

  /// The system's family as Windows numbers it: 0 the 16-bit host, 1 Windows 95, 2 NT; 2 on POSIX; -1 if unknown.
  [[nodiscard]] virtual std::int32_t FamilyOfSystem() const;
};

/// The answers in use: the system's own, unless a test puts others in their place.
extern constinit Service<const CodePages> code_pages_service;

}  // namespace kiv::platform
