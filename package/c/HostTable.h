#pragma once

#include <memory>

#include "kivtools/Host.h"
#include "kivtools/c/Host.h"

/// The application's table of functions as a host, and its controls as the library's.
namespace kiv::c {

/// The control of the host that is installed through the C interface, as its kind says it is; throws Error where none
/// is installed. The object may be kept as long as the application keeps the control.
std::unique_ptr<host::Control> LentControl(KivControl* control);

/// The same as a form, a panel or a label. Throws InvalidCast, with the operation's argument `name`, for another kind.
template <class Kind>
std::unique_ptr<Kind> Lent(KivControl* control, const char* name) {
  std::unique_ptr<host::Control> lent = LentControl(control);
  auto* const wanted = dynamic_cast<Kind*>(lent.get());
  if (wanted == nullptr) {
    throw InvalidCast(Text(name) + ": " + lent->Name() + ":" + Text(lent->ClassName()) + " este un control de alt tip");
  }
  [[maybe_unused]] const host::Control* const same = lent.release();
  return std::unique_ptr<Kind>(wanted);
}

/// The application's own address of a control that it has lent.
KivControl* AddressOf(const host::Control& lent);

}  // namespace kiv::c
