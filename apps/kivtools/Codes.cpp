#include "apps/kivtools/Codes.h"

#include <algorithm>

#include "apps/kivtools/input/Blanks.h"
#include "apps/kivtools/input/Bytes.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

bool HasRo(std::string_view code) noexcept {
  return code.size() >= 2 && kiv::ascii::ToUpper(code[0]) == 'R' && kiv::ascii::ToUpper(code[1]) == 'O';
}

}  // namespace

bool MayHaveGaps(std::string_view code) noexcept {
  return HasAny(code, '-', kBlanks[0].front(), kBlanks[1].front(), kBlanks[2].front());
}

std::string WithoutGaps(std::string_view code) {
  std::string joined;
  while (!code.empty()) {
    const std::size_t blank = BlankAtBegin(code);
    joined.append(code, 0, blank == 0 ? 1 : 0);
    code.remove_prefix(std::max<std::size_t>(blank, 1));
  }
  std::string plain;
  for (std::size_t at = 0; at < joined.size(); ++at) {
    const bool between = at > 0 && at + 1 < joined.size() && joined[at - 1] != '-' && joined[at + 1] != '-';
    plain.append(joined[at] == '-' && between ? 0 : 1, joined[at]);
  }
  return plain;
}

std::string_view WithoutRo(std::string_view code) noexcept {
  if (HasRo(code)) {
    code.remove_prefix(2);
    code.remove_prefix(std::min(code.find_first_not_of(' '), code.size()));
  }
  return code;
}

bool BeginsWithRo(std::string_view code) noexcept {
  const std::string_view number = WithoutRo(code);
  return HasRo(code) && !number.empty() && kiv::ascii::IsDigit(number.front());
}

bool IsForeign(std::string_view code) noexcept {
  return code.size() > 2 && kiv::ascii::IsUpper(code[0]) && kiv::ascii::IsUpper(code[1]) && !HasRo(code);
}

}  // namespace kivtools
