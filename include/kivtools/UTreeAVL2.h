/// @file
/// An index from 32-bit keys to payloads of one fixed size, whose entries never move.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "kivtools/Types.h"

namespace kiv {

/// The bytes that indexes have taken for the blocks added after each index's first one, as hosts have always been shown
/// them: an index with small buffers leaves its added blocks counted when it goes, one with large buffers takes one
/// block more off than it added. Wraps at 32 bits. A host may set it, for example to 0 before a measurement.
///
///     AvlMemory = 0;
///     TKivAVLIndex index(8, false);   // AvlMemory is 0: the first block is not counted
///     // ... 64 keys later: AvlMemory is 21 * 64 + 16
extern KIV_API std::int32_t AvlMemory;

/// What a walk calls for each entry: its key and the address of its payload.
using TKivAvlForEach = std::function<void(std::int32_t key, void* payload)>;

/// A height-balanced search tree over 32-bit signed keys. Entries are only ever added; each carries `payloadSize` bytes
/// that belong to the caller and stay at one address for the life of the index, whatever is added later. Payloads are
/// packed after 13 bytes of node, so they are aligned to nothing: read and write them with `memcpy`.
///
/// Memory: 13 + payloadSize bytes an entry on every target, taken in blocks; once something is looked up with `insert`
/// false, up to 16 KiB more to remember where searches ended. Links between nodes are 32 bits wide, so one index holds
/// at most 2^31 - 2 entries. Not safe for concurrent use, `Find` included.
///
///     TKivAVLIndex index(sizeof(double), false);
///     const double price = 12.5;
///     std::memcpy(index.Find(4711, true), &price, sizeof price);
class KIV_API TKivAVLIndex {
 public:
  /// A node as it lies in the tree, for looking at the tree's shape. Valid for the life of the index; it shows the
  /// links as they are at the time of each call. An empty view has neither key nor links: ask it nothing.
  class NodeView {
   public:
    /// False where there is no node. Example: `bool(index.Root())` is false while the index is empty.
    explicit operator bool() const noexcept { return node_ != nullptr; }
    /// The node's key.
    [[nodiscard]] std::int32_t Key() const noexcept;
    /// -1 where the left subtree is one level higher, +1 where the right one is, else 0.
    [[nodiscard]] std::int32_t Balance() const noexcept;
    /// The subtree of smaller keys, empty if there are none.
    [[nodiscard]] NodeView Left() const noexcept;
    /// The subtree of larger keys, empty if there are none.
    [[nodiscard]] NodeView Right() const noexcept;
    /// The address of the payload, the same that Find() gives. Example: `index.Root().Payload()`.
    [[nodiscard]] void* Payload() const noexcept;

   private:
    friend class TKivAVLIndex;
    NodeView(const TKivAVLIndex& index, std::byte* node) noexcept : index_(&index), node_(node) {}
    const TKivAVLIndex* index_;
    std::byte* node_;
  };

  /// An empty index. `payloadSize` is in bytes, 0 or more. With `largeBuffers` every added block holds 100,000 nodes;
  /// without, added blocks grow from 64 to 4096 nodes. The first block holds 64 in both cases.
  /// Throws Error for a size below 0 or above 2^31 - 14, std::bad_alloc where there is no memory.
  TKivAVLIndex(std::int32_t payloadSize, bool largeBuffers);

  /// Frees all nodes. What payloads refer to is the caller's to release before.
  ~TKivAVLIndex();
  TKivAVLIndex(const TKivAVLIndex&) = delete;
  TKivAVLIndex& operator=(const TKivAVLIndex&) = delete;

  /// The payload of the entry with that key. A missing key is added, its payload all zero bytes; only an empty index
  /// asked with `insert` false adds nothing and gives null. Throws std::bad_alloc where there is no memory for a new
  /// block: the index then stays as it was, but that NodeCount() has counted the attempt.
  ///
  ///     index.Find(1, false);   // null on an empty index
  ///     index.Find(1, true);    // 1 is added
  ///     index.Find(2, false);   // 2 is added all the same: the index is not empty
  void* Find(std::int32_t key, bool insert);

  /// The top node of the tree, an empty view on an empty index. Example: after keys 1, 2, 3 `Root().Key()` is 2.
  [[nodiscard]] NodeView Root() const noexcept;

  /// The levels of the tree, 0 on an empty index. Example: 2 after keys 1, 2, 3.
  [[nodiscard]] std::int32_t Height() const noexcept;

