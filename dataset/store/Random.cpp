#include "dataset/store/Random.h"

#include <random>

namespace kiv::store {

Guid RandomGuid() {
  std::random_device random;
  const std::uint32_t second = random();
  Guid guid{random(), static_cast<std::uint16_t>(second), static_cast<std::uint16_t>(second >> 16U)};
  for (auto& byte : guid.data4) {
    byte = static_cast<std::uint8_t>(random());
  }
  guid.data3 = static_cast<std::uint16_t>((guid.data3 & 0x0FFFU) | 0x4000U);
  guid.data4[0] = static_cast<std::uint8_t>((guid.data4[0] & 0x3FU) | 0x80U);
  return guid;
}

}  // namespace kiv::store
