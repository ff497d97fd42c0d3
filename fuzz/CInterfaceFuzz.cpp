// Calls the functions of the C interface with random, null and contradictory arguments: all those that the headers
// declare, without those whose arguments cannot be made up (nodes, callbacks, tracked addresses) or that act on the
// system. Whatever it is given, it must keep its promises: a length or a negated code that KivLastError confirms,
// results untouched on failure, a terminated buffer on success, and no byte touched outside what the caller owns (the
// sanitizers watch that).
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <list>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "fuzz/Property.h"
#include "tests/c/Handles.h"

namespace {

constexpr unsigned char kUntouched = 0xA5;

/// What an argument points to; for any other argument the argument itself.
template <class Type>
using Pointed = std::remove_const_t<std::remove_pointer_t<Type>>;

/// A handle, of which there is one that all calls share.
template <class Type>
constexpr bool kIsHandle = std::is_pointer_v<Type>&& requires {
  RealObject<Pointed<Type>>();
};

/// Whether an argument can be made up from random bytes.
template <class Type>
constexpr bool kIsMadeUp =
    !std::is_same_v<Pointed<Type>, KivAVLNode> && !std::is_function_v<Pointed<Type>> &&
    !std::is_void_v<Pointed<Type>> && (!std::is_pointer_v<Pointed<Type>> || std::is_same_v<Type, const char* const*>);

/// Makes arguments by their types, from left to right: a size follows the pointer that it belongs to.
class Arguments {
 public:
  explicit Arguments(FuzzedDataProvider& data) : data_(data) {}

