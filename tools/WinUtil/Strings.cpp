#include "kivtools/WinUtil/Strings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <iterator>
#include <numeric>
#include <utility>

#include "core/Numbers.h"

namespace kiv {
namespace {

/// A set of separator characters and what has to be found out about a text by it. The pieces are counted before they
/// are made, because growing a list of them costs more than a second look at the text.
class Separators {
 public:
  explicit Separators(TextView characters)
      : single_(!characters.empty() && characters.find_first_not_of(characters[0]) == TextView::npos),
        character_(characters.empty() ? '\0' : characters[0]) {
    if (!single_) {
      isSeparator_.fill(0);
      for (const char character : characters) {
        isSeparator_[static_cast<unsigned char>(character)] = 1;
      }
    }
  }

  /// The first separator from `at` on, `end` where there is none.
  [[nodiscard]] const char* Next(const char* at, const char* end) const {
    if (at == end) {
      return end;  // an empty text may have no address
    }
    if (single_) {
      const void* const found = std::memchr(at, character_, static_cast<std::size_t>(end - at));
      return found != nullptr ? static_cast<const char*>(found) : end;
    }
    while (at != end && isSeparator_[static_cast<unsigned char>(*at)] == 0) {
      ++at;
    }
    return at;
  }

  /// How many separators the text has, `most` if there are more.
  [[nodiscard]] std::size_t Count(TextView text, std::size_t most) const {
    constexpr std::size_t kStep = 4096;
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size() && count < most; at += kStep) {
      const TextView step = text.substr(at, kStep);
      if (single_) {
        count += static_cast<std::size_t>(std::count(step.begin(), step.end(), character_));
      } else {
        count += std::transform_reduce(step.begin(), step.end(), 0U, std::plus(), [this](char c) {
          return unsigned{isSeparator_[static_cast<unsigned char>(c)]};
        });
      }
    }
    return std::min(count, most);
  }

  /// How many pieces between separators are not empty: each begins where a separator is followed by another character.
  [[nodiscard]] std::size_t CountNonEmpty(TextView text) const {
    std::size_t count = 0;
    if (single_) {  // by neighbours, many of which the compiler compares at once
      count = !text.empty() && text[0] != character_ ? 1 : 0;
      for (std::size_t i = 1; i < text.size(); ++i) {
        count += static_cast<std::size_t>(text[i - 1] == character_) & static_cast<std::size_t>(text[i] != character_);
      }
      return count;
    }
    unsigned before = 1;
    for (const char character : text) {
      const unsigned now = isSeparator_[static_cast<unsigned char>(character)];
      count += before & (now ^ 1U);
      before = now;
    }
    return count;
  }

 private:
  bool single_;
  char character_;
  std::array<std::uint8_t, 256> isSeparator_;  // filled only where there is not one separator
};

constexpr std::size_t kHashPeriod = 23;

/// The hash of the characters of one period; unrolled, so that every shift is a constant.
std::uint32_t HashOfPeriod(const char* characters) {
  return [characters]<std::size_t... I>(std::index_sequence<I...>) {
    return (... ^ (std::uint32_t{static_cast<unsigned char>(characters[I])} << ((I + 1) % kHashPeriod)));
  }
  (std::make_index_sequence<kHashPeriod>());
}

}  // namespace

StringList Explode(TextView separators, TextView text, std::int32_t limit) {
  const Separators set(separators);
  const char* at = text.data();
  const char* const end = at + text.size();
  StringList pieces;
  pieces.reserve(limit > 1 ? set.Count(text, static_cast<std::size_t>(limit - 1)) + 1 : 1);
  for (std::int32_t left = limit; left > 1; --left) {
    const char* const next = set.Next(at, end);
    if (next == end) {
      break;
    }
    pieces.emplace_back(at, next);
    at = next + 1;
  }
  pieces.emplace_back(at, end);
  return pieces;
}

void SplitTextOnSeparator(TextView text, TextView separators, StringList& list) {
  const Separators set(separators);
  const char* at = text.data();
  const char* const end = at + text.size();
  // Not straight into the list: the text may be one of its items, and a failure must leave it as it was.
  StringList pieces;
  pieces.reserve(set.CountNonEmpty(text));
  while (true) {
    const char* const next = set.Next(at, end);
    if (next != at) {
      pieces.emplace_back(at, next);
    }
    if (next == end) {
      break;
    }
    at = next + 1;
  }
  if (list.empty()) {
    list = std::move(pieces);
  } else {
    list.insert(list.end(), std::make_move_iterator(pieces.begin()), std::make_move_iterator(pieces.end()));
  }
}

Text StringHash(TextView text) {
  // A character's shift depends only on its place within a period, so the characters of whole groups of periods are
  // combined first, eight at a time.
  constexpr std::size_t kGroup = kHashPeriod * sizeof(std::uint64_t);
  std::array<std::uint64_t, kHashPeriod> group{};
  std::size_t at = 0;
  for (; text.size() - at >= kGroup; at += kGroup) {
    std::array<std::uint64_t, kHashPeriod> next;
    std::memcpy(next.data(), text.data() + at, kGroup);
    for (std::size_t i = 0; i < kHashPeriod; ++i) {
      group[i] ^= next[i];
    }
  }
  std::uint32_t hash = 0;
  const auto* const combined = reinterpret_cast<const char*>(group.data());
  for (std::size_t i = 0; at > 0 && i < kGroup; i += kHashPeriod) {
    hash ^= HashOfPeriod(combined + i);
  }
  for (; text.size() - at >= kHashPeriod; at += kHashPeriod) {
    hash ^= HashOfPeriod(text.data() + at);
  }
  if (at < text.size()) {
    std::array<char, kHashPeriod> last{};
    std::memcpy(last.data(), text.data() + at, text.size() - at);
    hash ^= HashOfPeriod(last.data());
  }
  Text decimal;
  AppendDecimal(decimal, hash);
  return decimal;
}

Text RemoveDualSlshPath(TextView path) {
  Text cleaned(path.substr(0, 2));
  cleaned.reserve(path.size());
  char previous = '\0';
  for (const char character : path.substr(cleaned.size())) {
    if (character != '\\' || previous != '\\') {
      cleaned.push_back(character);
    }
    previous = character;
  }
  return cleaned;
}

std::int32_t TrimestruLuna(std::int32_t month) {
  return month >= 1 && month <= 12 ? (month + 2) / 3 : -1;
}

}  // namespace kiv
