// Calls every function of the C interface with random, null and contradictory arguments. Whatever it is given, it must
// keep its promises: a length or a negated code that KivLastError confirms, results untouched on failure, a terminated
// buffer on success, and no byte touched outside what the caller owns (the sanitizers watch that).
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>
#include <list>
#include <string>
#include <tuple>
#include <vector>

#include "fuzz/Property.h"
#include "kivtools/kiv.h"

namespace {

constexpr unsigned char kUntouched = 0xA5;

/// Makes arguments by their types, from left to right: a size follows the pointer that it belongs to.
class Arguments {
 public:
  explicit Arguments(FuzzedDataProvider& data) : data_(data) {}

  template <class Type>
  Type Next() {
    if constexpr (std::is_same_v<Type, const char*>) {
      return NextText();
    } else if constexpr (std::is_same_v<Type, char*>) {
      return NextBuffer();
    } else if constexpr (std::is_same_v<Type, std::size_t>) {
      return size_;
    } else if constexpr (std::is_pointer_v<Type>) {
      return NextObject<std::remove_const_t<std::remove_pointer_t<Type>>>();
    } else if constexpr (std::is_floating_point_v<Type>) {
      return data_.ConsumeBool() ? data_.ConsumeFloatingPoint<Type>()
                                 : data_.ConsumeFloatingPointInRange<Type>(-1e6, 4e6);
    } else if constexpr (sizeof(Type) == 4) {
      // Widths of gigabytes would only test the memory of this machine.
      return data_.ConsumeBool() ? data_.ConsumeIntegralInRange<Type>(-2, 70)
                                 : std::min<Type>(data_.ConsumeIntegral<Type>(), 9999);
    } else {
      return data_.ConsumeIntegral<Type>();
    }
  }

  void CheckSuccess(std::int64_t result) const {
    for (const std::vector<char>& buffer : buffers_) {
      // A function with two texts gives their lengths elsewhere.
      const auto kept = textResults_ > 1
                            ? static_cast<std::size_t>(std::find(buffer.begin(), buffer.end(), '\0') - buffer.begin())
                            : std::min(static_cast<std::size_t>(result), buffer.size() - 1);
      REQUIRE(buffer.empty() || (kept < buffer.size() && buffer[kept] == '\0'));
    }
  }

  void CheckFailure() const {
    const auto untouched = [](char byte) { return static_cast<unsigned char>(byte) == kUntouched; };
    for (const std::list<std::vector<char>>* results : {&buffers_, &outputs_}) {
      for (const std::vector<char>& bytes : *results) {
        REQUIRE(std::all_of(bytes.begin(), bytes.end(), untouched));
      }
    }
  }

 private:
  const char* NextText() {
    if (data_.ConsumeIntegralInRange(0, 9) == 0) {
      size_ = data_.ConsumeBool() ? 0 : data_.ConsumeIntegral<std::size_t>();
      return nullptr;
    }
    const std::string text = data_.ConsumeRandomLengthString(200);
    const bool terminated = data_.ConsumeBool();
    // An allocation of its own, without a byte to spare.
    std::vector<char>& bytes = texts_.emplace_back(text.begin(), text.end());
    size_ = bytes.size();
    if (terminated) {
      bytes.push_back('\0');
      size_ = KIV_ZERO_ENDED;
    }
    bytes.shrink_to_fit();
    return bytes.empty() ? "" : bytes.data();
  }

  char* NextBuffer() {
    ++textResults_;
    if (data_.ConsumeIntegralInRange(0, 9) == 0) {
      size_ = data_.ConsumeBool() ? 0 : data_.ConsumeIntegral<std::size_t>();
      return nullptr;
    }
    const auto capacity = data_.ConsumeIntegralInRange<std::size_t>(0, 300);
    std::vector<char>& buffer = buffers_.emplace_back(capacity, static_cast<char>(kUntouched));
    size_ = buffer.size();
    return buffer.data();
  }

  template <class Object>
  Object* NextObject() {
    if (data_.ConsumeIntegralInRange(0, 9) == 0) {
      return nullptr;
    }
    std::vector<char>& bytes = outputs_.emplace_back(sizeof(Object), static_cast<char>(kUntouched));
    return reinterpret_cast<Object*>(bytes.data());
  }

  FuzzedDataProvider& data_;
  std::size_t size_ = 0;
  std::list<std::vector<char>> texts_;
  std::list<std::vector<char>> outputs_;
  std::list<std::vector<char>> buffers_;
  int textResults_ = 0;
};

template <auto Function>
struct Call;

template <class Result, class... Parameters, Result (*Function)(Parameters...)>
struct Call<Function> {
  static void Run(FuzzedDataProvider& data) {
    Arguments arguments(data);
    const std::tuple<Parameters...> values{arguments.Next<Parameters>()...};  // braces: from left to right
    const Result result = std::apply(Function, values);
    if (result < 0) {
      REQUIRE(KivLastError() == -result);
      REQUIRE(KivLastErrorMessage(nullptr, 0) > 0);
      arguments.CheckFailure();
    } else {
      arguments.CheckSuccess(result);
    }
  }
};

template <auto... Functions>
constexpr auto Calls() {
  return std::array{&Call<Functions>::Run...};
}

constexpr auto kCalls =
    Calls<KivTextToUtf8, KivUtf8ToText, KivVersion,         //
          KivInLitere, KivInLitereCurrency, KivInLitereMF,  //
          KivCurrencyToRoStr, KivCurrencyToRoStrFaraSpatiu, KivCurrencyToRoStrRON, KivRoStrToCurrency,
          KivScrieFoarteFrumos, KivEncodeDate, KivDecodeDate, KivDateToRoText, KivDateToRoText2, KivDateToRoText3,
          KivDateToRoText4, KivDateToRoText5, KivDateToRoText6, KivDateToRoText7, KivDateToRoCode, KivDateToRoTextScurt,
          KivDateToRoTextScurtCuAn, KivDateToRoTextScurtCuAnPlusOra, KivNumeZiDinSaptamana, KivTimeToStrRoFrumos,
          KivTimeToStrRo, KivTimeToStrRo2, KivRoCodeToDate, KivDateToRoText_WithCode,  //
          KivTextIntreGhilimele, KivTextInGhilimele, KivQuoteText, KivTextDinGhilimele, KivPadLeft, KivPadRight,
          KivTextDeLatimeFixa, KivStripDot, KivStripDotExtract2CifreDupaVirgula, KivPunePuncteInSimbol,
          KivRespectaMasca, KivGuidEgal, KivNumeDinNumeSiPrenume, KivPrenumeDinNumeSiPrenume,
          KivScrieFrumosNrTelefon,  //
          KivNotaToStr, KivNotaToTextLung, KivNotaToTextScurt, KivTestCNP, KivAnulNasteriiDinCnp, KivDataNasteriiDinCNP,
          KivDataNasteriiDinCNP_scurt, KivVarstaDinCNP, KivTestCodFiscal, KivValideazaIBAN, KivEsteIBAN,
          KivExtrageIBANdinIBANCuAnalitic, KivEliminaCoduriDinIBAN, KivValideazaSIRUTA, KivIncMonth, KivSetDayOfDate,
          KivSetShortDateFormat, KivCalcDurataTotala, KivCalcDurataTotalaText, KivTimeToStrDurataMS,
          KivDateTimeToSmartStrimg, KivSmartStringToDateTime>();

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  while (data.remaining_bytes() > 0) {
    kCalls[data.ConsumeIntegralInRange<std::size_t>(0, kCalls.size() - 1)](data);
  }
  return 0;
}
