#include <Judy.h>
#include <absl/container/btree_map.h>
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <boost/intrusive/avl_set.hpp>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/Values.h"
#include "kivtools/UTreeAVL2.h"

namespace {

using Payload = std::int64_t;
using Keys = std::vector<std::int32_t>;

/// What every container offers to the benchmarks: Insert(key, payload), Find(key) and Walk(), the sum of all payloads
/// weighted by their place, so that both order and content count.
template <bool largeBuffers>
class Kiv {
 public:
  void Insert(std::int32_t key, Payload payload) { std::memcpy(index_.Find(key, true), &payload, sizeof payload); }
  Payload Find(std::int32_t key) { return Read(index_.Find(key, false)); }
  std::uint64_t Walk() {
    std::uint64_t place = 0;
    std::uint64_t sum = 0;
    index_.ForEachInOrder(
        [&](std::int32_t, void* payload) { sum += ++place * static_cast<std::uint64_t>(Read(payload)); });
    return sum;
  }

 private:
  static Payload Read(const void* from) {
    Payload payload = 0;
    std::memcpy(&payload, from, sizeof payload);
    return payload;
  }
  kiv::TKivAVLIndex index_{sizeof(Payload), largeBuffers};
};

/// Nodes come from blocks of 4096, as an engineer would do who wants speed and addresses that stay.
class BoostAvlSet {
 public:
  ~BoostAvlSet() { set_.clear(); }
  void Insert(std::int32_t key, Payload payload) {
    Set::insert_commit_data place;
    if (set_.insert_check(key, place).second) {
      if (used_ == kBlock) {
        blocks_.push_back(std::make_unique<Node[]>(kBlock));
        used_ = 0;
      }
      Node& node = blocks_.back()[used_++];
      node.key = key;
      node.payload = payload;
      set_.insert_commit(node, place);
    }
  }
  Payload Find(std::int32_t key) { return set_.find(key)->payload; }
  std::uint64_t Walk() {
    std::uint64_t place = 0;
    std::uint64_t sum = 0;
    for (const Node& node : set_) {
      sum += ++place * static_cast<std::uint64_t>(node.payload);
    }
    return sum;
  }

 private:
  struct Node : boost::intrusive::avl_set_base_hook<boost::intrusive::link_mode<boost::intrusive::normal_link>> {
    std::int32_t key;
    Payload payload;
  };
  struct KeyOf {
    using type = std::int32_t;  // NOLINT(readability-identifier-naming): the name that boost looks for
    const type& operator()(const Node& node) const { return node.key; }
  };
  using Set = boost::intrusive::avl_set<Node, boost::intrusive::key_of_value<KeyOf>,
                                        boost::intrusive::constant_time_size<false>>;
  static constexpr std::size_t kBlock = 4096;
  std::vector<std::unique_ptr<Node[]>> blocks_;
  std::size_t used_ = kBlock;
  Set set_;
};

template <class Map>
class StdLike {
 public:
  void Insert(std::int32_t key, Payload payload) { map_.try_emplace(key, payload); }
  Payload Find(std::int32_t key) { return map_.find(key)->second; }
  std::uint64_t Walk() {
    std::uint64_t place = 0;
    std::uint64_t sum = 0;
    for (const auto& entry : map_) {
      sum += ++place * static_cast<std::uint64_t>(entry.second);
    }
    return sum;
  }

 private:
  Map map_;
};

/// JudyL sorts keys as unsigned words.
class JudyL {
 public:
  JudyL() = default;
  JudyL(const JudyL&) = delete;
  JudyL& operator=(const JudyL&) = delete;
  ~JudyL() { JudyLFreeArray(&array_, PJE0); }
  void Insert(std::int32_t key, Payload payload) {
    *reinterpret_cast<Payload*>(JudyLIns(&array_, Word(key), PJE0)) = payload;
  }
  Payload Find(std::int32_t key) { return *reinterpret_cast<Payload*>(JudyLGet(array_, Word(key), PJE0)); }
  std::uint64_t Walk() {
    std::uint64_t place = 0;
    std::uint64_t sum = 0;
    Word_t key = 0;
    for (PPvoid_t at = JudyLFirst(array_, &key, PJE0); at != nullptr; at = JudyLNext(array_, &key, PJE0)) {
      sum += ++place * static_cast<std::uint64_t>(*reinterpret_cast<Payload*>(at));
    }
    return sum;
  }

