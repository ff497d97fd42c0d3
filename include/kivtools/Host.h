/// @file
/// What the library asks of the application's user-interface framework: small abstract classes with just the members
/// that its units need. An application derives its own host and installs it, or leaves it to the built-in ones: real
/// windows on Windows, and a host without windows elsewhere and for a Windows service that has no desktop.
///
/// Where nothing else is said everything here is meant for the application's main thread.
#pragma once

#include <exception>

#include "kivtools/Host/Component.h"
#include "kivtools/Host/Controls.h"
#include "kivtools/Host/Geometry.h"
#include "kivtools/Host/Services.h"

namespace kiv::host {

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
///       host::Clipboard& GetClipboard() override { return clipboard_; }
///       ...
///     };
class KIV_API Host {
 public:
  Host() = default;
  /// A host that is still installed makes place for the built-in one.
  virtual ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  [[nodiscard]] virtual Application& GetApplication();
  [[nodiscard]] virtual Screen& GetScreen();
  [[nodiscard]] virtual Dialogs& GetDialogs();
  [[nodiscard]] virtual Clipboard& GetClipboard();
  [[nodiscard]] virtual Colours& GetColours();

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

/// The installed host, the built-in one where none is. May be called from any thread.
/// Example: `host::Current().GetClipboard().SetText("12")`.
[[nodiscard]] KIV_API Host& Current() noexcept;

/// Shows a failure that nobody can catch any more in a dialog of the installed host; one that the host cannot show is
/// lost. For adapters that their toolkit calls, where no exception may pass.
/// Example: `catch (const std::exception& failure) { host::ShowFailure(failure); }`
KIV_API void ShowFailure(const std::exception& failure) noexcept;

}  // namespace kiv::host
