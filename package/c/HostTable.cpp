#include "package/c/HostTable.h"

#include <cstddef>
#include <utility>

#include "package/c/Abi.h"
#include "package/c/LentControls.h"

namespace kiv::c {
namespace {

/// A service of the table; what the application has not got is the built-in host's.
template <class Service>
class Lending : public Service {
 public:
  Lending(const KivHostTable& table, Service& builtIn) : table_(table), builtIn_(builtIn) {}

 protected:
  const KivHostTable& table_;
  Service& builtIn_;
};

class LentApplication : public Lending<host::Application> {
 public:
  using Lending::Lending;
  [[nodiscard]] bool OnMainThread() const override {
    return table_.onMainThread == nullptr ? builtIn_.OnMainThread() : table_.onMainThread(table_.context) != 0;
  }
  void ProcessMessages() override {
    if (table_.processMessages == nullptr) {
      builtIn_.ProcessMessages();
    } else {
      table_.processMessages(table_.context);
    }
  }
  [[nodiscard]] Handle MainWindow() const override {
    return table_.mainWindow == nullptr ? builtIn_.MainWindow() : table_.mainWindow(table_.context);
  }
};

host::Rect FromTable(const KivRect& rect) {
  return {rect.left, rect.top, rect.right, rect.bottom};
}

class LentScreen : public Lending<host::Screen> {
 public:
  using Lending::Lending;
  [[nodiscard]] std::vector<host::Monitor> Monitors() const override {
    if (table_.monitors == nullptr) {
      return builtIn_.Monitors();
    }
    const auto lent = Listed<KivMonitor>([this](KivMonitor* monitors, std::size_t capacity) {
      return table_.monitors(table_.context, monitors, capacity);
    });
    std::vector<host::Monitor> monitors;
    monitors.reserve(lent.size());
    for (const KivMonitor& monitor : lent) {
      monitors.push_back({FromTable(monitor.bounds), FromTable(monitor.workArea)});
    }
    return monitors;
  }
  [[nodiscard]] host::Point MousePosition() const override {
    if (table_.mousePosition == nullptr) {
      return builtIn_.MousePosition();
    }
    KivPoint position{};
    table_.mousePosition(table_.context, &position);
    return {position.x, position.y};
  }
  [[nodiscard]] std::int32_t PixelsPerInch() const override {
    return table_.pixelsPerInch == nullptr ? builtIn_.PixelsPerInch() : table_.pixelsPerInch(table_.context);
  }
  [[nodiscard]] std::int32_t MessageFontHeight() const override {
    return table_.messageFontHeight == nullptr ? builtIn_.MessageFontHeight()
                                               : table_.messageFontHeight(table_.context);
  }
  [[nodiscard]] std::int32_t Capability(Handle device, host::DeviceCapability capability) const override {
    return table_.deviceCapability == nullptr
               ? builtIn_.Capability(device, capability)
               : table_.deviceCapability(table_.context, device, static_cast<std::int32_t>(capability));
  }
};

class LentDialogs : public Lending<host::Dialogs> {
 public:
  using Lending::Lending;
  [[nodiscard]] host::DialogAnswer Ask(host::DialogKind kind, TextView text, host::DialogButtons buttons) override {
    if (table_.ask == nullptr) {
      return builtIn_.Ask(kind, text, buttons);
    }
    const std::int32_t answer = table_.ask(table_.context, static_cast<std::int32_t>(kind), text.data(), text.size(),
                                           static_cast<std::int32_t>(buttons));
    if (answer < KIV_ANSWER_OK || answer > KIV_ANSWER_RETRY) {
      throw Error("Aplicatia nu poate arata dialogul \"" + Text(text) + "\"");
    }
    return host::DialogAnswer{answer};
  }
};

class LentClipboard : public Lending<host::Clipboard> {
 public:
  using Lending::Lending;
  void SetText(TextView text) override {
    if (table_.setClipboardText == nullptr) {
      builtIn_.SetText(text);
    } else if (table_.setClipboardText(table_.context, text.data(), text.size()) < 0) {
      throw Error("Aplicatia nu poate scrie in clipboard");
    }
  }
  [[nodiscard]] Text GetText() override {
    if (table_.clipboardText == nullptr) {
      return builtIn_.GetText();
    }
    return WrittenText(
        [this](char* buffer, std::size_t room) { return table_.clipboardText(table_.context, buffer, room); },
        "clipboardText");
  }
};

class LentColours : public Lending<host::Colours> {
 public:
  using Lending::Lending;
  [[nodiscard]] Colour SystemColour(std::uint8_t number) const override {
    return table_.systemColour == nullptr ? builtIn_.SystemColour(number)
                                          : table_.systemColour(table_.context, number) & 0x00FFFFFF;
  }
};

class TableHost : public host::Host {
 public:
  explicit TableHost(const KivHostTable& table) : table_(std::make_shared<const KivHostTable>(table)) {}

  [[nodiscard]] host::Application& GetApplication() override { return application_; }
  [[nodiscard]] host::Screen& GetScreen() override { return screen_; }
  [[nodiscard]] host::Dialogs& GetDialogs() override { return dialogs_; }
  [[nodiscard]] host::Clipboard& GetClipboard() override { return clipboard_; }
  [[nodiscard]] host::Colours& GetColours() override { return colours_; }

  [[nodiscard]] const SharedTable& Table() const noexcept { return table_; }

 private:
  SharedTable table_;
  LentApplication application_{*table_, Host::GetApplication()};
  LentScreen screen_{*table_, Host::GetScreen()};
  LentDialogs dialogs_{*table_, Host::GetDialogs()};
  LentClipboard clipboard_{*table_, Host::GetClipboard()};
  LentColours colours_{*table_, Host::GetColours()};
};

std::unique_ptr<TableHost>& InstalledTable() {
  static std::unique_ptr<TableHost> installed;
  return installed;
}

}  // namespace

std::unique_ptr<host::Control> LentControl(KivControl* control) {
  const std::unique_ptr<TableHost>& installed = InstalledTable();
  if (installed == nullptr) {
    throw Error("Nu este instalata nici o gazda: KivHostInstall");
  }
  return MakeLentControl(installed->Table(), control);
}

}  // namespace kiv::c

using namespace kiv::c;

extern "C" {

KivStatus KivHostInstall(const KivHostTable* table) {
  return Run([=] {
    const KivHostTable& lent = KIV_REQUIRED(table);
    // The table has had one form so far; a shorter one ends before functions that would then be read from beyond it.
    if (lent.size < sizeof(KivHostTable)) {
      throw ArgumentError("table: marimea " + std::to_string(lent.size) + " nu este a nici unei versiuni");
    }
    auto host = std::make_unique<TableHost>(lent);
    kiv::host::Install(*host);
    InstalledTable().swap(host);
  });
}

KivStatus KivHostRemove(void) {
  return Run([] { InstalledTable().reset(); });
}

}  // extern "C"
