#pragma once

#include <atomic>

namespace kiv {

/// A service that the library asks through an interface: the built-in one, unless a host or a test has put another in
/// its place. One object for the whole process and each kind of service, declared beside the interface:
///
///     extern Service<const Clock> clock_service;      // platform/Clock.h
///     clock_service.Current().Now();                  // whoever needs the time
///     const Replacement inUse(clock_service, fixed);  // a test
///
/// `Current` may be called from any thread; a replacement must live until every call of it has ended.
template <class Interface>
class Service {
 public:
  /// `builtIn` gives the service that is in use from the start; it is asked for no sooner than it is needed, so that
  /// the service works before any constructor has run.
  constexpr explicit Service(Interface& (*builtIn)() noexcept) noexcept : builtIn_(builtIn) {}
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

  /// The service in use.
  [[nodiscard]] Interface& Current() const noexcept {
    Interface* const replacement = replacement_.load(std::memory_order_acquire);
    return replacement != nullptr ? *replacement : builtIn_();
  }

  /// What is in use instead of the built-in service, null for nothing; for services that are asked on fast ways and
  /// whose built-in form does nothing.
  [[nodiscard]] Interface* InItsPlace() const noexcept { return replacement_.load(std::memory_order_acquire); }

  /// Puts `replacement` in use, the built-in service for null; returns what was in the built-in one's place, null for
  /// nothing.
  Interface* Replace(Interface* replacement) noexcept { return replacement_.exchange(replacement); }

  /// Brings the built-in service back if `replacement` is in use; for destructors of what may be in use.
  void Withdraw(Interface& replacement) noexcept {
    Interface* expected = &replacement;
    replacement_.compare_exchange_strong(expected, nullptr);
  }

 private:
  Interface& (*builtIn_)() noexcept;
  std::atomic<Interface*> replacement_{nullptr};
};

/// Puts a service in use for as long as this object lives, and then back what was there. They nest.
template <class Interface>
class Replacement {
 public:
  Replacement(Service<Interface>& service, Interface& replacement) noexcept
      : service_(service), before_(service.Replace(&replacement)) {}
  ~Replacement() { service_.Replace(before_); }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

 private:
  Service<Interface>& service_;
  Interface* before_;
};

}  // namespace kiv
