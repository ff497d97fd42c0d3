// Loads, uses and unloads the shared library again and again, as a host does that opens and closes it. Nothing may stay
// behind: neither the mapped file nor memory (which a checker around this program sees too).
#include <array>
#include <cstdio>
#include <filesystem>
#include <future>
#include <string>
#include <thread>

#include "kivtools/Loader.h"
#include "kivtools/kiv.h"
#include "platform/ProcessState.h"

namespace {

int failures = 0;

void Check(bool holds, int round, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "round %d: %s\n", round, what);
    ++failures;
  }
}

/// A call that succeeds and one that fails, so that this thread has a last error.
void Use(const kiv::LoadedPackage& package, int round) {
  auto* const toText = package.Function<decltype(KivUtf8ToText)>("KivUtf8ToText");
  std::array<char, 8> text{};
  Check(toText("ţară", KIV_ZERO_ENDED, text.data(), text.size()) == 4, round, "KivUtf8ToText gives 4 bytes");
  Check(kiv::TextView(text.data()) ==
            "\xFE"
            "ar\xE3",
        round, "KivUtf8ToText gives the letters");
  Check(toText("漢", KIV_ZERO_ENDED, text.data(), text.size()) == -KIV_ERROR_CONVERSION, round, "a letter is refused");
  Check(package.Function<decltype(KivLastError)>("KivLastError")() == KIV_ERROR_CONVERSION, round, "the last error");
}

void LoadUseUnload(const std::filesystem::path& library, int round) {
  // This thread goes on after the library is gone: what the library keeps for each thread must bear that.
  std::promise<void> unloaded;
  std::promise<void> used;
  std::thread survivor;
  {
    const auto package = kiv::LoadedPackage::FromNativePath(library);
    Use(package, round);
    survivor = std::thread([&] {
      Use(package, round);
      used.set_value();
      unloaded.get_future().wait();
    });
    used.get_future().wait();
    Check(kiv::test::IsLoaded(library.filename().string()), round, "the library is loaded");
  }
  unloaded.set_value();
  survivor.join();
  Check(!kiv::test::IsLoaded(library.filename().string()), round, "the library is gone after unloading");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s SHARED-LIBRARY BYTES-THAT-A-ROUND-MAY-LOSE\n", argv[0]);
    return 2;
  }
  const std::filesystem::path library(argv[1]);
  const std::size_t allowed = std::stoul(argv[2]);
  // What the system itself sets up for the first load and the first thread is there after two rounds.
  constexpr int kWarmUp = 2;
  constexpr int kRounds = 10;
  std::size_t before = 0;
  for (int round = 1; round <= kWarmUp + kRounds; ++round) {
    LoadUseUnload(library, round);
    before = round == kWarmUp ? kiv::test::HeapInUse() : before;
  }
  const std::size_t after = kiv::test::HeapInUse();
  if (after > before + kRounds * allowed) {
    std::fprintf(stderr, "%d rounds left %zu bytes behind\n", kRounds, after - before);
    ++failures;
  }
  return failures == 0 ? 0 : 1;
}
