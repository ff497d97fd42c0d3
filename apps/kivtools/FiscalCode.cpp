#include "apps/kivtools/FiscalCode.h"

#include <algorithm>

#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

bool BeginsWithRo(std::string_view code) noexcept {
  return code.size() >= 2 && kiv::ascii::ToUpper(code[0]) == 'R' && kiv::ascii::ToUpper(code[1]) == 'O';
}

}  // namespace

std::string_view WithoutRo(std::string_view code) noexcept {
  if (BeginsWithRo(code)) {
    code.remove_prefix(2);
    code.remove_prefix(std::min(code.find_first_not_of(' '), code.size()));
  }
  return code;
}

bool IsForeign(std::string_view code) noexcept {
  return code.size() > 2 && kiv::ascii::IsUpper(code[0]) && kiv::ascii::IsUpper(code[1]) && !BeginsWithRo(code);
}

}  // namespace kivtools
