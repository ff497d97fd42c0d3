/// @file
/// What the library asks of the application's user-interface framework: small abstract classes with just the members
/// that its units need, and the services gathered in Host. An application installs its own host, or leaves it to the
/// built-in one: plain Windows calls on Windows, a host without windows elsewhere.
///
/// Everything here is meant for the application's main thread.
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

/// The clipboard, as text.
class KIV_API Clipboard {
 public:
  virtual ~Clipboard() = default;
  /// Replaces the clipboard's content by a text. Throws OsError where the clipboard cannot be opened.
  virtual void SetText(TextView text) = 0;
  /// The clipboard's text, empty where it holds none; letters that Windows-1250 lacks are "?". Throws like SetText.
  [[nodiscard]] virtual Text GetText() = 0;
};

/// A component class as a form designer knows it.
struct ComponentClass {
  /// The page of the designer's palette. Example: "CESystem".
  Text page;
  /// The class name. Example: "TCEVersionInfo".
  Text name;
  /// Makes a component of the class for that owner, who deletes it; the caller does where the owner is null.
  Component* (*create)(Component* owner);
};

/// The services of the application's framework. An application derives from it, overrides the services that it has
/// and installs it; the others stay those of the built-in host.
///
///     class MyHost : public host::Host {
///       host::Clipboard& Clipboard() override { return clipboard_; }
///       ...
///     };
class KIV_API Host {
 public:
  Host() = default;
  /// A host that is still installed makes place for the built-in one.
  virtual ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// The clipboard.
  [[nodiscard]] virtual host::Clipboard& Clipboard();

  /// Makes a component class known to the form designer; the same name on the same page is replaced. Without a
  /// designer the classes are kept for Palette().
  virtual void RegisterComponent(const ComponentClass& componentClass);
  /// The classes that RegisterComponent has kept, in order.
  [[nodiscard]] std::span<const ComponentClass> Palette() const noexcept { return palette_; }

 private:
  std::vector<ComponentClass> palette_;
};

/// Makes `host` the one that the library asks from now on. It must live until another is installed; its destructor
/// brings the built-in one back. Example: `host::Install(myHost)`; from then on `&host::Current() == &myHost`.
KIV_API void Install(Host& host) noexcept;

/// The installed host, the built-in one where none is. Example: `host::Current().Clipboard().SetText("12")`.
[[nodiscard]] KIV_API Host& Current() noexcept;

}  // namespace kiv::host
