#include "kivtools/UTreeAVL2.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "tools/AvlAllocation.h"

namespace kiv {

std::int32_t AvlMemory = 0;

void* (*avl::allocate_zeroed)(std::size_t count, std::size_t bytes) = &std::calloc;

namespace {

/// Where addresses have 32 bits a link is the node's address. Elsewhere it is the node's distance from the header,
/// below or above, if the node's block lies within a gigabyte of it, as blocks from one heap do: one addition resolves
/// it. The nodes of other blocks have numbers, told by their range and resolved through the block directory. 0 is nil
/// in all cases: it would be the header, which no link names.
constexpr bool kLinksAreAddresses = sizeof(void*) == sizeof(std::uint32_t);
constexpr std::uint32_t kNil = 0;
constexpr std::int64_t kReach = std::int64_t{1} << 30;
constexpr auto kFirstNumber = static_cast<std::uint32_t>(kReach);
constexpr std::uint32_t kNumbers = 1U << 31U;

constexpr bool IsNumber(std::uint32_t link) noexcept {
  return !kLinksAreAddresses && link - kFirstNumber < kNumbers;
}

/// Numbers are given in runs of 4096, one directory entry each; a block begins with a new run. The largest small block
/// is one run, a large one 25, so that finding a node costs one shift whatever the buffer mode.
constexpr std::uint32_t kRunBits = 12;
constexpr std::uint32_t kRun = 1U << kRunBits;
constexpr std::uint32_t kMostRuns = kNumbers / kRun;

/// An index remembers the ends of so many searches at most; the multiplier spreads the keys.
constexpr std::uint32_t kMostHints = 4096;
constexpr std::uint32_t kHintMultiplier = 0x9E37'79B1U;

constexpr std::int32_t kFirstCapacity = 64;
constexpr std::int32_t kLargeCapacity = 100'000;

/// The fields of a node by their offsets; nodes are packed, so every access goes through memcpy.
constexpr std::size_t kLinks = 0;  // left, then right
constexpr std::size_t kKey = 8;
constexpr std::size_t kBalance = 12;
constexpr std::size_t kPayload = 13;

/// The fields of a block's head; the nodes follow it. The next block is named by its first node's link.
constexpr std::size_t kNextFree = 0;
constexpr std::size_t kFreeCount = 4;
constexpr std::size_t kBlockNumber = 8;
constexpr std::size_t kNextBlock = 12;
constexpr std::size_t kBlockHead = 16;

/// A side of a node is the balance of a node that is higher on that side.
constexpr std::int8_t kLeft = -1;
constexpr std::int8_t kRight = 1;

constexpr std::size_t kNotRotated = 0;  // the level of the header

template <class Value>
Value Load(const std::byte* at) noexcept {
  Value value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

template <class Value>
void Store(std::byte* at, Value value) noexcept {
  std::memcpy(at, &value, sizeof value);
}

std::int32_t Key(const std::byte* node) noexcept {
  return Load<std::int32_t>(node + kKey);
}

std::int8_t Balance(const std::byte* node) noexcept {
  return Load<std::int8_t>(node + kBalance);
}

void SetBalance(std::byte* node, std::int8_t balance) noexcept {
  Store(node + kBalance, balance);
}

std::size_t LinkOffset(std::int8_t side) noexcept {
  return kLinks + (side == kLeft ? 0 : sizeof(std::uint32_t));
}

std::uint32_t Child(const std::byte* node, std::int8_t side) noexcept {
  return Load<std::uint32_t>(node + LinkOffset(side));
}

void SetChild(std::byte* node, std::int8_t side, std::uint32_t link) noexcept {
  Store(node + LinkOffset(side), link);
}

/// Choices without a branch: no predictor can guess the way of a search, and compilers branch whatever the source says.
template <class Value>
Value IfLess(std::int32_t left, std::int32_t right, Value yes, Value no) noexcept {
#if defined(__x86_64__) || defined(__i386__)
  asm("cmpl %[right], %[left]\n\tcmovl %[yes], %[no]"
      : [no] "+r"(no)
      : [left] "r"(left), [right] "r"(right), [yes] "r"(yes)
      : "cc");
  return no;
#else
  return left < right ? yes : no;
#endif
}

template <class Value>
Value IfEqual(std::int32_t left, std::int32_t right, Value yes, Value no) noexcept {
#if defined(__x86_64__) || defined(__i386__)
  asm("cmpl %[right], %[left]\n\tcmove %[yes], %[no]"
      : [no] "+r"(no)
      : [left] "r"(left), [right] "r"(right), [yes] "r"(yes)
      : "cc");
  return no;
#else
  return left == right ? yes : no;
#endif
}

/// A link as searches hold it: wide enough to be added to an address.
using Link = std::intptr_t;

constexpr Link Widened(std::uint32_t link) noexcept {
  return static_cast<std::int32_t>(link);
}

/// The link to the child on whose side `key` belongs.
Link NextLink(const std::byte* node, std::int32_t nodeKey, std::int32_t key) noexcept {
  const Link left = Load<std::int32_t>(node + LinkOffset(kLeft));
  const Link right = Load<std::int32_t>(node + LinkOffset(kRight));
  return IfLess(nodeKey, key, right, left);
}

/// One step of a search that stays where it is once it has found the key.
Link Step(const std::byte* node, Link link, std::int32_t key) noexcept {
  const std::int32_t nodeKey = Key(node);
  return IfEqual(nodeKey, key, link, NextLink(node, nodeKey, key));
}

constexpr std::int8_t Opposite(std::int8_t side) noexcept {
  return side == kLeft ? kRight : kLeft;
}

/// The side of `node` on which `key` belongs.
std::int8_t SideOf(const std::byte* node, std::int32_t key) noexcept {
  return static_cast<std::int8_t>(1 - 2 * static_cast<int>(Key(node) > key));
}

std::int32_t SmallCapacityAfter(std::int32_t blockNumber) noexcept {
  constexpr struct {
    std::int32_t lastNumber;
    std::int32_t capacity;
  } kSteps[] = {{2, 64}, {4, 128}, {6, 256}, {10, 512}, {20, 1024}, {40, 2048}};
  const auto* const step =
      std::ranges::find_if(kSteps, [blockNumber](const auto& row) { return blockNumber <= row.lastNumber; });
  return step == std::end(kSteps) ? 4096 : step->capacity;
}

constexpr std::uint32_t RunsOf(std::int32_t capacity) noexcept {
  return (static_cast<std::uint32_t>(capacity) + kRun - 1) / kRun;
}

void AddToAvlMemory(std::uint32_t bytes) noexcept {
  AvlMemory = static_cast<std::int32_t>(static_cast<std::uint32_t>(AvlMemory) + bytes);
}

}  // namespace

void TKivAVLIndex::Path::Remove(std::size_t level) noexcept {
  std::copy(nodes_.begin() + static_cast<std::ptrdiff_t>(level) + 1,
            nodes_.begin() + static_cast<std::ptrdiff_t>(last_) + 1,
            nodes_.begin() + static_cast<std::ptrdiff_t>(level));
  --last_;
}

TKivAVLIndex::TKivAVLIndex(std::int32_t payloadSize, bool largeBuffers)
    : largeBuffers_(largeBuffers), payloadSize_(payloadSize) {
  constexpr auto kHead = static_cast<std::int32_t>(kPayload);
  if (payloadSize < 0 || payloadSize > std::numeric_limits<std::int32_t>::max() - kHead) {
    throw Error("TKivAVLIndex: PayloadSize " + std::to_string(payloadSize) + " nu este permis");
  }
  stride_ = payloadSize + kHead;
  FirstBuffer();
  header_ = Resolve(NewNode());
}

TKivAVLIndex::~TKivAVLIndex() {
  for (std::byte* block = firstBlock_; block != nullptr;) {
    const auto next = Load<std::uint32_t>(block + kNextBlock);
    std::byte* const nextBlock = next == kNil ? nullptr : Resolve(next) - kBlockHead;
    std::free(block);
    if (largeBuffers_) {
      AddToAvlMemory(0U - BlockBytes(kLargeCapacity));  // the first block too, though it is smaller and was not added
    }
    block = nextBlock;
  }
}

void TKivAVLIndex::Release::operator()(void* memory) const noexcept {
  std::free(memory);
}

inline std::byte* TKivAVLIndex::Resolve(std::intptr_t link) const noexcept {
  const auto stored = static_cast<std::uint32_t>(link);
  if (IsNumber(stored)) {
    return reinterpret_cast<std::byte*>(directory_[(stored - kFirstNumber) >> kRunBits] +
                                        std::uintptr_t{stored} * static_cast<std::uint32_t>(stride_));
  }
  return reinterpret_cast<std::byte*>(origin_ + static_cast<std::uintptr_t>(link));
}

inline std::byte* TKivAVLIndex::Resolve(std::uint32_t link) const noexcept {
  return Resolve(Widened(link));
}

void* TKivAVLIndex::Find(std::int32_t key, bool insert) {
  if (insert && spineIsKnown_ && key > largestKey_) {
    return Append(key) + kPayload;
  }
  if (hints_ != nullptr) {
    const std::uint32_t link = hints_[HintOf(key)];
    std::byte* const node = Resolve(link);
    if (link != kNil && Key(node) == key) {
      return node + kPayload;
    }
  }
  std::byte* node = insert ? nullptr : Lookup(key);
  if (node == nullptr) {
    node = InternalFind(key, insert);
  }
  return node == nullptr ? nullptr : node + kPayload;
}

/// Where the hint for `key` is: keys one after another have different places, and so have most others.
inline std::size_t TKivAVLIndex::HintOf(std::int32_t key) const noexcept {
  return static_cast<std::uint32_t>(key) * kHintMultiplier >> hintShift_;
}

/// Notes where the search for `key` ended, so that the next one for it need not go down the tree. Links never change
/// their meaning, so that a hint may be forgotten or useless, but never wrong.
void TKivAVLIndex::Remember(std::int32_t key, std::uint32_t link) noexcept {
  const auto nodes = static_cast<std::uint32_t>(nodeCount_);
  if (hintCapacity_ < kMostHints && hintCapacity_ < 2 * nodes) {
    const std::uint32_t grown = nodes < kMostHints / 4 ? std::bit_ceil(4 * nodes) : kMostHints;
    auto* const hints = static_cast<std::uint32_t*>(avl::allocate_zeroed(grown, sizeof(std::uint32_t)));
    if (hints == nullptr) {
      return;  // searches work without
    }
    hints_.reset(hints);
    hintCapacity_ = grown;
    hintShift_ = 32U - static_cast<std::uint32_t>(std::countr_zero(grown));
  }
  hints_[HintOf(key)] = link;
}

/// The node with that key, null if there is none. It takes as many steps as the tree has levels, wherever the node is:
/// where a search ends is another thing that no predictor can guess.
std::byte* TKivAVLIndex::Lookup(std::int32_t key) noexcept {
  Link link = Widened(Child(header_, kRight));
  std::int32_t level = Height();
  if (kLinksAreAddresses || runs_ > 0) {
    for (; level > 0 && link != kNil; --level) {
      link = Step(Resolve(link), link, key);
    }
  } else {
    // Every link is a distance, nil that of the header, which can be read like a node: a step past the end of the tree
    // does no harm, and nothing has to be asked on the way.
    for (; level > 0; --level) {
      link = Step(header_ + link, link, key);
    }
  }
  std::byte* const node = link == kNil ? nullptr : Resolve(link);
  if (node == nullptr || Key(node) != key) {
    return nullptr;
  }
  Remember(key, static_cast<std::uint32_t>(link));
  return node;
}

std::byte* TKivAVLIndex::InternalFind(std::int32_t key, bool insert) {
  Link link = Widened(Child(header_, kRight));
  if (link == kNil && !insert) {
    return nullptr;
  }
  if (link == kNil || key > largestKey_) {
    return Append(key);
  }
  Path path(header_);
  std::byte** bottom = path.Nodes();
  std::byte** leaning = bottom + 1;  // where Rebalance will begin, found on the way down
  do {
    std::byte* const node = Resolve(link);
    const std::int32_t nodeKey = Key(node);
    if (nodeKey == key) {
      return node;
    }
    *++bottom = node;
    leaning = IfEqual(Balance(node), 0, leaning, bottom);
    link = NextLink(node, nodeKey, key);
  } while (link != kNil);
  path.EndAt(bottom);
  // Absent: added whatever `insert` says.
  std::byte* const fresh = HangNode(path, key);
  if (Rebalance(path, static_cast<std::size_t>(leaning - path.Nodes()), key) != kNotRotated) {
    spineIsKnown_ = false;
  }
  return fresh;
}

/// Adds a key greater than all others. Its way down is the right spine of the tree, which is kept from one such call to
/// the next, so that keys that come in ascending order are added without a search.
std::byte* TKivAVLIndex::Append(std::int32_t key) {
  if (!spineIsKnown_) {
    spine_ = Path(header_);
    for (std::uint32_t link = Child(header_, kRight); link != kNil; link = Child(spine_.Bottom(), kRight)) {
      spine_.Push(Resolve(link));
    }
  }
  std::byte* const fresh = HangNode(spine_, key);
  largestKey_ = key;
  spineIsKnown_ = false;
  std::size_t leaning = spine_.Last();
  while (leaning > 1 && Balance(spine_[leaning]) == 0) {
    --leaning;
  }
  const std::size_t rotated = Rebalance(spine_, leaning, key);
  if (rotated != kNotRotated) {
    spine_.Remove(rotated);  // it has become the left child of the node that followed it
  }
  spine_.Push(fresh);
  spineIsKnown_ = true;
  return fresh;
}

/// Takes a node for `key` and hangs it below the path's last node.
std::byte* TKivAVLIndex::HangNode(const Path& path, std::int32_t key) {
  const std::uint32_t link = NewNode();
  std::byte* const fresh = Resolve(link);
  Store(fresh + kKey, key);
  SetChild(path.Bottom(), path.Last() == 0 ? kRight : SideOf(path.Bottom(), key), link);
  return fresh;
}

/// Brings the balances on the path up to date after `key` was hung below its last node. `top` is the level of the
/// deepest node that leans to a side, 1 if none does: only that one can be thrown out of balance; those below it become
/// higher. Gives the level at which the tree was rotated, kNotRotated if it was not.
std::size_t TKivAVLIndex::Rebalance(const Path& path, std::size_t top, std::int32_t key) {
  if (path.Last() == 0) {
    SetBalance(header_, 1);
    Store(header_ + kKey, std::int32_t{1});
    return kNotRotated;
  }
  for (std::size_t level = top + 1; level <= path.Last(); ++level) {
    SetBalance(path[level], SideOf(path[level], key));
  }
  std::byte* const node = path[top];
  const std::int8_t side = SideOf(node, key);
  if (Balance(node) == 0) {
    SetBalance(node, side);
    Store(header_ + kKey, Height() + 1);
    return kNotRotated;
  }
  if (Balance(node) == Opposite(side)) {
    SetBalance(node, 0);
    return kNotRotated;
  }
  if (Balance(node) != side) {
    throw AssertionFailure("UTreeAVL2", 266);
  }
  Rotate(path, top, side);
  return top;
}

/// Restores the balance of the node at level `top` of the path, whose subtree on `side` is two levels higher.
void TKivAVLIndex::Rotate(const Path& path, std::size_t top, std::int8_t side) {
  const std::int8_t other = Opposite(side);
  std::byte* const parent = path[top - 1];
  std::byte* const node = path[top];
  const std::int8_t parentSide = top == 1 ? kRight : SideOf(parent, Key(node));
  const std::uint32_t nodeLink = Child(parent, parentSide);
  const std::uint32_t childLink = Child(node, side);
  std::byte* const child = Resolve(childLink);
  std::uint32_t newTop = childLink;
  if (Balance(child) == side) {
    SetChild(node, side, Child(child, other));
    SetChild(child, other, nodeLink);
    SetBalance(node, 0);
    SetBalance(child, 0);
  } else if (Balance(child) == other) {
    newTop = Child(child, other);
    std::byte* const middle = Resolve(newTop);
    const std::int8_t lean = Balance(middle);
    if (side == kRight && (lean < -1 || lean > 1)) {
      throw Error("B(P) trebuie sa fie +/- 1 sau 0");
    }
    SetChild(child, other, Child(middle, side));
    SetChild(middle, side, childLink);
    SetChild(node, side, Child(middle, other));
    SetChild(middle, other, nodeLink);
    SetBalance(node, lean == side ? other : std::int8_t{0});
    SetBalance(child, lean == other ? side : std::int8_t{0});
    SetBalance(middle, 0);
  } else {
    throw AssertionFailure("UTreeAVL2", 285);
  }
  SetChild(parent, parentSide, newTop);
}

std::uint32_t TKivAVLIndex::NewNode() {
  if (nodeCount_ == std::numeric_limits<std::int32_t>::max()) {
    throw std::bad_alloc();
  }
  ++nodeCount_;
  std::uint32_t link = freeNodes_;
  if (link != kNil) {
    freeNodes_ = Child(Resolve(link), kLeft);
    SetChild(Resolve(link), kLeft, kNil);
  } else {
    if (Load<std::int32_t>(currentBlock_ + kFreeCount) == 0) {
      GrowBuffer();
    }
    link = Load<std::uint32_t>(currentBlock_ + kNextFree);
    Store(currentBlock_ + kNextFree, link + (IsNumber(link) ? 1U : static_cast<std::uint32_t>(stride_)));
    Store(currentBlock_ + kFreeCount, Load<std::int32_t>(currentBlock_ + kFreeCount) - 1);
  }
  std::byte* const payload = Resolve(link) + kPayload;
  if (payloadSize_ >= 4) {
    Store(payload, std::uint32_t{0});
  } else {
    std::memset(payload, 0, static_cast<std::size_t>(payloadSize_));  // what lies after it is not this node's
  }
  return link;
}

void TKivAVLIndex::FirstBuffer() {
  firstBlock_ = currentBlock_ = NewBlock(kFirstCapacity, 1);
}

void TKivAVLIndex::GrowBuffer() {
  const auto number = Load<std::int32_t>(currentBlock_ + kBlockNumber);
  const std::int32_t capacity = largeBuffers_ ? kLargeCapacity : SmallCapacityAfter(number);
  std::byte* const block = NewBlock(capacity, number + 1);
  AddToAvlMemory(BlockBytes(capacity));
  Store(currentBlock_ + kNextBlock, Load<std::uint32_t>(block + kNextFree));
  currentBlock_ = block;
}

std::uint32_t TKivAVLIndex::BlockBytes(std::int32_t capacity) const noexcept {
  return static_cast<std::uint32_t>(stride_) * static_cast<std::uint32_t>(capacity) + std::uint32_t{kBlockHead};
}

/// An unused block that links can name; the index's own state is not touched if there is no memory for it.
std::byte* TKivAVLIndex::NewBlock(std::int32_t capacity, std::int32_t number) {
  const std::uint64_t bytes = static_cast<std::uint64_t>(stride_) * static_cast<std::uint32_t>(capacity) + kBlockHead;
  ReserveRuns(capacity);
  auto* const block = bytes > std::numeric_limits<std::size_t>::max()
                          ? nullptr
                          : static_cast<std::byte*>(avl::allocate_zeroed(1, static_cast<std::size_t>(bytes)));
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  Store(block + kNextFree, RegisterNodes(block + kBlockHead, capacity));
  Store(block + kFreeCount, capacity);
  Store(block + kBlockNumber, number);
  return block;
}

/// Makes room in the directory for a block of that capacity, wherever it will lie.
void TKivAVLIndex::ReserveRuns(std::int32_t capacity) {
  const std::uint32_t needed = runs_ + RunsOf(capacity);
  if (needed > kMostRuns) {
    throw std::bad_alloc();
  }
  if (kLinksAreAddresses || needed <= directoryCapacity_) {
    return;
  }
  const std::uint32_t grown = std::max({needed, directoryCapacity_ * 2, std::uint32_t{16}});
  auto* const directory = static_cast<std::uintptr_t*>(avl::allocate_zeroed(grown, sizeof(std::uintptr_t)));
  if (directory == nullptr) {
    throw std::bad_alloc();
  }
  std::copy_n(directory_.get(), runs_, directory);
  directory_.reset(directory);
  directoryCapacity_ = grown;
}

/// Makes links for a block's node area; returns that of its first node.
std::uint32_t TKivAVLIndex::RegisterNodes(std::byte* nodes, std::int32_t capacity) noexcept {
  const auto address = reinterpret_cast<std::uintptr_t>(nodes);
  if (firstBlock_ == nullptr && !kLinksAreAddresses) {
    origin_ = address;  // the header will be its first node
  }
  const auto distance = static_cast<std::int64_t>(address - origin_);
  const std::int64_t length = std::int64_t{stride_} * capacity;
  if (kLinksAreAddresses || (distance >= -kReach && distance < kReach && distance + length <= kReach)) {
    return static_cast<std::uint32_t>(distance);
  }
  const std::uint32_t first = kFirstNumber + (runs_ << kRunBits);
  std::fill_n(directory_.get() + runs_, RunsOf(capacity),
              address - std::uintptr_t{first} * static_cast<std::uint32_t>(stride_));
  runs_ += RunsOf(capacity);
  return first;
}

TKivAVLIndex::NodeView TKivAVLIndex::Root() const noexcept {
  return View(Child(header_, kRight));
}

TKivAVLIndex::NodeView TKivAVLIndex::View(std::uint32_t link) const noexcept {
  return {*this, link == kNil ? nullptr : Resolve(link)};
}

std::int32_t TKivAVLIndex::Height() const noexcept {
  return Key(header_);
}

void TKivAVLIndex::ForEachInOrder(const TKivAvlForEach& callback) {
  Walk<kLeft>("ForEachInOrder", callback);
}

void TKivAVLIndex::ForEachPreOrder(const TKivAvlForEach& callback) {
  Walk<kRight>("ForEachPreOrder", callback);
}

/// Visits all nodes, each after its subtree on `firstSide` and before the other one. No recursion: `ahead` holds the
/// nodes above the walk's position that are still to come.
template <std::int8_t firstSide>
void TKivAVLIndex::Walk(const char* operation, const TKivAvlForEach& callback) const {
  if (!callback) {
    throw Error(Text("TKivAVLIndex.") + operation + ": lipseste Callback");
  }
  Path ahead(header_);
  const auto descend = [&](std::uint32_t link) {
    for (; link != kNil; link = Child(ahead.Bottom(), firstSide)) {
      ahead.Push(Resolve(link));
    }
  };
  descend(Child(header_, kRight));
  while (ahead.Last() > 0) {
    std::byte* const node = ahead.Pop();
    const std::int32_t key = Key(node);
    const std::int32_t before = nodeCount_;
    callback(key, node + kPayload);
    if (nodeCount_ == before) {
      descend(Child(node, Opposite(firstSide)));
    } else {
      // The callback has added keys, and rotations may have moved what is ahead: search the way anew.
      ahead = PathAhead<firstSide>(key);
    }
  }
}

/// The nodes above the position just after `key` in walking order that a walk has still to visit.
template <std::int8_t firstSide>
TKivAVLIndex::Path TKivAVLIndex::PathAhead(std::int32_t key) const noexcept {
  Path ahead(header_);
  for (std::uint32_t link = Child(header_, kRight); link != kNil;) {
    std::byte* const node = Resolve(link);
    const bool isAhead = firstSide == kLeft ? Key(node) > key : Key(node) < key;
    if (isAhead) {
      ahead.Push(node);
    }
    link = Child(node, isAhead ? firstSide : Opposite(firstSide));
  }
  return ahead;
}

std::int32_t TKivAVLIndex::NodeView::Key() const noexcept {
  return kiv::Key(node_);
}

std::int32_t TKivAVLIndex::NodeView::Balance() const noexcept {
  return kiv::Balance(node_);
}

TKivAVLIndex::NodeView TKivAVLIndex::NodeView::Left() const noexcept {
  return index_->View(Child(node_, kLeft));
}

TKivAVLIndex::NodeView TKivAVLIndex::NodeView::Right() const noexcept {
  return index_->View(Child(node_, kRight));
}

void* TKivAVLIndex::NodeView::Payload() const noexcept {
  return node_ + kPayload;
}

}  // namespace kiv
