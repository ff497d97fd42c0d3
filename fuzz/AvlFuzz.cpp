// The index agrees with std::map after every key: same payload addresses, same order both ways, balanced throughout.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>

#include "fuzz/Property.h"
#include "kivtools/UTreeAVL2.h"

namespace {

/// Checks a subtree; returns its height.
int Check(kiv::TKivAVLIndex::NodeView node, std::int64_t low, std::int64_t high) {
  if (!node) {
    return 0;
  }
  REQUIRE(low < node.Key() && node.Key() < high);
  const int left = Check(node.Left(), low, node.Key());
  const int right = Check(node.Right(), node.Key(), high);
  REQUIRE(node.Balance() == right - left && std::abs(right - left) <= 1);
  return 1 + std::max(left, right);
}

}  // namespace

/// The first byte tells the payload's size and the buffer mode, every pair after it a key; its top bit spreads keys.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::size_t payloadSize = data[0] >> 1U;
  kiv::TKivAVLIndex index(static_cast<std::int32_t>(payloadSize), (data[0] & 1U) != 0);
  std::map<std::int32_t, void*> map;
  for (std::size_t at = 1; at + 1 < size; at += 2) {
    const auto low = static_cast<std::uint32_t>(data[at] | (data[at + 1] & 0x7FU) << 8U);
    const auto key = static_cast<std::int32_t>((data[at + 1] & 0x80U) != 0 ? low * 0x9E3779B1U : low);
    void* const payload = index.Find(key, true);
    const auto [entry, added] = map.try_emplace(key, payload);
    REQUIRE(entry->second == payload);
    const auto* const bytes = static_cast<const std::uint8_t*>(payload);
    const auto expected = added ? std::uint8_t{0} : static_cast<std::uint8_t>(key);
    REQUIRE(std::all_of(bytes, bytes + payloadSize, [=](std::uint8_t byte) { return byte == expected; }));
    std::memset(payload, key, payloadSize);
  }
  REQUIRE(Check(index.Root(), INT64_MIN, INT64_MAX) == index.Height());
  REQUIRE(index.NodeCount() == 1 + static_cast<std::int32_t>(map.size()));
  auto up = map.cbegin();
  index.ForEachInOrder([&](std::int32_t key, void* payload) {
    REQUIRE(up != map.cend() && up->first == key && up->second == payload);
    ++up;
  });
  auto down = map.crbegin();
  index.ForEachPreOrder([&](std::int32_t key, void*) {
    REQUIRE(down != map.crend() && down->first == key);
    ++down;
  });
  REQUIRE(up == map.cend() && down == map.crend());
  return 0;
}
