/// @file
/// Deriving from TrackedInstance puts a C++ class under the lifetime tracker: `new` and `delete` report by themselves.
#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <type_traits>

#include "kivtools/UDepanarePointer.h"

namespace kiv {

/// Called when `delete` meets a tracked object that was deleted before or never created; the message is the error's.
/// The object is then neither destroyed nor freed, so that the program can go on. It must not throw. While it is empty
/// the message goes to the standard error stream. Example: `OnTrackedInstanceError = [](const Error& error) {
/// Log(error.what()); };`
extern KIV_API std::function<void(const Error&)> OnTrackedInstanceError;

namespace detail {

/// Reports a creation; does nothing while the tracker is not running.
KIV_API void NoteTrackedNew(const void* memory, TextView className);

/// Reports a release and its caller. False where the object must not be released; that has been reported then.
KIV_API bool NoteTrackedDelete(const void* memory, const void* caller) noexcept;

template <class Type>
constexpr TextView TypeName() noexcept {
  constexpr TextView kMark = "Type = ";
  const TextView function = __PRETTY_FUNCTION__;
  const std::size_t start = function.find(kMark) + kMark.size();
  return function.substr(start, function.find_first_of(";]", start) - start);
}

}  // namespace detail

/// The base of a class whose objects on the heap are tracked between Initialize() and Finalize(), under their address
/// and the name of `Derived`. `delete` asks the tracker before it touches the object: a second `delete` of an object
/// without virtual functions is noticed without reading it. One with a virtual destructor is read for its class first,
/// as the language has it, so that there a second `delete` is only noticed while the memory is not used again.
/// Objects that are no heap objects of their own (locals, members, elements of arrays) are not tracked.
/// `Derived` is final or has a virtual destructor.
///
///     class Invoice final : public TrackedInstance<Invoice> { ... };
///     auto* invoice = new Invoice;
///     delete invoice;
///     delete invoice;   // "Dai FreeInstance de 2 ori! Apelul anterior a venit de la adresa 4198400"
template <class Derived>
class TrackedInstance {
 public:
  /// Allocates and reports. Throws std::bad_alloc where there is no memory. Not inline, since compilers that see the
  /// inner allocation warn of a mismatched release.
  [[gnu::noinline]] static void* operator new(std::size_t size) {
    static_assert(alignof(Derived) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__, "over-aligned classes cannot be tracked");
    void* const memory = ::operator new(size);
    try {
      detail::NoteTrackedNew(memory, detail::TypeName<Derived>());
    } catch (...) {
      ::operator delete(memory);
      throw;
    }
    return memory;
  }

  /// Reports, then destroys and frees. Not inline, so that the caller it notes is the place of the `delete`.
  [[gnu::noinline]] static void operator delete(TrackedInstance* object, std::destroying_delete_t) {
    static_assert(std::has_virtual_destructor_v<Derived> || std::is_final_v<Derived>,
                  "a tracked class is final or has a virtual destructor");
    auto* const derived = static_cast<Derived*>(object);
    void* const memory = WholeObject(derived);
    if (detail::NoteTrackedDelete(memory, KIV_CALLER_ADDRESS())) {
      derived->~Derived();
      ::operator delete(memory);
    }
  }

  /// Where a constructor has thrown there is memory but no object.
  [[gnu::noinline]] static void operator delete(void* memory) {
    if (detail::NoteTrackedDelete(memory, KIV_CALLER_ADDRESS())) {
      ::operator delete(memory);
    }
  }

 protected:
  TrackedInstance() = default;
  TrackedInstance(const TrackedInstance&) = default;
  TrackedInstance& operator=(const TrackedInstance&) = default;
  ~TrackedInstance() = default;

 private:
  /// The address that `new` gave: a class derived from `Derived` may have it elsewhere than at its start.
  static void* WholeObject(Derived* object) noexcept {
    if constexpr (std::is_polymorphic_v<Derived>) {
      return dynamic_cast<void*>(object);
    } else {
      return object;
    }
  }
};

}  // namespace kiv
