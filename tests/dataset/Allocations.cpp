#include "Allocations.h"

#include <cstdlib>
#include <new>

namespace kiv {
namespace {

struct Watched {
  std::uint64_t count = 0;
  std::uint64_t failing = Allocations::kNever;
  bool hasFailed = false;
  std::size_t largest = 0;
};
thread_local Watched watched;

void* Allocate(std::size_t size) {
  watched.largest = size > watched.largest ? size : watched.largest;
  if (watched.count++ >= watched.failing) {
    watched.hasFailed = true;
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

void Allocations::FailFrom(std::uint64_t failing) noexcept {
  watched.count = 0;
  watched.failing = failing;
  watched.hasFailed = false;
}

bool Allocations::Stop() noexcept {
  watched.failing = kNever;
  return watched.hasFailed;
}

void Allocations::WatchLargest() noexcept {
  watched.largest = 0;
}

std::size_t Allocations::Largest() noexcept {
  return watched.largest;
}

}  // namespace kiv

void* operator new(std::size_t size) {
  return kiv::Allocate(size);
}
void* operator new[](std::size_t size) {
  return kiv::Allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
