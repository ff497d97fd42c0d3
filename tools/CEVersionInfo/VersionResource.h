#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "kivtools/Types.h"

namespace kiv::version {

/// The blocks of a version resource: one root with a fixed-information value, string tables and translations below it.
class VersionResource {
 public:
  /// Checks every block of the resource; empty where one is cut, reaches past the one that holds it, or has a key
  /// without end.
  static std::optional<VersionResource> Parse(std::vector<std::uint8_t> bytes);

  /// The value at a path of keys joined by backslashes; several together count as one, and letter case does not count.
  /// "\" is the root. Empty where a key is missing.
  /// Example: "\VarFileInfo\Translation" gives four bytes for each language.
  [[nodiscard]] std::span<const std::uint8_t> Query(TextView path) const;

  /// The text at a path, up to its first zero; empty where a key is missing. what Windows-1250 lacks is "?";
  /// the bytes of 16-bit programs are taken as they are.
  [[nodiscard]] Text QueryText(TextView path) const;

  /// The text of a key in the first string table, whatever language that is for; empty where there is none.
  [[nodiscard]] Text FirstTableText(TextView key) const;

 private:
  /// A block: a key, a value, and further blocks after them. Positions count from the start of the resource, because
  /// blocks are aligned to four bytes from there.
  struct Block {
    std::size_t keyBegin = 0, keyEnd = 0;
    std::size_t valueBegin = 0, valueEnd = 0;
    std::size_t textEnd = 0;  // the value's end if it is text, whatever kind the block claims
    std::size_t end = 0;
  };

  explicit VersionResource(std::vector<std::uint8_t> bytes);

  [[nodiscard]] std::uint16_t NumberAt(std::size_t position) const;
  [[nodiscard]] std::uint16_t CharacterAt(std::size_t position) const;
  [[nodiscard]] std::optional<Block> BlockAt(std::size_t begin, std::size_t limit) const;
  [[nodiscard]] bool KeyIs(const Block& block, TextView key) const;
  template <class Visit>
  bool ForEachChild(const Block& parent, Visit visit) const;
  [[nodiscard]] std::optional<Block> Child(const Block& parent, TextView key) const;
  [[nodiscard]] std::optional<Block> Find(TextView path) const;
  [[nodiscard]] Text TextOf(const std::optional<Block>& block) const;
  [[nodiscard]] bool IsSound(const Block& block, int levelsBelow) const;

  std::vector<std::uint8_t> bytes_;
  std::size_t width_ = 2;  // bytes of a character: two, but one in 16-bit programs
  Block root_;
};

}  // namespace kiv::version
