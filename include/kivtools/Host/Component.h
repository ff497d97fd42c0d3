/// @file
/// The base classes of everything that an application's framework lends to the library.
#pragma once

#include <span>
#include <vector>

#include "kivtools/Types.h"

namespace kiv::host {

/// The base of the framework's classes.
class KIV_API Object {
 public:
  virtual ~Object() = default;
  /// The name of the object's class, for messages and lists. Example: "TFormFactura".
  [[nodiscard]] virtual TextView ClassName() const = 0;
};

/// An object that may belong to another one, its owner, which deletes it when the owner itself is destroyed. So a
/// component made with an owner is made with `new` and then left alone; it may be deleted sooner, by `delete` or by
/// leaving its scope, and then takes itself off its owner's list. A component without an owner is an ordinary object.
///
///     auto* version = new TCEVersionInfo(&form);   // deleted with the form
///     TCEVersionInfo other;                        // nobody's; ends with its scope
class KIV_API Component : public Object {
 public:
  /// Joins the owner's list; null for none.
  explicit Component(Component* owner = nullptr);
  /// Deletes the owned components, the last made first, and leaves the owner's list.
  ~Component() override;
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  /// The owner, null for none.
  [[nodiscard]] Component* Owner() const noexcept { return owner_; }
  /// The owned components in the order in which they were made.
  [[nodiscard]] std::span<Component* const> Components() const noexcept { return owned_; }

 private:
  Component* owner_;
  std::vector<Component*> owned_;
};

}  // namespace kiv::host