 private:
  static Word_t Word(std::int32_t key) { return static_cast<std::uint32_t>(key) ^ 0x80000000U; }
  Pvoid_t array_ = nullptr;
};

/// Distinct keys spread over the whole range: a bijective mixer over 0, 1, 2, ...
Keys RandomKeys(std::size_t count) {
  Keys keys(count);
  for (std::size_t i = 0; i < count; ++i) {
    auto mixed = static_cast<std::uint32_t>(i);
    mixed = (mixed ^ mixed >> 16U) * 0x85EBCA6BU;
    mixed = (mixed ^ mixed >> 13U) * 0xC2B2AE35U;
    keys[i] = static_cast<std::int32_t>(mixed ^ mixed >> 16U);
  }
  return keys;
}

Keys AscendingKeys(std::size_t count) {
  Keys keys(count);
  for (std::size_t i = 0; i < count; ++i) {
    keys[i] = static_cast<std::int32_t>(i);
  }
  return keys;
}

/// Runs of 64 neighbouring keys at random places, as document numbers come by series.
Keys ClusteredKeys(std::size_t count) {
  const Keys places = RandomKeys(count / 64 + 1);
  Keys keys(count);
  for (std::size_t i = 0; i < count; ++i) {
    keys[i] = static_cast<std::int32_t>((static_cast<std::uint32_t>(places[i / 64]) & ~63U) + i % 64);
  }
  return keys;
}

template <class Container>
void Fill(Container& container, const Keys& keys) {
  for (const std::int32_t key : keys) {
    container.Insert(key, key);
  }
}

template <class Container>
void CheckAgainstMap(const Keys& keys) {
  const Keys some(keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(keys.size(), 5000)));
  Container container;
  StdLike<std::map<std::int32_t, Payload>> map;
  Fill(container, some);
  Fill(map, some);
  bench::Require(container.Walk() == map.Walk(), "walk of an index");
  bench::Require(std::ranges::all_of(some, [&](std::int32_t key) { return container.Find(key) == key; }),
                 "find in an index");
}

void PerEntry(benchmark::State& state, std::size_t count) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
  state.counters["ns_per_entry"] = benchmark::Counter(
      static_cast<double>(count) * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

std::size_t AllocatedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// Keys and the orders in which they are asked for.
struct Orders {
  Orders(Keys (*make)(std::size_t), std::size_t count) : keys(make(count)), again(keys), mixed(kMixed) {
    std::mt19937 random(1);
    std::ranges::shuffle(again, random);
    again.reserve(kRound + count);
    while (again.size() < kRound) {
      again.insert(again.end(), again.begin(), again.begin() + static_cast<std::ptrdiff_t>(count));
    }
    std::ranges::generate(mixed, [&] { return keys[random() % count]; });
  }

  static constexpr std::size_t kRound = 1U << 16U;  // the questions of one iteration
  static constexpr std::size_t kMixed = 1U << 20U;
  Keys keys;
  Keys again;  // one order, the same in every round: branch predictors learn it while there are few keys
  Keys mixed;  // too long an order to be learnt
};

const Orders& OrdersOf(Keys (*make)(std::size_t), std::size_t count) {
  static std::map<std::pair<Keys (*)(std::size_t), std::size_t>, std::unique_ptr<Orders>> all;
  std::unique_ptr<Orders>& orders = all[{make, count}];
  if (orders == nullptr) {
    orders = std::make_unique<Orders>(make, count);
  }
  return *orders;
}

/// A container with those keys, which has agreed with a map; filled once for all operations and repetitions.
template <class Container>
Container& Filled(Keys (*make)(std::size_t), std::size_t count) {
  static std::map<std::pair<Keys (*)(std::size_t), std::size_t>, std::unique_ptr<Container>> all;
  std::unique_ptr<Container>& container = all[{make, count}];
  if (container == nullptr) {
    const Keys& keys = OrdersOf(make, count).keys;
    CheckAgainstMap<Container>(keys);
    container = std::make_unique<Container>();
    Fill(*container, keys);
  }
  return *container;
}

/// Random keys come in a new order each time, lest the branch predictors learn it.
template <class Container>
void Insert(benchmark::State& state, Keys (*make)(std::size_t), std::size_t count) {
  Keys keys = OrdersOf(make, count).keys;
  CheckAgainstMap<Container>(keys);
  std::mt19937 random(2);
  double bytes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    if (make == &RandomKeys) {
      std::ranges::shuffle(keys, random);
    }
    const std::size_t before = AllocatedBytes();
    auto container = std::make_unique<Container>();
    state.ResumeTiming();
    Fill(*container, keys);
    state.PauseTiming();
    bytes = static_cast<double>(AllocatedBytes() - before);
    container.reset();
    state.ResumeTiming();
  }
  PerEntry(state, count);
  state.counters["bytes_per_entry"] = bytes / static_cast<double>(count);
}

