#include "tools/CEVersionInfo/VersionResource.h"

#include <algorithm>

#include "core/WideText.h"
#include "kivtools/Ascii.h"
#include "tools/CEVersionInfo/ByteSource.h"

namespace kiv::version {
namespace {

constexpr std::size_t Aligned(std::size_t position) {
  return (position + 3) & ~std::size_t{3};
}

}  // namespace

VersionResource::VersionResource(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {
  // Where wide blocks have the kind of their value, 0 or 1, the key of narrow ones begins.
  constexpr std::size_t kKind = 4;
  width_ = bytes_.size() > kKind && bytes_[kKind] >= ' ' ? 1 : 2;
}

std::uint16_t VersionResource::CharacterAt(std::size_t position) const {
  return width_ == 2 ? NumberAt(position) : bytes_[position];
}

std::uint16_t VersionResource::NumberAt(std::size_t position) const {
  return Number16(std::span(bytes_).subspan(position, 2));
}

auto VersionResource::BlockAt(std::size_t begin, std::size_t limit) const -> std::optional<Block> {
  // The length, the length of the value and, in wide blocks, the kind of the value.
  const std::size_t header = width_ == 2 ? 6 : 4;
  if (limit - begin < header) {
    return std::nullopt;
  }
  Block block;
  block.end = begin + NumberAt(begin);
  // Some compilers count the padding after a last block, others do not.
  if (block.end > limit && Aligned(limit) >= block.end) {
    block.end = limit;
  }
  if (block.end > limit) {
    return std::nullopt;
  }
  block.keyBegin = begin + header;
  block.keyEnd = block.keyBegin;
  do {
    if (block.keyEnd + width_ > block.end) {
      return std::nullopt;
    }
    block.keyEnd += width_;
  } while (CharacterAt(block.keyEnd - width_) != 0);
  block.valueBegin = std::min(Aligned(block.keyEnd), block.end);
  block.keyEnd -= width_;

  constexpr std::uint16_t kText = 1;  // its length is counted in characters, a binary value's in bytes
  const std::size_t length = NumberAt(begin + 2);
  const std::size_t most = block.end - block.valueBegin;
  block.textEnd = block.valueBegin + std::min(length * width_, most);
  const bool binary = width_ == 2 && NumberAt(begin + 4) != kText;
  block.valueEnd = binary ? block.valueBegin + std::min(length, most) : block.textEnd;
  return block;
}

bool VersionResource::KeyIs(const Block& block, TextView key) const {
  if (block.keyEnd - block.keyBegin != key.size() * width_) {
    return false;
  }
  for (std::size_t i = 0; i < key.size(); ++i) {
    const auto byte = static_cast<unsigned char>(key[i]);
    const char16_t wanted = width_ == 2 ? windows1250::ToUnicode(byte) : char16_t{byte};
    if (ascii::ToLower(CharacterAt(block.keyBegin + width_ * i)) != ascii::ToLower(wanted)) {
      return false;
    }
  }
  return true;
}

/// Calls `visit` for the blocks below `parent` until it returns false; returns whether the blocks seen were sound.
template <class Visit>
bool VersionResource::ForEachChild(const Block& parent, Visit visit) const {
  std::size_t at = Aligned(parent.valueEnd);
  // A length of zero is padding after the last block.
  while (at + 2 <= parent.end && NumberAt(at) != 0) {
    const auto block = BlockAt(at, parent.end);
    if (!block) {
      return false;
    }
    if (!visit(*block)) {
      return true;
    }
    at = Aligned(block->end);
  }
  return true;
}

auto VersionResource::Child(const Block& parent, TextView key) const -> std::optional<Block> {
  std::optional<Block> found;
  ForEachChild(parent, [&](const Block& block) {
    if (KeyIs(block, key)) {
      found = block;
    }
    return !found;
  });
  return found;
}

bool VersionResource::IsSound(const Block& block, int levelsBelow) const {
  bool sound = true;
  const auto visit = [&](const Block& child) {
    sound = levelsBelow == 1 || IsSound(child, levelsBelow - 1);
    return sound;
  };
  return ForEachChild(block, visit) && sound;
}

std::optional<VersionResource> VersionResource::Parse(std::vector<std::uint8_t> bytes) {
  VersionResource resource(std::move(bytes));
  const auto root = resource.BlockAt(0, resource.bytes_.size());
  if (!root || !resource.KeyIs(*root, "VS_VERSION_INFO")) {
    return std::nullopt;
  }
  resource.root_ = *root;
  const auto isSoundPart = [&](TextView key, int levelsBelow) {
    const auto part = resource.Child(*root, key);
    return !part || resource.IsSound(*part, levelsBelow);
  };
  constexpr int kTablesAndStrings = 2;
  if (!resource.IsSound(*root, 1) || !isSoundPart("StringFileInfo", kTablesAndStrings) ||
      !isSoundPart("VarFileInfo", 1)) {
    return std::nullopt;
  }
  return resource;
}

auto VersionResource::Find(TextView path) const -> std::optional<Block> {
  std::optional<Block> block = root_;
  while (block) {
    path.remove_prefix(std::min(path.find_first_not_of('\\'), path.size()));
    if (path.empty()) {
      break;
    }
    const TextView key = path.substr(0, path.find('\\'));
    block = Child(*block, key);
    path.remove_prefix(key.size());
  }
  return block;
}

Text VersionResource::TextOf(const std::optional<Block>& block) const {
  Text text;
  for (std::size_t at = block ? block->valueBegin : 0; block && at + width_ <= block->textEnd; at += width_) {
    const std::uint16_t unit = CharacterAt(at);
    if (unit == 0) {
      break;
    }
    text.push_back(width_ == 2 ? ShownByte(unit) : static_cast<char>(unit));
  }
  return text;
}

std::span<const std::uint8_t> VersionResource::Query(TextView path) const {
  const auto block = Find(path);
  return block ? std::span(bytes_).subspan(block->valueBegin, block->valueEnd - block->valueBegin)
               : std::span<const std::uint8_t>();
}

Text VersionResource::QueryText(TextView path) const {
  return TextOf(Find(path));
}

Text VersionResource::FirstTableText(TextView key) const {
  std::optional<Block> first;
  if (const auto tables = Child(root_, "StringFileInfo")) {
    ForEachChild(*tables, [&first](const Block& table) {
      first = table;
      return false;
    });
  }
  return TextOf(first ? Child(*first, key) : std::nullopt);
}

}  // namespace kiv::version
