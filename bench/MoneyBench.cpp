#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unicode/numberformatter.h>

#include <charconv>
#include <iomanip>
#include <locale>
#include <sstream>

#include "bench/Values.h"
#include "kivtools/WinUtil/Money.h"

namespace {

using bench::Ring;
using kiv::Currency;

/// Magnitudes up to 10^15 ten-thousandths, a fifth of them negative.
const std::vector<std::int64_t> kAmounts = [] {
  std::vector<std::int64_t> amounts = bench::MixedNumbers(1'000'000'000'000'000, 2);
  for (std::size_t i = 0; i < amounts.size(); i += 5) {
    amounts[i] = -amounts[i];
  }
  return amounts;
}();

struct Romanian : std::numpunct<char> {
  [[nodiscard]] char do_decimal_point() const override { return ','; }
  [[nodiscard]] char do_thousands_sep() const override { return '.'; }
  [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

struct RomanianMoney : std::moneypunct<char> {
  [[nodiscard]] char do_decimal_point() const override { return ','; }
  [[nodiscard]] char do_thousands_sep() const override { return '.'; }
  [[nodiscard]] std::string do_grouping() const override { return "\3"; }
  [[nodiscard]] int do_frac_digits() const override { return 4; }
  [[nodiscard]] std::string do_curr_symbol() const override { return ""; }
  [[nodiscard]] std::string do_positive_sign() const override { return ""; }
  [[nodiscard]] std::string do_negative_sign() const override { return "-"; }
  [[nodiscard]] pattern do_neg_format() const override { return {{sign, symbol, value, none}}; }
  [[nodiscard]] pattern do_pos_format() const override { return {{sign, symbol, value, none}}; }
};

std::string WithFmt(const std::locale& locale, std::int64_t raw) {
  const std::int64_t magnitude = raw < 0 ? -raw : raw;
  return fmt::format(locale, "{}{:L}, {:04}", raw < 0 ? "-" : "", magnitude / 10'000, magnitude % 10'000);
}

void WriteKiv(benchmark::State& state) {
  const std::locale locale(std::locale::classic(), new Romanian);
  for (const std::int64_t raw : kAmounts) {
    bench::Require(kiv::CurrencyToRoStr(Currency::FromRaw(raw), 4) == WithFmt(locale, raw), "CurrencyToRoStr");
  }
  Ring amounts(kAmounts);
  for (auto _ : state) {
    benchmark::DoNotOptimize(kiv::CurrencyToRoStr(Currency::FromRaw(amounts.Next()), 4));
  }
}
BENCHMARK(WriteKiv)->Name("Money/write/kiv");

void WriteFmt(benchmark::State& state) {
  const std::locale locale(std::locale::classic(), new Romanian);
  Ring amounts(kAmounts);
  for (auto _ : state) {
    benchmark::DoNotOptimize(WithFmt(locale, amounts.Next()));
  }
}
BENCHMARK(WriteFmt)->Name("Money/write/fmt");

void WriteIcu(benchmark::State& state) {
  const auto format = icu::number::NumberFormatter::withLocale("ro")
                          .precision(icu::number::Precision::fixedFraction(4))
                          .scale(icu::number::Scale::powerOfTen(-4));
  UErrorCode status = U_ZERO_ERROR;
  std::string text;
  format.formatInt(-12'345'678'900, status).toString(status).toUTF8String(text);
  bench::Require(text == "-1.234.567,8900", "ICU number format: " + text);
  Ring amounts(kAmounts);
  for (auto _ : state) {
    std::string result;
    format.formatInt(amounts.Next(), status).toString(status).toUTF8String(result);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(WriteIcu)->Name("Money/write/icu");

void WriteFloor(benchmark::State& state) {
  Ring amounts(kAmounts);
  for (auto _ : state) {
    char buffer[24];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, amounts.Next()).ptr;
    std::string text(buffer, end);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(WriteFloor)->Name("Money/write/floor");

std::vector<std::string> WrittenAmounts() {
  std::vector<std::string> texts;
  texts.reserve(std::size(kAmounts));
  for (const std::int64_t raw : kAmounts) {
    texts.push_back(kiv::CurrencyToRoStrFaraSpatiu(Currency::FromRaw(raw), 4));
  }
  return texts;
}

void ReadKiv(benchmark::State& state) {
  const std::vector<std::string> texts = WrittenAmounts();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    bench::Require(kiv::RoStrToCurrency(texts[i]).Raw() == kAmounts[i], "RoStrToCurrency");
  }
  Ring ring(texts);
  for (auto _ : state) {
    benchmark::DoNotOptimize(kiv::RoStrToCurrency(ring.Next()));
  }
}
BENCHMARK(ReadKiv)->Name("Money/read/kiv");

void ReadGetMoney(benchmark::State& state) {
  const std::vector<std::string> texts = WrittenAmounts();
  std::istringstream stream;
  stream.imbue(std::locale(std::locale::classic(), new RomanianMoney));
  const auto read = [&stream](const std::string& text) {
    long double raw = 0;
    stream.clear();
    stream.str(text);
    stream >> std::get_money(raw);
    return raw;
  };
  for (std::size_t i = 0; i < texts.size(); ++i) {
    bench::Require(static_cast<std::int64_t>(read(texts[i])) == kAmounts[i], "get_money of " + texts[i]);
  }
  Ring ring(texts);
  for (auto _ : state) {
    benchmark::DoNotOptimize(read(ring.Next()));
  }
}
BENCHMARK(ReadGetMoney)->Name("Money/read/get_money");

void ReadFloor(benchmark::State& state) {
  std::vector<std::string> texts;
  texts.reserve(std::size(kAmounts));
  for (const std::int64_t raw : kAmounts) {
    texts.push_back(std::to_string(raw));
  }
  Ring ring(texts);
  for (auto _ : state) {
    const std::string& text = ring.Next();
    std::int64_t raw = 0;
    std::from_chars(text.data(), text.data() + text.size(), raw);
    benchmark::DoNotOptimize(raw);
  }
}
BENCHMARK(ReadFloor)->Name("Money/read/floor");

}  // namespace