  /// The nodes asked for so far: one for the index itself and one for each key that was added or could not be added
  /// for want of memory. Never decreases. Example: 1 on an empty index.
  [[nodiscard]] std::int32_t NodeCount() const noexcept { return nodeCount_; }

  /// Calls `callback` once for each entry in ascending order of keys. The callback may call Find() on this index: every
  /// key added ahead of the walk is visited in its turn, one added behind it is not, and no entry is visited twice.
  /// An exception thrown by the callback ends the walk and goes on to the caller. Throws Error for an empty callback.
  ///
  ///     index.ForEachInOrder([](std::int32_t key, void*) { std::cout << key; });   // 123
  void ForEachInOrder(const TKivAvlForEach& callback);

  /// The same in descending order of keys; the name is historical. Example: keys 1 to 3 come as 3, 2, 1.
  void ForEachPreOrder(const TKivAvlForEach& callback);

 private:
  /// Nodes one below another, from the header down. No tree of 2^31 nodes is higher than 44.
  class Path {
   public:
    Path() noexcept : nodes_{} {}
    explicit Path(std::byte* header) noexcept { nodes_[0] = header; }
    void Push(std::byte* node) noexcept { nodes_[++last_] = node; }
    std::byte* Pop() noexcept { return nodes_[last_--]; }
    void Remove(std::size_t level) noexcept;
    std::byte** Nodes() noexcept { return nodes_.data(); }
    void EndAt(std::byte** bottom) noexcept { last_ = static_cast<std::size_t>(bottom - nodes_.data()); }
    [[nodiscard]] std::size_t Last() const noexcept { return last_; }
    [[nodiscard]] std::byte* Bottom() const noexcept { return nodes_[last_]; }
    std::byte* operator[](std::size_t level) const noexcept { return nodes_[level]; }

   private:
    std::array<std::byte*, 48> nodes_;
    std::size_t last_ = 0;
  };
  struct Release {
    void operator()(void* memory) const noexcept;
  };

  [[nodiscard]] std::byte* Resolve(std::intptr_t link) const noexcept;
  [[nodiscard]] std::byte* Resolve(std::uint32_t link) const noexcept;
  [[nodiscard]] NodeView View(std::uint32_t link) const noexcept;
  std::byte* Lookup(std::int32_t key) noexcept;
  [[nodiscard]] std::size_t HintOf(std::int32_t key) const noexcept;
  void Remember(std::int32_t key, std::uint32_t link) noexcept;
  std::byte* InternalFind(std::int32_t key, bool insert);
  std::byte* Append(std::int32_t key);
  std::byte* HangNode(const Path& path, std::int32_t key);
  std::size_t Rebalance(const Path& path, std::size_t top, std::int32_t key);
  void Rotate(const Path& path, std::size_t top, std::int8_t side);
  std::uint32_t NewNode();
  void FirstBuffer();
  void GrowBuffer();
  std::byte* NewBlock(std::int32_t capacity, std::int32_t number);
  [[nodiscard]] std::uint32_t BlockBytes(std::int32_t capacity) const noexcept;
  void ReserveRuns(std::int32_t capacity);
  std::uint32_t RegisterNodes(std::byte* nodes, std::int32_t capacity) noexcept;
  template <std::int8_t firstSide>
  void Walk(const char* operation, const TKivAvlForEach& callback) const;
  template <std::int8_t firstSide>
  [[nodiscard]] Path PathAhead(std::int32_t key) const noexcept;

  std::byte* header_ = nullptr;
  bool largeBuffers_;
  std::int32_t stride_ = 0;
  std::int32_t payloadSize_;
  std::byte* firstBlock_ = nullptr;
  std::byte* currentBlock_ = nullptr;
  std::uint32_t freeNodes_ = 0;
  std::int32_t nodeCount_ = 0;
  /// What links are added to that are not node numbers.
  std::uintptr_t origin_ = 0;
  /// For each run of node numbers the address that link 0 would have if it were one of the run's block.
  std::unique_ptr<std::uintptr_t[], Release> directory_;
  std::uint32_t directoryCapacity_ = 0;
  std::uint32_t runs_ = 0;
  /// Where searches ended, each at the place that its key gives.
  std::unique_ptr<std::uint32_t[], Release> hints_;
  std::uint32_t hintCapacity_ = 0;
  std::uint32_t hintShift_ = 0;
  /// The largest key and, unless a rotation has changed them since, the nodes down to it.
  std::int32_t largestKey_ = 0;
  bool spineIsKnown_ = false;
  Path spine_;
};

}  // namespace kiv