  template <class Type>
  Type Next() {
    if constexpr (std::is_same_v<Type, const char*> || std::is_same_v<Type, const std::uint16_t*>) {
      return NextText<std::remove_const_t<std::remove_pointer_t<Type>>>();
    } else if constexpr (std::is_same_v<Type, const std::uint8_t*>) {
      return NextBytes();
    } else if constexpr (std::is_same_v<Type, char*> || std::is_same_v<Type, std::uint16_t*> ||
                         std::is_same_v<Type, std::uint8_t*>) {
      return NextBuffer<std::remove_pointer_t<Type>>();
    } else if constexpr (std::is_same_v<Type, std::size_t>) {
      // A size that belongs to no pointer is the number of a field or of a mark.
      return std::exchange(hasSize_, false) ? size_ : data_.ConsumeIntegralInRange<std::size_t>(0, kMostNumbers);
    } else if constexpr (std::is_same_v<Type, std::uint32_t>) {
      return data_.ConsumeBool() ? data_.ConsumeIntegralInRange<Type>(0, 9) : data_.ConsumeIntegral<Type>();
    } else if constexpr (std::is_same_v<Type, const KivFieldValue*>) {
      return NextValues();
    } else if constexpr (kIsHandle<Type>) {
      return data_.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : RealObject<Pointed<Type>>();
    } else if constexpr (std::is_same_v<Type, const KivVariant*>) {
      return NextVariant();
    } else if constexpr (std::is_same_v<Type, const char* const*>) {
      return NextTexts();
    } else if constexpr (std::is_same_v<Type, const std::size_t*>) {
      return nullptr;
    } else if constexpr (std::is_pointer_v<Type>) {
      return NextObject<Pointed<Type>>();
    } else if constexpr (std::is_floating_point_v<Type>) {
      return data_.ConsumeBool() ? data_.ConsumeFloatingPoint<Type>()
                                 : data_.ConsumeFloatingPointInRange<Type>(-1e6, 4e6);
    } else if constexpr (std::is_same_v<Type, std::int32_t>) {
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
    for (const auto& free : made_) {
      free();
    }
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
    check(std::get<Memory<std::uint8_t>>(memory_).buffers);
  }

 private:
  template <class Unit>
  struct Memory {
    std::list<std::vector<Unit>> texts;
    std::list<std::vector<Unit>> buffers;
  };

  template <class Unit>
  const Unit* NextText() {
    hasSize_ = true;
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
    hasSize_ = true;
    if (data_.ConsumeIntegralInRange(0, 9) == 0) {
      size_ = data_.ConsumeBool() ? 0 : data_.ConsumeIntegral<std::size_t>();
      return nullptr;
    }
    const auto capacity = data_.ConsumeIntegralInRange<std::size_t>(0, 300);
    auto& buffer = std::get<Memory<Unit>>(memory_).buffers.emplace_back(capacity, static_cast<Unit>(kUntouched));
    size_ = buffer.size();
    return buffer.data();
  }

  /// Zero-terminated texts; their number is the size that follows.
  const char* const* NextTexts() {
    auto& texts = lists_.emplace_back(data_.ConsumeIntegralInRange<std::size_t>(0, 5));
    for (const char*& text : texts) {
      text = NextText<char>();
      if (text != nullptr && size_ != KIV_ZERO_ENDED) {
        text = "%a%";
      }
    }
    size_ = texts.size();
    hasSize_ = true;
    return texts.data();
  }

  const std::uint8_t* NextBytes() { return reinterpret_cast<const std::uint8_t*>(NextText<char>()); }

  const KivFieldValue* NextValues() {
    auto& values = values_.emplace_back(data_.ConsumeIntegralInRange<std::size_t>(0, 16));
    for (KivFieldValue& value : values) {
      value.kind = data_.ConsumeIntegralInRange(-1, 10);
      value.integer = Next<std::int64_t>();
      value.number = Next<double>();
      value.units =
          value.kind == KIV_VALUE_WIDE_TEXT ? static_cast<const void*>(NextText<std::uint16_t>()) : NextText<char>();
      value.size = size_;
    }
    size_ = values.size();
    hasSize_ = true;
    return data_.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : values.data();
  }

  const KivVariant* NextVariant() {
    KivVariant& value = variants_.emplace_back();
    value.kind = data_.ConsumeIntegralInRange(-1, 7);
    value.integer = Next<std::int64_t>();
    value.number = Next<double>();
    value.text = NextText<char>();
    value.length = size_;
    hasSize_ = false;
    return &value;
  }

  template <class Object>
  Object* NextObject() {
    if (data_.ConsumeIntegralInRange(0, 9) == 0) {
      return nullptr;
    }
    // A colour may be the first of as many as the number behind it says.
    constexpr std::size_t kCount = std::is_same_v<Object, std::uint32_t> ? kMostNumbers : 1;
    std::vector<char>& bytes = outputs_.emplace_back(kCount * sizeof(Object), static_cast<char>(kUntouched));
    if constexpr (requires(Object made) { FreeObject(made); }) {
      made_.emplace_back([&bytes] {
        Object made = nullptr;
        std::memcpy(&made, bytes.data(), sizeof made);
        FreeObject(made);
      });
    }
    return reinterpret_cast<Object*>(bytes.data());
  }

  static constexpr std::size_t kMostNumbers = 16;

  FuzzedDataProvider& data_;
  std::size_t size_ = 0;
  bool hasSize_ = false;  // a pointer has come that it belongs to
  std::tuple<Memory<char>, Memory<std::uint16_t>, Memory<std::uint8_t>> memory_;
  std::list<std::vector<char>> outputs_;
  std::list<std::vector<const char*>> lists_;
  std::list<KivVariant> variants_;
  std::list<std::vector<KivFieldValue>> values_;
  std::list<std::function<void()>> made_;
  int textResults_ = 0;
};

using Call = void (*)(FuzzedDataProvider&);

template <class... Parameters>
constexpr bool kCanFail = (std::is_pointer_v<Parameters> || ...);

/// The call of one function; null where it is left out.
template <auto Function, class Result, class... Parameters>
constexpr Call CallOf(Result (* /*type*/)(Parameters...)) {
  if constexpr (sizeof...(Parameters) == 0 || !std::is_integral_v<Result> || !(kIsMadeUp<Parameters> && ...)) {
    return nullptr;
  } else {
    return [](FuzzedDataProvider& data) {
      Arguments arguments(data);
      const std::tuple<Parameters...> values{arguments.Next<Parameters>()...};  // braces: from left to right
      const Result result = std::apply(Function, values);
      if (result >= 0) {
        arguments.CheckSuccess(result);
      } else if (kCanFail<Parameters...>) {
        REQUIRE(KivLastError() == -result);
        REQUIRE(KivLastErrorMessage(nullptr, 0) > 0);
        arguments.CheckFailure();
      }
    };
  }
}

constexpr Call kAll[] = {
#define KIV_C_FUNCTION(name, parameters) CallOf<name>(name),
#define KIV_C_SYSTEM_FUNCTION(name, parameters)
#include "c_functions.inc"
};

const std::vector<Call>& Calls() {
  static const std::vector<Call> calls = [] {
    std::vector<Call> made(std::begin(kAll), std::end(kAll));
    std::erase(made, nullptr);
    return made;
  }();
  return calls;
}

/// So that runs begin alike and do not fill the memory.
void ResetRows(KivDataset* dataset) {
  KivDatasetCancelLoad(dataset);
  KivDatasetCancel(dataset);
  KivDatasetCancelChanges(dataset);
  std::uint32_t row = KIV_NO_ROW;
  while (KivDatasetRowCount(dataset) > 5 && KivDatasetNextRow(dataset, row, &row) == 1) {
    KivDatasetDelete(dataset, row);
  }
  KivDatasetAcceptChanges(dataset);
  KivDatasetCompact(dataset);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  KivStringListClear(RealObject<KivStringList>());
  ResetRows(RealObject<KivDataset>());
  while (data.remaining_bytes() > 0) {
    Calls()[data.ConsumeIntegralInRange<std::size_t>(0, Calls().size() - 1)](data);
  }
  return 0;
}
