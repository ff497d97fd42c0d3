#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "core/Windows1250Kernels.h"

namespace kiv::windows1250 {
namespace {

#define KIV_FOR_PROCESSOR

/// Eight bytes, the first lowest on every machine.
inline std::uint64_t Load(const unsigned char* in) {
  std::uint64_t word = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&word, in, sizeof word);
  } else {
    for (unsigned i = 0; i < sizeof word; ++i) {
      word |= std::uint64_t{in[i]} << 8 * i;
    }
  }
  return word;
}

/// Eight bytes of 0 or 1 side by side as bits, the lowest byte lowest.
inline std::uint32_t Gathered(std::uint64_t bytes) {
  return static_cast<std::uint32_t>(bytes * 0x0102040810204080U >> 56U);
}

/// The top bits of eight bytes.
inline std::uint32_t TopBits(std::uint64_t word) {
  return Gathered(word >> 7U & 0x0101010101010101U);
}

struct Block {
  struct Utf8 {
    std::uint32_t notAscii;
    std::uint32_t lead;
  };

  static std::uint32_t NotAscii(const unsigned char* in) {
    std::uint32_t mask = 0;
    for (unsigned i = 0; i < 32; i += 8) {
      mask |= TopBits(Load(in + i)) << i;
    }
    return mask;
  }

  static Utf8 Utf8Bytes(const unsigned char* in) {
    Utf8 bytes{};
    for (unsigned i = 0; i < 32; i += 8) {
      const std::uint64_t word = Load(in + i);
      bytes.notAscii |= TopBits(word) << i;
      bytes.lead |= TopBits(word & word << 1U) << i;
    }
    return bytes;
  }

  static std::uint32_t Widen(const unsigned char* in, char16_t* out) {
    for (unsigned i = 0; i < 32; ++i) {
      out[i] = in[i];
    }
    return NotAscii(in);
  }

  static std::uint32_t Narrow(const char16_t* in, unsigned char* out) {
    std::array<unsigned char, 32> notAscii;
    for (unsigned i = 0; i < 32; ++i) {
      out[i] = static_cast<unsigned char>(in[i]);
      notAscii[i] = in[i] > 0x7F ? 1 : 0;
    }
    std::uint32_t mask = 0;
    for (unsigned i = 0; i < 32; i += 8) {
      mask |= Gathered(Load(notAscii.data() + i)) << i;
    }
    return mask;
  }
};

#include "core/Windows1250Loops.h"

#undef KIV_FOR_PROCESSOR

}  // namespace

const Kernels kPortableKernels = {ToWide, FromWide, AsciiAhead, ToUtf8, FromUtf8};

const Kernels& BestKernels() noexcept {
  static const Kernels& best = VectorKernels() != nullptr ? *VectorKernels() : kPortableKernels;
  return best;
}

}  // namespace kiv::windows1250
