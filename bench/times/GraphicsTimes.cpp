// Fills and the blur as the Windows build does them, beside their floors: for a build that has no benchmark library.
//   cmake --build --preset win32 --target kiv_graphics_times && scripts/wine32 build/win32/bin/kiv_graphics_times.exe
// prints milliseconds (the shortest of many rounds, ours and the floor in turn) and how many times the floor takes that
// is.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>

#include "kivtools/BmpRoutines.h"
#include "tools/BmpRoutines/Rasters.h"

namespace {

constexpr int kRounds = 25;
constexpr kiv::Colour kFrom = 0x00123456;
constexpr kiv::Colour kTo = 0x00FEDCBA;

template <class Work>
double Milliseconds(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

template <class Ours, class Floor>
void Compare(const char* what, int width, int height, Ours ours, Floor floor) {
  double least = 1e9;
  double leastFloor = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    least = std::min(least, Milliseconds(ours));
    leastFloor = std::min(leastFloor, Milliseconds(floor));
  }
  std::printf("%-16s %dx%d  %7.3f ms  floor %7.3f ms  %.2fx\n", what, width, height, least, leastFloor,
              least / leastFloor);
}

void CompareAll(int width, int height) {
  kiv::Bitmap bitmap(width, height);
  kiv::Bitmap other(width, height);
  const std::size_t rowBytes = 3 * static_cast<std::size_t>(width);
  const std::size_t bytes = rowBytes * static_cast<std::size_t>(height);  // whole words a row: no gaps
  std::mt19937 random(72);
  std::generate_n(bitmap.ScanLine(0), bytes, [&random] { return static_cast<std::uint8_t>(random()); });
  std::uint8_t* const out = other.ScanLine(0);
  std::memset(out, 0, bytes);

  Compare(
      "horizontal fill", width, height, [&] { kiv::bmp::FillFromLeft(kiv::RasterOf(other), kFrom, kTo); },
      [&] {
        for (int y = 0; y < height; ++y) {
          std::memcpy(out + static_cast<std::size_t>(y) * rowBytes, bitmap.ScanLine(0), rowBytes);
        }
      });
  Compare(
      "vertical fill", width, height, [&] { kiv::bmp::FillFromTop(kiv::RasterOf(other), kFrom, kTo); },
      [&] { std::memset(out, 0x55, bytes); });
  for (const int level : {2, 3}) {
    Compare(
        level == 2 ? "blur, level 2" : "blur, level 3", width, height, [&] { kiv::AntiAliasBmp(bitmap, 0, level); },
        [&] { std::memcpy(out, bitmap.ScanLine(0), bytes); });
  }
}

}  // namespace

int main() {
  CompareAll(1920, 1080);
  CompareAll(4096, 4096);
  return 0;
}
