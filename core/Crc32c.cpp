#include "core/Crc32c.h"

#include <array>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace kiv {
namespace crc32c {
namespace {

constexpr std::uint32_t kPolynomial = 0x82F63B78;

/// Entry [k][b]: what the byte b does to the register when k more bytes follow it.
constexpr auto kTables = [] {
  std::array<std::array<std::uint32_t, 256>, 8> tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) {
      crc = crc >> 1U ^ ((crc & 1U) != 0 ? kPolynomial : 0);
    }
    tables[0][byte] = crc;
  }
  for (std::size_t k = 1; k < tables.size(); ++k) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t before = tables[k - 1][byte];
      tables[k][byte] = before >> 8U ^ tables[0][before & 0xFFU];
    }
  }
  return tables;
}();

#if defined(__x86_64__) || defined(__i386__)

#ifdef __x86_64__
using Word = std::uint64_t;
#define KIV_CRC_WORD(crc, word) static_cast<std::uint32_t>(_mm_crc32_u64(crc, word))
#else
using Word = std::uint32_t;
#define KIV_CRC_WORD(crc, word) _mm_crc32_u32(crc, word)
#endif

__attribute__((target("sse4.2"))) std::uint32_t Instruction(std::uint32_t crc,
                                                            std::span<const std::byte> bytes) noexcept {
  const std::byte* at = bytes.data();
  std::size_t left = bytes.size();
  for (; left >= sizeof(Word); left -= sizeof(Word), at += sizeof(Word)) {
    Word word = 0;
    std::memcpy(&word, at, sizeof word);
    crc = KIV_CRC_WORD(crc, word);
  }
  for (; left > 0; --left, ++at) {
    crc = _mm_crc32_u8(crc, std::to_integer<std::uint8_t>(*at));
  }
  return crc;
}

#undef KIV_CRC_WORD

#endif

}  // namespace

std::uint32_t ByTables(std::uint32_t crc, std::span<const std::byte> bytes) noexcept {
  const std::byte* at = bytes.data();
  std::size_t left = bytes.size();
  for (; left >= 8; left -= 8, at += 8) {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    std::memcpy(&low, at, sizeof low);
    std::memcpy(&high, at + sizeof low, sizeof high);
    low ^= crc;
    crc = kTables[7][low & 0xFFU] ^ kTables[6][low >> 8U & 0xFFU] ^ kTables[5][low >> 16U & 0xFFU] ^
          kTables[4][low >> 24U] ^ kTables[3][high & 0xFFU] ^ kTables[2][high >> 8U & 0xFFU] ^
          kTables[1][high >> 16U & 0xFFU] ^ kTables[0][high >> 24U];
  }
  for (; left > 0; --left, ++at) {
    crc = crc >> 8U ^ kTables[0][(crc ^ std::to_integer<std::uint32_t>(*at)) & 0xFFU];
  }
  return crc;
}

Kernel ByInstruction() noexcept {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_cpu_init();
  return __builtin_cpu_supports("sse4.2") ? &Instruction : nullptr;
#else
  return nullptr;
#endif
}

}  // namespace crc32c

std::uint32_t Crc32c(std::span<const std::byte> bytes, std::uint32_t before) noexcept {
  static const crc32c::Kernel kernel = [] {
    const crc32c::Kernel offered = crc32c::ByInstruction();
    return offered != nullptr ? offered : &crc32c::ByTables;
  }();
  return ~kernel(~before, bytes);
}

}  // namespace kiv
