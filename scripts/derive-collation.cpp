// Prints, in the form of C++ tables, the weights that ICU's Romanian collator gives to the bytes of Windows-1250 on its
// three levels, numbered from 1: up to three for a byte, the first in the lowest eight bits.
#include <unicode/ucnv.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <vector>

namespace {

constexpr std::size_t kLevels = 3;
/// One byte's weights on a level, in their order.
using Weights = std::vector<std::uint32_t>;

std::array<Weights, kLevels> Ask(UCollator* collator, UConverter* converter, char byte, UErrorCode& error) {
  std::array<UChar, 4> units{};
  const std::int32_t count = ucnv_toUChars(converter, units.data(), 4, &byte, 1, &error);
  UCollationElements* const elements = ucol_openElements(collator, units.data(), count, &error);
  std::array<Weights, kLevels> weights;
  for (std::int32_t element = 0; (element = ucol_next(elements, &error)) != UCOL_NULLORDER;) {
    // The two upper bits of the third weight are about case first and continuations.
    const auto primary = static_cast<std::uint32_t>(ucol_primaryOrder(element));
    const auto secondary = static_cast<std::uint32_t>(ucol_secondaryOrder(element));
    const auto tertiary = static_cast<std::uint32_t>(ucol_tertiaryOrder(element)) & 0x3FU;
    if (primary != 0 && secondary == 0 && tertiary == 0) {
      weights[0].back() |= primary;  // the second half of a long one
      continue;
    }
    if (primary != 0) {
      weights[0].push_back(primary << 16U);
    }
    if (secondary != 0) {
      weights[1].push_back(secondary);
    }
    if (tertiary != 0) {
      weights[2].push_back(tertiary);
    }
  }
  ucol_closeElements(elements);
  return weights;
}

bool Print(const char* name, const std::array<Weights, 256>& bytes) {
  std::map<std::uint32_t, unsigned> ranks;
  for (const Weights& weights : bytes) {
    for (const std::uint32_t weight : weights) {
      ranks[weight] = 0;
    }
  }
  unsigned rank = 0;
  for (auto& [weight, number] : ranks) {
    number = ++rank;
  }
  std::printf("inline constexpr std::array<std::uint32_t, 256> %s = {\n", name);
  for (const Weights& weights : bytes) {
    if (rank > 255 || weights.size() > 3) {
      std::fprintf(stderr, "%s: more weights than the table can hold\n", name);
      return false;
    }
    unsigned packed = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
      packed |= ranks[weights[i]] << (8 * i);
    }
    std::printf("0x%02X,", packed);
  }
  std::puts("};\n");
  return true;
}

}  // namespace

int main() {
  UErrorCode error = U_ZERO_ERROR;
  UCollator* const collator = ucol_open("ro", &error);
  UConverter* const converter = ucnv_open("windows-1250", &error);
  std::array<std::array<Weights, 256>, kLevels> levels;
  for (unsigned byte = 0; byte < 256 && U_SUCCESS(error); ++byte) {
    const auto weights = Ask(collator, converter, static_cast<char>(byte), error);
    for (std::size_t level = 0; level < kLevels; ++level) {
      levels[level][byte] = weights[level];
    }
  }
  if (U_FAILURE(error)) {
    std::fprintf(stderr, "ICU: %s\n", u_errorName(error));
    return 1;
  }
  const bool isWhole = Print("kLetters", levels[0]) && Print("kMarks", levels[1]) && Print("kForms", levels[2]);
  ucnv_close(converter);
  ucol_close(collator);
  return isWhole && std::fflush(stdout) == 0 ? 0 : 1;
}
