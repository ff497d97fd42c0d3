#include <benchmark/benchmark.h>
#include <unicode/rbnf.h>

#include <memory>

#include "bench/Values.h"
#include "kivtools/Text.h"
#include "kivtools/WinUtil/NumbersInWords.h"
#include "kivtools/WinUtil/ReadableWords.h"

namespace {

using bench::Ring;

const std::vector<std::int64_t> kNumbers = bench::MixedNumbers(1'000'000'000, 1);

std::unique_ptr<icu::RuleBasedNumberFormat> Spellout() {
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_unique<icu::RuleBasedNumberFormat>(icu::URBNF_SPELLOUT, icu::Locale("ro"), status);
  bench::Require(U_SUCCESS(status) != 0, "no spell-out rules for ro");
  icu::UnicodeString words;
  format->format(std::int64_t{21}, words);
  bench::Require(words == icu::UnicodeString::fromUTF8("douăzeci şi unu") ||
                     words == icu::UnicodeString::fromUTF8("douăzeci și unu"),
                 "spell-out of 21");
  return format;
}

void WordsKiv(benchmark::State& state) {
  bench::Require(kiv::InLitere(2345) == "DOUAMIITREISUTEPATRUZECISICINCI", "InLitere(2345)");
  Ring numbers(kNumbers);
  for (auto _ : state) {
    benchmark::DoNotOptimize(kiv::InLitere(numbers.Next()));
  }
}
BENCHMARK(WordsKiv)->Name("Words/integer/kiv");

void WordsIcu(benchmark::State& state) {
  const auto format = Spellout();
  Ring numbers(kNumbers);
  for (auto _ : state) {
    icu::UnicodeString words;
    format->format(numbers.Next(), words);
    benchmark::DoNotOptimize(words);
  }
}
BENCHMARK(WordsIcu)->Name("Words/integer/icu");

void WordsFloor(benchmark::State& state) {
  const std::string_view source = "NOUASUTENOUAZECISINOUAMIINOUASUTENOUAZECISINOUAMIINOUASUTENOUAZECISI70";
  bench::Require(source.size() == 70, "70 bytes");
  for (auto _ : state) {
    std::string copy(source);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(WordsFloor)->Name("Words/integer/floor");

void MoneyWordsKiv(benchmark::State& state) {
  bench::Require(kiv::InLitere(kiv::Currency::FromRaw(15'000)) == "UNU LEI SI CINCIZECI BANI", "1.50 in words");
  Ring numbers(kNumbers);
  for (auto _ : state) {
    const std::int64_t lei = numbers.Next();
    benchmark::DoNotOptimize(kiv::InLitere(kiv::Currency::FromRaw(lei * 10'000 + lei % 100 * 100)));
  }
}
BENCHMARK(MoneyWordsKiv)->Name("Words/money/kiv");

void MoneyWordsIcu(benchmark::State& state) {
  const auto format = Spellout();
  Ring numbers(kNumbers);
  for (auto _ : state) {
    const std::int64_t lei = numbers.Next();
    icu::UnicodeString words;
    format->format(lei, words);
    words.append(u" lei si ");
    format->format(lei % 100, words);
    words.append(u" bani");
    benchmark::DoNotOptimize(words);
  }
}
BENCHMARK(MoneyWordsIcu)->Name("Words/money/icu");

// Both write "douăzeci și unu"; only the first has "de" where the grammar wants it.
void ReadableWordsKiv(benchmark::State& state) {
  bench::Require(kiv::ToUtf8(kiv::InCuvinte(21)) == "douăzeci şi unu", "InCuvinte(21)");
  Ring numbers(kNumbers);
  for (auto _ : state) {
    benchmark::DoNotOptimize(kiv::InCuvinte(numbers.Next()));
  }
}
BENCHMARK(ReadableWordsKiv)->Name("Words/readable/kiv");

void ReadableWordsIcu(benchmark::State& state) {
  WordsIcu(state);
}
BENCHMARK(ReadableWordsIcu)->Name("Words/readable/icu");

}  // namespace
