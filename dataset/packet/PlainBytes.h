#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <utility>
#if defined(__SSE2__)
#include <immintrin.h>
#endif

/// Looks at the bytes of a text many at a time. A zero must follow the text, and 16 bytes behind its last one may be
/// looked at whatever they are.
namespace kiv::packet {

/// A piece of text that is looked for again and again.
class KnownBytes {
 public:
  explicit KnownBytes(std::string bytes) : bytes_(std::move(bytes)) {
    const std::size_t first = std::min(bytes_.size(), first_.size());
    std::copy_n(bytes_.begin(), first, first_.begin());
    wanted_ = (1U << first) - 1;
  }
  [[nodiscard]] std::size_t Size() const noexcept { return bytes_.size(); }
  /// Whether the text begins with it.
  [[nodiscard]] bool Begins(const char* text) const noexcept {
#if defined(__SSE2__)
    const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    const __m128i known = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first_.data()));
    const auto same = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(here, known)));
    return (same & wanted_) == wanted_ &&
           (bytes_.size() <= first_.size() ||
            std::strncmp(text + first_.size(), bytes_.data() + first_.size(), bytes_.size() - first_.size()) == 0);
#else
    return std::strncmp(text, bytes_.data(), bytes_.size()) == 0;
#endif
  }

 private:
  std::string bytes_;
  std::array<char, 16> first_{};
  unsigned wanted_;  // a bit for each of the first that counts
};

/// A piece of an attribute's value.
struct PlainPiece {
  const char* end;  ///< the first byte that is `"`, `&`, `<` or below a blank
  bool isAscii;     ///< whether all before it are
};

/// The front of a text that is all bytes which stand for themselves in a value between `"`.
inline PlainPiece FrontOfValue(const char* text) noexcept {
#if defined(__SSE2__)
  unsigned high = 0;
  for (;; text += 16) {
    const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    const auto is = [here](char character) { return _mm_cmpeq_epi8(here, _mm_set1_epi8(character)); };
    const __m128i isControl = _mm_cmpeq_epi8(_mm_min_epu8(here, _mm_set1_epi8(' ' - 1)), here);
    const auto ends = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(is('"'), is('&')), _mm_or_si128(is('<'), isControl))));
    const auto highHere = static_cast<unsigned>(_mm_movemask_epi8(here));
    if (ends != 0) {
      return {text + std::countr_zero(ends), high == 0 && (highHere & (ends ^ (ends - 1))) == 0};
    }
    high |= highHere;
  }
#else
  bool isAscii = true;
  for (;; ++text) {
    const auto byte = static_cast<unsigned char>(*text);
    if (byte < ' ' || byte == '"' || byte == '&' || byte == '<') {
      return {text, isAscii};
    }
    isAscii = isAscii && byte < 0x80;
  }
#endif
}

}  // namespace kiv::packet
