#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <numeric>
#include <random>

#include "Expect.h"
#include "kivtools/UTreeAVL2.h"
#include "tools/AvlAllocation.h"

namespace kiv {
namespace {

using testing::ElementsAre;
using Keys = std::vector<std::int32_t>;
using Node = TKivAVLIndex::NodeView;

Keys Walk(TKivAVLIndex& index, void (TKivAVLIndex::*walk)(const TKivAvlForEach&)) {
  Keys keys;
  (index.*walk)([&keys](std::int32_t key, void*) { keys.push_back(key); });
  return keys;
}

/// The textbook tree: heights are stored, balance is worked out from them, insertion recurses.
struct Model {
  std::int32_t key;
  int height = 1;
  std::unique_ptr<Model> side[2] = {};

  static int Height(const std::unique_ptr<Model>& tree) { return tree ? tree->height : 0; }
  [[nodiscard]] int Lean() const { return Height(side[1]) - Height(side[0]); }
  static void Measure(Model& tree) { tree.height = 1 + std::max(Height(tree.side[0]), Height(tree.side[1])); }

  static void Raise(std::unique_ptr<Model>& tree, int which) {
    std::unique_ptr<Model> top = std::move(tree->side[which]);
    tree->side[which] = std::move(top->side[1 - which]);
    Measure(*tree);
    top->side[1 - which] = std::move(tree);
    Measure(*top);
    tree = std::move(top);
  }

