// Every function of the C interface refuses a null pointer by its own name and the argument's, as the header has them.
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <tuple>

#include "Expect.h"
#include "c/Handles.h"
#include "kivtools/WinUtil/Strings.h"

namespace kiv {
namespace {

/// Where null is an answer of its own, as the header says.
const std::set<Text> kOptional = {"KivCalcDurataTotalaText: remainingLength",
                                  "KivCalcDurataTotalaText: totalLength",
                                  "KivDatasetAddListener: before",
                                  "KivDatasetAddListener: changed",
                                  "KivDatasetPost: posted",
                                  "KivDeltaTicket: kind",
                                  "KivDeltaTicket: row",
                                  "KivLastErrorMessage: buffer",
                                  "KivMaskReplace: lengths",
                                  "KivStringListFree: list",
                                  "KivVersionInfo: fixedInfo"};

Text LastMessage() {
  std::array<char, 200> message{};
  KivLastErrorMessage(message.data(), message.size());
  return message.data();
}

template <class Type>
constexpr bool kIsPlain = std::is_void_v<std::remove_pointer_t<Type>>;  // any address will do, null too

/// An argument that no function refuses.
template <class Type>
Type Good() {
  if constexpr (std::is_arithmetic_v<Type>) {
    return 1;
  } else if constexpr (std::is_same_v<Type, KivAvlForEach>) {
    return [](void*, std::int32_t, void*) -> std::int32_t { return 0; };
  } else if constexpr (std::is_same_v<Type, KivDataset*>) {
    KivDatasetInsert(RealObject<KivDataset>());  // a row is open, or one has been
    return RealObject<KivDataset>();
  } else if constexpr (std::is_same_v<Type, const char* const*>) {
    static constexpr const char* kText = "1";
    return &kText;
  } else if constexpr (kIsPlain<Type> || std::is_function_v<std::remove_pointer_t<Type>>) {
    return nullptr;
  } else {
    using Object = std::remove_const_t<std::remove_pointer_t<Type>>;
    if constexpr (requires { RealObject<Object>(); }) {
      return RealObject<Object>();
    } else {
      static std::array<Object, 8> objects{};
      objects = {};
      return objects.data();
    }
  }
}

template <class Result, class... Parameters>
class NullArguments {
 public:
  NullArguments(const char* name, Result (*function)(Parameters...), const char* parameters)
      : name_(name), function_(function), parameters_(Explode(",", parameters, sizeof...(Parameters))) {}

  void Check() const { CheckEach(std::index_sequence_for<Parameters...>()); }

 private:
  template <std::size_t... I>
  void CheckEach(std::index_sequence<I...> /*each*/) const {
    (CheckOne<I>(), ...);
  }

  template <std::size_t I>
  void CheckOne() const {
    using Type = std::tuple_element_t<I, std::tuple<Parameters...>>;
    if constexpr (std::is_pointer_v<Type> && !kIsPlain<Type> && std::is_integral_v<Result>) {
      std::tuple<Parameters...> arguments{Good<Parameters>()...};
      std::get<I>(arguments) = nullptr;
      const Text argument = name_ + ": " + parameters_.at(I);
      const auto result = static_cast<std::int64_t>(std::apply(function_, arguments));
      if (kOptional.contains(argument)) {
        EXPECT_GE(result, 0) << argument;
      } else {
        EXPECT_EQ(result, -KIV_ERROR_ARGUMENT) << argument;
        EXPECT_EQ(LastMessage(), argument + ": pointer nul");
      }
    }
  }

  Text name_;
  Result (*function_)(Parameters...);
  StringList parameters_;
};

TEST(CInterface, RefusesNullPointersByName) {
#define KIV_C_FUNCTION(name, parameters) NullArguments(#name, name, parameters).Check();
#define KIV_C_SYSTEM_FUNCTION(name, parameters)
#include "c_functions.inc"
}

}  // namespace
}  // namespace kiv
