#include "kivtools/WinUtil/Versions.h"

#include <array>

#include "kivtools/Ascii.h"
#include "platform/Paths.h"
#include "tools/CEVersionInfo/VersionTexts.h"

namespace kiv {
namespace {

/// Major, minor, release, build; unsigned, because they wrap.
using Parts = std::array<std::uint32_t, 4>;

bool Analyse(Parts& parts, TextView version) noexcept {
  parts = {};
  std::size_t current = 0;
  for (const char character : version) {
    if (character == '.' && current + 1 < parts.size()) {
      ++current;
    } else if (ascii::IsDigit(character)) {
      parts[current] = parts[current] * 10 + static_cast<std::uint32_t>(character - '0');
    } else {
      return false;
    }
  }
  return true;
}

Parts AnalyseOrRefuse(TextView version) {
  Parts parts{};
  if (!Analyse(parts, version)) {
    throw Error(Text(version) + " nu este un numar de versiune valid");
  }
  return parts;
}

}  // namespace

bool AnalizeazaNrVersiune(std::int32_t& major, std::int32_t& minor, std::int32_t& release, std::int32_t& build,
                          TextView version) noexcept {
  Parts parts{};
  const bool valid = Analyse(parts, version);
  major = static_cast<std::int32_t>(parts[0]);
  minor = static_cast<std::int32_t>(parts[1]);
  release = static_cast<std::int32_t>(parts[2]);
  build = static_cast<std::int32_t>(parts[3]);
  return valid;
}

bool NumarulDeVersiuneEsteValid(TextView version) noexcept {
  Parts parts{};
  return Analyse(parts, version);
}

std::int32_t CompareNrVersiune(TextView a, TextView b) {
  const Parts left = AnalyseOrRefuse(a);
  const Parts right = AnalyseOrRefuse(b);
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i] != right[i]) {
      return static_cast<std::int32_t>(left[i] - right[i]);
    }
  }
  return 0;
}

Text GetFileVersionKiv(TextView fileName) {
  return version::ReadVersionTexts(platform::PathFromText(fileName)).strings[version::kFileVersion];
}

}  // namespace kiv
