#include <kivtools/WinUtil/Money.h>
#include <kivtools/WinUtil/NumbersInWords.h>

#include <iostream>

int main() {
  using namespace kiv::literals;
  std::cout << kiv::InLitere(1234.56_lei) << '\n';
  try {
    std::cout << kiv::RoStrToCurrency("12x").Raw() << '\n';
  } catch (const kiv::Error& error) {
    std::cout << error.what() << '\n';
  }
}
