#include <absl/strings/str_split.h>
#include <benchmark/benchmark.h>

#include <random>
#include <stdexcept>

#include "kivtools/WinUtil/Strings.h"

namespace kiv {
namespace {

/// Fields of 0 to 20 characters between separators of the set.
Text Fields(std::size_t size, TextView separators) {
  std::mt19937 random(5'101);
  Text text;
  while (text.size() < size) {
    text.append(random() % 21, static_cast<char>('a' + random() % 26));
    text.push_back(separators[random() % separators.size()]);
  }
  return text;
}

StringList ExplodeKiv(TextView separators, const Text& text) {
  return Explode(separators, text, INT32_MAX);
}

StringList ExplodeAbsl(TextView separators, const Text& text) {
  return separators.size() == 1
             ? std::vector<std::string>(absl::StrSplit(text, separators[0]))
             : std::vector<std::string>(absl::StrSplit(text, absl::ByAnyChar({separators.data(), separators.size()})));
}

StringList SplitKiv(TextView separators, const Text& text) {
  StringList pieces;
  SplitTextOnSeparator(text, separators, pieces);
  return pieces;
}

StringList SplitAbsl(TextView separators, const Text& text) {
  return separators.size() == 1
             ? std::vector<std::string>(absl::StrSplit(text, separators[0], absl::SkipEmpty()))
             : std::vector<std::string>(
                   absl::StrSplit(text, absl::ByAnyChar({separators.data(), separators.size()}), absl::SkipEmpty()));
}

using Split = StringList (*)(TextView separators, const Text& text);

void Measure(benchmark::State& state, TextView separators, std::size_t size, Split split, Split peer) {
  const Text text = Fields(size, separators);
  if (split(separators, text) != peer(separators, text)) {
    throw std::logic_error("the pieces differ");
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(split(separators, text));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void Hash(benchmark::State& state) {
  const Text text = Fields(static_cast<std::size_t>(state.range(0)), ";");
  for (auto _ : state) {
    benchmark::DoNotOptimize(StringHash(text));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void CleanPath(benchmark::State& state) {
  const Text text(static_cast<std::size_t>(state.range(0)), '\\');
  for (auto _ : state) {
    benchmark::DoNotOptimize(RemoveDualSlshPath(text));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

constexpr std::size_t kHundredMebibytes = 100U << 20U;

const int kRegistered = [] {
  for (const std::size_t size : {std::size_t{80}, std::size_t{8'000}, std::size_t{1'000'000}, kHundredMebibytes}) {
    for (const TextView separators : {";", ",;\t ", ",;|/\\.: \t"}) {
      const auto add = [&](const std::string& family, Split split, Split peer, const std::string& who) {
        const std::string name = family + std::to_string(separators.size()) + "in" + std::to_string(size) + "/" + who;
        benchmark::RegisterBenchmark(name.c_str(),
                                     [=](benchmark::State& state) { Measure(state, separators, size, split, peer); });
      };
      add("Explode/", ExplodeKiv, ExplodeAbsl, "kiv");
      add("Explode/", ExplodeAbsl, ExplodeKiv, "absl");
      add("SplitTextOnSeparator/", SplitKiv, SplitAbsl, "kiv");
      add("SplitTextOnSeparator/", SplitAbsl, SplitKiv, "absl");
    }
  }
  return 0;
}();

BENCHMARK(Hash)->Name("StringHash/text/kiv")->Arg(10)->Arg(40)->Arg(100)->Arg(1'000)->Arg(kHundredMebibytes);
BENCHMARK(CleanPath)->Name("RemoveDualSlshPath/slashes/kiv")->Arg(1'000)->Arg(kHundredMebibytes);

}  // namespace
}  // namespace kiv