template <class Container>
void Find(benchmark::State& state, Keys (*make)(std::size_t), std::size_t count) {
  auto& container = Filled<Container>(make, count);
  const Keys& mixed = OrdersOf(make, count).mixed;
  std::size_t at = 0;
  for (auto _ : state) {
    for (std::size_t i = 0; i < Orders::kRound; ++i) {
      benchmark::DoNotOptimize(container.Find(mixed[at + i]));
    }
    at = (at + Orders::kRound) % Orders::kMixed;
  }
  PerEntry(state, Orders::kRound);
}

template <class Container>
void FindAgain(benchmark::State& state, Keys (*make)(std::size_t), std::size_t count) {
  auto& container = Filled<Container>(make, count);
  const Keys& again = OrdersOf(make, count).again;
  for (auto _ : state) {
    for (const std::int32_t key : again) {
      benchmark::DoNotOptimize(container.Find(key));
    }
  }
  PerEntry(state, again.size());
}

template <class Container>
void Walk(benchmark::State& state, Keys (*make)(std::size_t), std::size_t count) {
  auto& container = Filled<Container>(make, count);
  for (auto _ : state) {
    benchmark::DoNotOptimize(container.Walk());
  }
  PerEntry(state, count);
}

/// Random keys in every size, the other kinds in two, all of them in the largest, which scripts/bench leaves out.
template <class Container>
void RegisterAll(const std::string& who) {
  const struct {
    const char* name;
    Keys (*make)(std::size_t);
  } kKinds[] = {{"random", &RandomKeys}, {"ascending", &AscendingKeys}, {"clustered", &ClusteredKeys}};
  for (const std::size_t count : {10U, 100U, 1'000U, 10'000U, 100'000U, 1'000'000U, 10'000'000U}) {
    for (const auto& [kind, make] : kKinds) {
      if (make != &RandomKeys && count != 1'000 && count != 100'000 && count != 10'000'000) {
        continue;
      }
      const auto add = [&, kind = kind, make = make](const std::string& operation, auto* run) {
        const std::string name = "Avl/" + operation + "_" + kind + "_" + std::to_string(count) + "/" + who;
        benchmark::RegisterBenchmark(name.c_str(), run, make, count)->Unit(benchmark::kMillisecond);
      };
      add("insert", &Insert<Container>);
      add("find", &Find<Container>);
      if (make == &RandomKeys) {
        add("find_again", &FindAgain<Container>);
      }
      add("walk", &Walk<Container>);
    }
  }
}

[[maybe_unused]] const bool kRegistered = [] {
  RegisterAll<Kiv<false>>("kiv");
  RegisterAll<Kiv<true>>("kiv_large");
  RegisterAll<BoostAvlSet>("boost_avl_set");
  RegisterAll<StdLike<std::map<std::int32_t, Payload>>>("std_map");
  RegisterAll<StdLike<absl::btree_map<std::int32_t, Payload>>>("absl_btree_map");
  RegisterAll<JudyL>("judyl");
  return true;
}();

}  // namespace
