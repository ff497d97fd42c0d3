#include "dataset/query/RowBits.h"
#include "dataset/query/VectorRun.h"

// Conditions on texts of a dictionary: worked out once for each entry, looked up for each row.

namespace kiv::query {

using store::Cell;

namespace {

bool IsSet(const std::vector<std::uint32_t>& entries, std::uint32_t code) noexcept {
  return (entries[code / 32] >> (code % 32) & 1U) != 0;
}

}  // namespace

void VectorRun::JudgeEntries(std::uint32_t step, Place place) {
  const store::Column& column = contents_.columns[plan_.entryFields[step]];
  EntryTruth& truth = entries_[step];
  const std::uint32_t count = column.texts.EntryCount();
  const std::size_t words = count / 32 + 1;
  truth.truth.resize(words);
  truth.falsity.resize(words);
  truth.faulty.resize(words);
  const Cell* result = nullptr;
  std::uint32_t trueOnes = 0;
  std::uint32_t falseOnes = 0;
  for (std::uint32_t code = 0; code < count; ++code) {
    const Cell text{.bytes = column.texts.Read(code, contents_.large), .isNull = false};
    const std::uint32_t bit = std::uint32_t{1} << (code % 32);
    if (!evaluator_.EvaluateFor(place, text, result)) {
      truth.faulty[code / 32] |= bit;
      truth.hasFaults = true;
    } else if (!result->isNull && result->bits != 0) {
      truth.truth[code / 32] |= bit;
      truth.first = trueOnes++ == 0 ? static_cast<std::int32_t>(code) : truth.first;
      truth.last = static_cast<std::int32_t>(code);
    } else if (!result->isNull) {
      truth.falsity[code / 32] |= bit;
      ++falseOnes;
    }
  }
  truth.nullIsFaulty = !evaluator_.EvaluateFor(place, Cell(), result);
  truth.ofNull = truth.nullIsFaulty ? Cell() : *result;
  truth.isRange = trueOnes + falseOnes == count && !truth.nullIsFaulty &&
                  truth.last - truth.first + 1 == static_cast<std::int32_t>(trueOnes);
}

bool VectorRun::RunEntries(const Step& step) {
  const EntryTruth& truth = entries_[step.detail];
  const store::Column& column = contents_.columns[plan_.entryFields[step.detail]];
  Condition& out = conditions_[step.out];
  const Bits valid = NotNull(column);
  const Bits nulls = Without(FirstRows(count_), valid);
  if (truth.isRange) {
    InRange(column, {.low = truth.first, .high = truth.last, .isEmpty = truth.last < truth.first}, out.truth);
    out.truth = Both(out.truth, valid);
    out.falsity = Without(valid, out.truth);
  } else {
    out = {};
    const auto* const codes = ElementsOf<std::uint32_t>(column);
    ForEach(valid, [&](std::size_t row) {
      const std::uint64_t bit = std::uint64_t{1} << (row % 64);
      out.truth[row / 64] |= IsSet(truth.truth, codes[row]) ? bit : 0;
      out.falsity[row / 64] |= IsSet(truth.falsity, codes[row]) ? bit : 0;
      return true;
    });
    const Bits active = Both(valid, masks_.back().active);
    if (truth.hasFaults && !ForEach(active, [&](std::size_t row) { return !IsSet(truth.faulty, codes[row]); })) {
      return false;
    }
  }
  if (!truth.ofNull.isNull) {
    Bits& ofNull = truth.ofNull.bits != 0 ? out.truth : out.falsity;
    ofNull = Either(ofNull, nulls);
  }
  return !truth.nullIsFaulty || IsEmpty(Both(nulls, masks_.back().active));
}

}  // namespace kiv::query