  static void Insert(std::unique_ptr<Model>& tree, std::int32_t key) {
    if (!tree) {
      tree = std::make_unique<Model>(Model{key});
      return;
    }
    if (key == tree->key) {
      return;
    }
    const int which = key > tree->key ? 1 : 0;
    Insert(tree->side[which], key);
    if (std::abs(tree->Lean()) > 1) {
      const int childLean = tree->side[which]->Lean();
      if (childLean == (which == 0 ? 1 : -1)) {
        Raise(tree->side[which], 1 - which);
      }
      Raise(tree, which);
    }
    Measure(*tree);
  }
};

/// Same keys at the same places, and every stored balance right.
bool SameTree(Node node, const std::unique_ptr<Model>& model) {
  if (!node || !model) {
    return !node && !model;
  }
  return node.Key() == model->key && node.Balance() == model->Lean() && std::abs(model->Lean()) <= 1 &&
         SameTree(node.Left(), model->side[0]) && SameTree(node.Right(), model->side[1]);
}

TEST(AvlIndex, EveryOrderOfUpToEightKeysGivesTheTextbookTree) {
  for (int count = 1; count <= 8; ++count) {
    Keys keys(static_cast<std::size_t>(count));
    std::iota(keys.begin(), keys.end(), -3);  // negative keys among them
    const Keys sorted = keys;
    do {
      TKivAVLIndex index(0, false);
      std::unique_ptr<Model> model;
      for (const std::int32_t key : keys) {
        index.Find(key, true);
        Model::Insert(model, key);
      }
      ASSERT_TRUE(SameTree(index.Root(), model)) << testing::PrintToString(keys);
      ASSERT_EQ(index.Height(), model->height);
      ASSERT_EQ(Walk(index, &TKivAVLIndex::ForEachInOrder), sorted);
    } while (std::ranges::next_permutation(keys).found);
  }
}

TEST(AvlIndex, RandomCallsAgreeWithAModel) {
  std::mt19937 random(20'241'122);
  const struct {
    std::int32_t payloadSize;
    bool largeBuffers;
    int calls;
    std::int64_t low, high;
    int appended = 0;  // of ten keys, how many come right behind the largest one
  } kCases[] = {
      {0, false, 300, 0, 200},           {1, true, 300, -100, 100},    {2, false, 300, INT_MIN, INT_MAX},
      {3, false, 300, 0, 200},           {4, true, 1000, 0, 100'000},  {8, false, 2000, INT_MIN, INT_MAX},
      {21, false, 1000, -500, 1000},     {5000, false, 300, 0, 1'000}, {4, false, 3000, 0, 1'000'000, 5},
      {4, false, 3000, 0, 1'000'000, 9},
  };
  for (const auto& [payloadSize, largeBuffers, calls, low, high, appended] : kCases) {
    SCOPED_TRACE(payloadSize);
    const auto size = static_cast<std::size_t>(payloadSize);
    TKivAVLIndex index(payloadSize, largeBuffers);
    std::unique_ptr<Model> model;
    std::map<std::int32_t, void*> payloads;
    EXPECT_EQ(index.Find(7, false), nullptr);
    EXPECT_EQ(index.NodeCount(), 1);
    for (int call = 0; call < calls; ++call) {
      const bool append = call > 0 && static_cast<int>(random() % 10) < appended;
      const auto key = append ? payloads.rbegin()->first + 1
                              : static_cast<std::int32_t>(std::uniform_int_distribution(low, high)(random));
      void* const found = index.Find(key, call == 0 || random() % 2 == 0);
      const auto [entry, added] = payloads.try_emplace(key, found);
      ASSERT_EQ(found, entry->second) << key;
      if (added) {
        ASSERT_EQ(std::string(static_cast<const char*>(found), size), std::string(size, '\0'));
      }
      std::memset(found, key, size);
      Model::Insert(model, key);
      ASSERT_TRUE(SameTree(index.Root(), model)) << "after " << key;
      ASSERT_EQ(index.Height(), model->height);
    }
    auto expected = payloads.begin();
    index.ForEachInOrder([&](std::int32_t key, void* payload) {
      ASSERT_EQ(key, expected->first);
      ASSERT_EQ(payload, expected->second);
      ASSERT_EQ(std::string(static_cast<const char*>(payload), size), std::string(size, static_cast<char>(key)));
      ++expected;
    });
    EXPECT_EQ(expected, payloads.end());
    EXPECT_EQ(index.NodeCount(), 1 + static_cast<std::int32_t>(payloads.size()));
  }
}

TEST(AvlIndex, BlocksGrowAndAreCountedByTheTable) {
  AvlMemory = 0;
  const std::int32_t kStride = 21;
  {
    // The capacities of the blocks in their order, each as often as it comes; one node is the header.
    const std::pair<int, std::int32_t> kSmall[] = {{3, 64},    {2, 128},   {2, 256}, {4, 512},
                                                   {10, 1024}, {20, 2048}, {3, 4096}};
    TKivAVLIndex index(8, false);
    std::int32_t key = 0;
    std::int32_t counted = 0;
    bool first = true;
    for (const auto& [times, capacity] : kSmall) {
      for (int block = 0; block < times; ++block) {
        for (std::int32_t node = 0; node < capacity; ++node) {
          if (!first || node > 0) {
            index.Find(key++, true);
          }
          if (node == 0 && !first) {
            counted += kStride * capacity + 16;
          }
          ASSERT_EQ(AvlMemory, counted) << key;
        }
        first = false;
      }
    }
    EXPECT_EQ(key + 1, 54'208 + 2 * 4096 + 4096);
  }
  const std::int32_t kLeftBehind = AvlMemory;
  EXPECT_GT(kLeftBehind, 0) << "small blocks stay counted";
  {
    TKivAVLIndex index(8, true);
    for (std::int32_t key = 0; key < 64; ++key) {
      EXPECT_EQ(AvlMemory, kLeftBehind);
      index.Find(key, true);
    }
    EXPECT_EQ(AvlMemory, kLeftBehind + kStride * 100'000 + 16);
  }
  EXPECT_EQ(AvlMemory, kLeftBehind - (kStride * 100'000 + 16)) << "two blocks off, one was added";
  AvlMemory = 0;
}

/// Lets a number of allocations succeed and fails the next one.
class FailingAllocation {
 public:
  explicit FailingAllocation(int succeeding) {
    left_ = succeeding;
    avl::allocate_zeroed = [](std::size_t count, std::size_t bytes) {
      return left_-- == 0 ? nullptr : std::calloc(count, bytes);
    };
  }
  ~FailingAllocation() { avl::allocate_zeroed = &std::calloc; }
  [[nodiscard]] static bool HasFailed() { return left_ < 0; }

 private:
  static inline int left_ = 0;
};

TEST(AvlIndex, WantOfMemoryLeavesTheIndexAsItWas) {
  for (const bool largeBuffers : {false, true}) {
    const std::int32_t keys = largeBuffers ? 300'000 : 60'000;
    int failures = 0;
    for (bool failed = true; failed; ++failures) {
      FailingAllocation allocation(failures);
      try {
        TKivAVLIndex index(3, largeBuffers);
        for (std::int32_t key = 0; key < keys; ++key) {
          const Node root = index.Root();
          const std::int32_t rootKey = root ? root.Key() : -1;
          const std::int32_t memory = AvlMemory;
          try {
            index.Find(key, true);
          } catch (const std::bad_alloc&) {
            ASSERT_EQ(index.NodeCount(), key + 2) << "the attempt is counted";
            ASSERT_EQ(index.Root() ? index.Root().Key() : -1, rootKey);
            ASSERT_EQ(AvlMemory, memory);
            ASSERT_EQ(Walk(index, &TKivAVLIndex::ForEachInOrder).size(), static_cast<std::size_t>(key));
            index.Find(key, true);  // memory is back
            ASSERT_EQ(Walk(index, &TKivAVLIndex::ForEachInOrder).size(), static_cast<std::size_t>(key + 1));
            break;
          }
        }
      } catch (const std::bad_alloc&) {
        EXPECT_LE(failures, 1) << "only construction itself may throw out here";
      }
      failed = FailingAllocation::HasFailed();
    }
    EXPECT_GT(failures, largeBuffers ? 4 : 40);
  }
  AvlMemory = 0;
}

TEST(AvlIndex, RefusesImpossibleArguments) {
  for (const std::int32_t size : {-1, INT_MIN, INT_MAX, INT_MAX - 12}) {
    ExpectError<Error>([size] { TKivAVLIndex(size, false); },
                       "TKivAVLIndex: PayloadSize " + std::to_string(size) + " nu este permis");
  }
  TKivAVLIndex index(0, false);
  ExpectError<Error>([&] { index.ForEachInOrder({}); }, "TKivAVLIndex.ForEachInOrder: lipseste Callback");
  EXPECT_FALSE(index.Root());
  EXPECT_EQ(index.Height(), 0);
  EXPECT_THAT(Walk(index, &TKivAVLIndex::ForEachPreOrder), ElementsAre());
}

TEST(AvlIndex, WalksSeeKeysAddedAheadAndNoKeyTwice) {
  TKivAVLIndex index(0, false);
  const auto growing = [&index](std::int32_t step, Keys& seen) {
    return [&index, step, &seen](std::int32_t key, void*) {
      seen.push_back(key);
      if (key % 10 == 0 && key > 0 && key < 1000) {
        for (std::int32_t i = 1; i < 10; ++i) {
          index.Find(key + i * step, true);  // ahead of the walk
          index.Find(key - i * step, true);  // behind it
        }
      }
    };
  };
  for (std::int32_t key = 0; key <= 1000; key += 10) {
    index.Find(key, true);
  }
  Keys expected = {0};
  for (std::int32_t key = 10; key <= 1000; ++key) {
    expected.push_back(key);
  }
  Keys seen;
  index.ForEachInOrder(growing(1, seen));
  EXPECT_EQ(seen, expected);

  TKivAVLIndex other(0, false);
  for (const std::int32_t key : {5, 1, 9}) {
    other.Find(key, true);
  }
  seen.clear();
  other.ForEachPreOrder([&](std::int32_t key, void*) {
    seen.push_back(key);
    other.Find(key + 1, true);
    if (key > 4) {
      other.Find(key - 1, true);
    }
  });
  EXPECT_THAT(seen, ElementsAre(9, 8, 7, 6, 5, 4, 1));
  EXPECT_THROW(other.ForEachInOrder([](std::int32_t, void*) { throw std::out_of_range("stop"); }), std::out_of_range);
  EXPECT_THAT(Walk(other, &TKivAVLIndex::ForEachPreOrder), ElementsAre(10, 9, 8, 7, 6, 5, 4, 2, 1));
}

TEST(AvlIndex, NoticesAnOverwrittenBalance) {
  const auto overwriteBalance = [](void* payload, char balance) { static_cast<char*>(payload)[-1] = balance; };
  const struct {
    char balance;
    std::int32_t line;
  } kCases[] = {{5, 266}, {-1, 285}};
  for (const auto& [balance, line] : kCases) {
    TKivAVLIndex index(0, false);
    overwriteBalance(index.Find(0, true), balance);
    try {
      index.Find(-1, true);
      ADD_FAILURE() << line;
    } catch (const AssertionFailure& failure) {
      EXPECT_EQ(failure.Unit(), "UTreeAVL2");
      EXPECT_EQ(failure.Line(), line);
    }
  }
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::int32_t kMany = 300'000;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr std::int32_t kMany = 300'000;
#else
constexpr std::int32_t kMany = 10'000'000;
#endif
#else
constexpr std::int32_t kMany = 10'000'000;
#endif

TEST(AvlIndex, HoldsTenMillionKeys) {
  for (const bool largeBuffers : {false, true}) {
    TKivAVLIndex index(4, largeBuffers);
    for (std::int32_t i = 0; i < kMany; ++i) {
      const std::int32_t written = i / 2 + i % 2 * (kMany / 2);  // two ascending runs
      std::memcpy(index.Find(written, true), &written, sizeof written);
    }
    std::int32_t expected = 0;
    index.ForEachInOrder([&expected](std::int32_t found, void* payload) {
      std::int32_t written = 0;
      std::memcpy(&written, payload, sizeof written);
      expected += found == expected && written == expected ? 1 : 0;
    });
    EXPECT_EQ(expected, kMany);
    EXPECT_LE(index.Height(), 34);  // 1.44 log2 of ten million
  }
  AvlMemory = 0;
}

}  // namespace
}  // namespace kiv
