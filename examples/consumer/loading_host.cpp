#include <kivtools/Loader.h>
#include <kivtools/kiv.h>

#include <array>
#include <iostream>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: loading_host SHARED-LIBRARY\n";
    return 2;
  }
  const kiv::LoadedPackage package(argv[1]);
  auto* const inLitere = package.Function<decltype(KivInLitereCurrency)>("KivInLitereCurrency");
  auto* const toCurrency = package.Function<decltype(KivRoStrToCurrency)>("KivRoStrToCurrency");
  auto* const message = package.Function<decltype(KivLastErrorMessage)>("KivLastErrorMessage");
  std::array<char, 256> text{};
  std::int64_t amount = 0;
  inLitere(12'345'600, text.data(), text.size());
  std::cout << text.data() << '\n';
  if (toCurrency("12x", KIV_ZERO_ENDED, &amount) < 0) {
    message(text.data(), text.size());
    std::cout << text.data() << '\n';
  }
}
