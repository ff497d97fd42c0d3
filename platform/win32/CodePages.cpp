#include "platform/CodePages.h"

#include <windows.h>

#include <limits>

namespace kiv::platform {
namespace {

constexpr std::size_t kLongest = std::numeric_limits<int>::max() - 1;

/// Cuts the buffer at what was written (0 after a failure) and at the first zero in it.
template <class Characters>
Characters Finished(Characters buffer, int written) {
  buffer.resize(static_cast<std::size_t>(written));
  buffer.resize(std::min(buffer.find(typename Characters::value_type{}), buffer.size()));
  return buffer;
}

}  // namespace

WideText CodePages::ToWide(TextView text, std::uint32_t codePage) const {
  if (text.empty() || text.size() > kLongest) {
    return {};
  }
  static_assert(sizeof(wchar_t) == sizeof(char16_t));
  const int length = static_cast<int>(text.size());
  WideText wide(text.size(), u'\0');
  const int written =
      MultiByteToWideChar(codePage, 0, text.data(), length, reinterpret_cast<wchar_t*>(wide.data()), length);
  return Finished(std::move(wide), written);
}

Text CodePages::FromWide(std::u16string_view wide, std::uint32_t codePage) const {
  if (wide.empty() || wide.size() > kLongest) {
    return {};
  }
  const int length = static_cast<int>(wide.size());
  Text text(wide.size() + 1, '\0');
  const int written = WideCharToMultiByte(codePage, 0, reinterpret_cast<const wchar_t*>(wide.data()), length,
                                          text.data(), length + 1, nullptr, nullptr);
  return Finished(std::move(text), written);
}

std::uint32_t CodePages::AnsiCodePage() const {
  return GetACP();
}

std::int32_t CodePages::FamilyOfSystem() const {
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof version;
  return GetVersionExA(&version) != 0 ? static_cast<std::int32_t>(version.dwPlatformId) : -1;
}

}  // namespace kiv::platform
