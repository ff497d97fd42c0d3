// Calls the functions of the C interface with random, null and contradictory arguments; handles, tracked addresses and
// variants, whose bytes cannot be made up, have tests of their own. Whatever it is given, it must
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

/// The one list that all calls of an input fill, read and clear.
KivStringList* SharedList() {
  static KivStringList* const list = KivStringListNew();
  return list;
}

/// Makes arguments by their types, from left to right: a size follows the pointer that it belongs to.
class Arguments {
 public:
  explicit Arguments(FuzzedDataProvider& data) : data_(data) {}

  template <class Type>
  Type Next() {
    if constexpr (std::is_same_v<Type, const char*> || std::is_same_v<Type, const std::uint16_t*>) {
      return NextText<std::remove_const_t<std::remove_pointer_t<Type>>>();
    } else if constexpr (std::is_same_v<Type, char*> || std::is_same_v<Type, std::uint16_t*>) {
      return NextBuffer<std::remove_pointer_t<Type>>();
    } else if constexpr (std::is_same_v<Type, std::size_t>) {
      return size_;
    } else if constexpr (std::is_convertible_v<KivStringList*, Type>) {
      return data_.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : SharedList();
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
    const auto check = [&](const auto& buffers) {
      for (const auto& buffer : buffers) {
        // A function with two texts gives their lengths elsewhere.
        const auto kept = textResults_ > 1
                              ? static_cast<std::size_t>(std::find(buffer.begin(), buffer.end(), 0) - buffer.begin())
                              : std::min(static_cast<std::size_t>(result), buffer.size() - 1);
        REQUIRE(buffer.empty() || (kept < buffer.size() && buffer[kept] == 0));
      }
    };
    check(std::get<Memory<char>>(memory_).buffers);
    check(std::get<Memory<std::uint16_t>>(memory_).buffers);
  }

  void CheckFailure() const {
    const auto check = [](const auto& results) {
      for (const auto& units : results) {
        REQUIRE(std::all_of(units.begin(), units.end(),
                            [](auto unit) { return static_cast<unsigned char>(unit) == kUntouched; }));
      }
    };
    check(outputs_);
    check(std::get<Memory<char>>(memory_).buffers);
    check(std::get<Memory<std::uint16_t>>(memory_).buffers);
  }

 private:
  template <class Unit>
  struct Memory {
    std::list<std::vector<Unit>> texts;
    std::list<std::vector<Unit>> buffers;
  };

  template <class Unit>
  const Unit* NextText() {
    if (data_.ConsumeIntegralInRange(0, 9) == 0) {
      size_ = data_.ConsumeBool() ? 0 : data_.ConsumeIntegral<std::size_t>();
      return nullptr;
    }
    const std::string text = data_.ConsumeRandomLengthString(200);
    const bool terminated = data_.ConsumeBool();
    // An allocation of its own, without a byte to spare.
    std::vector<Unit>& units = std::get<Memory<Unit>>(memory_).texts.emplace_back(text.begin(), text.end());
    size_ = units.size();
    if (terminated) {
      units.push_back(0);
      size_ = KIV_ZERO_ENDED;
    }
    units.shrink_to_fit();
    static constexpr Unit kNone[] = {0};
    return units.empty() ? kNone : units.data();
  }

  template <class Unit>
  Unit* NextBuffer() {
    ++textResults_;
    if (data_.ConsumeIntegralInRange(0, 9) == 0) {
      size_ = data_.ConsumeBool() ? 0 : data_.ConsumeIntegral<std::size_t>();
      return nullptr;
    }
    const auto capacity = data_.ConsumeIntegralInRange<std::size_t>(0, 300);
    auto& buffer = std::get<Memory<Unit>>(memory_).buffers.emplace_back(capacity, static_cast<Unit>(kUntouched));
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
  std::tuple<Memory<char>, Memory<std::uint16_t>> memory_;
  std::list<std::vector<char>> outputs_;
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
    Calls<KivTextToUtf8, KivUtf8ToText, KivVersion,  //
          KivExplode, KivSplitTextOnSeparator, KivStringListAdd, KivStringListClear, KivStringListCount,
          KivStringListItem,                                //
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
          KivDateTimeToSmartStrimg, KivSmartStringToDateTime,  //
          KivStringToWideString, KivWideStringToString, KivUpCaseAsCodePage, KivRoToEn, KivRoText, KivCharReplace,
          KivEncodeM1String, KivDecodeM1String,  //
          KivStringHash, KivRemoveDualSlshPath, KivSmartRound, KivSmartRoundTo, KivCopiazaTextInClipboard,
          KivAnalizeazaNrVersiune, KivNumarulDeVersiuneEsteValid, KivCompareNrVersiune, KivGetFileVersionKiv,
          KivNamedFileVersionInfo, KivVersionFieldName>();

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  KivStringListClear(SharedList());
  while (data.remaining_bytes() > 0) {
    kCalls[data.ConsumeIntegralInRange<std::size_t>(0, kCalls.size() - 1)](data);
  }
  return 0;
}
