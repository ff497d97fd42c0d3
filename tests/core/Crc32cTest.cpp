#include <gtest/gtest.h>

#include <random>
#include <string_view>
#include <vector>

#include "core/Crc32c.h"

namespace kiv {
namespace {

std::span<const std::byte> BytesOf(std::string_view text) {
  return std::as_bytes(std::span(text));
}

TEST(Crc32c, GivesThePublishedChecksums) {
  EXPECT_EQ(Crc32c({}), 0U);
  EXPECT_EQ(Crc32c(BytesOf("123456789")), 0xE3069283U);
  EXPECT_EQ(Crc32c(std::vector<std::byte>(32)), 0x8A9136AAU);
  EXPECT_EQ(Crc32c(std::vector<std::byte>(32, std::byte{0xFF})), 0x62A8AB43U);
}

TEST(Crc32c, GoesOnFromTheBytesBefore) {
  EXPECT_EQ(Crc32c(BytesOf("6789"), Crc32c(BytesOf("12345"))), 0xE3069283U);
}

TEST(Crc32c, TablesAndInstructionAgree) {
  const crc32c::Kernel instruction = crc32c::ByInstruction();
  std::mt19937 random(7);
  std::vector<std::byte> bytes(300);
  for (std::byte& byte : bytes) {
    byte = static_cast<std::byte>(random());
  }
  for (std::size_t start = 0; start < 9; ++start) {
    for (std::size_t size = 0; start + size <= bytes.size(); ++size) {
      const auto part = std::span<const std::byte>(bytes).subspan(start, size);
      const auto seed = static_cast<std::uint32_t>(random());
      const std::uint32_t byTables = crc32c::ByTables(seed, part);
      std::uint32_t bitByBit = seed;
      for (const std::byte byte : part) {
        bitByBit ^= std::to_integer<std::uint32_t>(byte);
        for (int bit = 0; bit < 8; ++bit) {
          bitByBit = bitByBit >> 1U ^ ((bitByBit & 1U) != 0 ? 0x82F63B78U : 0U);
        }
      }
      ASSERT_EQ(byTables, bitByBit) << start << " " << size;
      if (instruction != nullptr) {
        ASSERT_EQ(instruction(seed, part), byTables) << start << " " << size;
      }
    }
  }
}

}  // namespace
}  // namespace kiv
