// The services that an application lends through a table, and the built-in host's where it lends none.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "../Expect.h"  // the folder has one of its own for C
#include "kivtools/Host.h"
#include "kivtools/kiv.h"

namespace kiv {
namespace {

using namespace host;  // NOLINT(google-build-using-namespace)

/// What the functions of the table are asked and answer; its address is their context.
struct Lender {
  Text said;
  std::int32_t answer = 0;
  std::size_t monitors = 17;  // more than the library has room for at first
  Text clipboard = Text(100, 'c');
};

Lender& Of(void* context) {
  return *static_cast<Lender*>(context);
}

KivHostTable FullTable(Lender& lender) {
  KivHostTable table{};
  table.size = sizeof table;
  table.context = &lender;
  table.onMainThread = [](void* context) { return Of(context).answer; };
  table.processMessages = [](void* context) { Of(context).said += "messages"; };
  table.mainWindow = [](void*) { return std::uintptr_t{77}; };
  table.monitors = [](void* context, KivMonitor* monitors, std::size_t capacity) {
    const auto all = static_cast<std::int32_t>(Of(context).monitors);
    for (std::int32_t i = 0; i < std::min(all, static_cast<std::int32_t>(capacity)); ++i) {
      monitors[i] = {{i, 1, 2, 3}, {4, 5, 6, 7}};
    }
    return Of(context).monitors;
  };
  table.mousePosition = [](void*, KivPoint* position) { *position = {8, 9}; };
  table.pixelsPerInch = [](void*) { return 120; };
  table.messageFontHeight = [](void*) { return -17; };
  table.deviceCapability = [](void*, std::uintptr_t device, std::int32_t number) {
    return static_cast<std::int32_t>(device) * 1000 + number;
  };
  table.ask = [](void* context, std::int32_t kind, const char* text, std::size_t length, std::int32_t buttons) {
    Of(context).said += std::to_string(kind) + Text(text, length) + std::to_string(buttons);
    return Of(context).answer;
  };
  table.setClipboardText = [](void* context, const char* text, std::size_t length) {
    Of(context).clipboard.assign(text, length);
    return Of(context).answer;
  };
  table.clipboardText = [](void* context, char* buffer, std::size_t capacity) {
    const Text& text = Of(context).clipboard;
    std::memcpy(buffer, text.c_str(), std::min(capacity, text.size() + 1));
    return Of(context).answer < 0 ? KivLength{-1} : static_cast<KivLength>(text.size());
  };
  table.systemColour = [](void*, std::uint32_t number) { return 0xAA000000U + number; };
  return table;
}

class HostTable : public testing::Test {
 protected:
  ~HostTable() override { KivHostRemove(); }
  Lender lender_;
};

TEST_F(HostTable, LendsItsServices) {
  const KivHostTable table = FullTable(lender_);
  ASSERT_EQ(KivHostInstall(&table), KIV_OK);
  Host& host = Current();
  EXPECT_FALSE(host.GetApplication().OnMainThread());
  lender_.answer = 1;
  EXPECT_TRUE(host.GetApplication().OnMainThread());
  host.GetApplication().ProcessMessages();
  EXPECT_EQ(host.GetApplication().MainWindow(), 77U);
  for (const std::size_t count : {0U, 16U, 17U, 40U}) {
    lender_.monitors = count;
    const std::vector<Monitor> monitors = host.GetScreen().Monitors();
    ASSERT_EQ(monitors.size(), count);
    for (std::int32_t i = 0; const Monitor& monitor : monitors) {
      EXPECT_EQ(monitor, (Monitor{{i++, 1, 2, 3}, {4, 5, 6, 7}}));
    }
  }
  EXPECT_EQ(host.GetScreen().MousePosition(), (Point{8, 9}));
  EXPECT_EQ(host.GetScreen().PixelsPerInch(), 120);
  EXPECT_EQ(host.GetScreen().MessageFontHeight(), -17);
  EXPECT_EQ(host.GetScreen().Capability(3, DeviceCapability{110}), 3110);
  for (const std::size_t length : {0U, 63U, 64U, 65U, 1000U}) {
    lender_.clipboard = Text(length, 'c');
    EXPECT_EQ(host.GetClipboard().GetText(), lender_.clipboard);
  }
  host.GetClipboard().SetText("text");
  EXPECT_EQ(lender_.clipboard, "text");
  EXPECT_EQ(host.GetColours().SystemColour(5), 5U);
  for (const DialogAnswer answer : {DialogAnswer::Ok, DialogAnswer::Retry}) {
    lender_.answer = static_cast<std::int32_t>(answer);
    EXPECT_EQ(host.GetDialogs().Ask(DialogKind::Error, "?", DialogButtons::RetryCancel), answer);
  }
  EXPECT_EQ(lender_.said, "messages2?32?3");
}

TEST_F(HostTable, TellsWhatTheApplicationCannotDo) {
  KivHostTable table = FullTable(lender_);
  table.size = 5;
  EXPECT_EQ(KivHostInstall(&table), -KIV_ERROR_ARGUMENT);
  std::array<char, 100> message{};
  KivLastErrorMessage(message.data(), message.size());
  EXPECT_STREQ(message.data(), "KivHostInstall: table: marimea 5 nu este a nici unei versiuni");
  table.size = sizeof table;
  ASSERT_EQ(KivHostInstall(&table), KIV_OK);
  Host& host = Current();
  for (const std::int32_t answer : {-1, 5}) {
    lender_.answer = answer;
    ExpectError<Error>([&] { static_cast<void>(host.GetDialogs().Ask(DialogKind::Error, "?", DialogButtons::Ok)); },
                       "Aplicatia nu poate arata dialogul \"?\"");
  }
  lender_.answer = -1;
  ExpectError<Error>([&] { host.GetClipboard().SetText("x"); }, "Aplicatia nu poate scrie in clipboard");
  ExpectError<Error>([&] { static_cast<void>(host.GetClipboard().GetText()); },
                     "Aplicatia nu da textul: clipboardText");
}

TEST_F(HostTable, LeavesTheRestToTheBuiltInHost) {
  Host& builtIn = Current();
  builtIn.GetClipboard().SetText("al gazdei");
  KivHostTable table{};
  table.size = sizeof table;
  ASSERT_EQ(KivHostInstall(&table), KIV_OK);
  Host& host = Current();
  ASSERT_NE(&host, &builtIn);
  EXPECT_EQ(host.GetApplication().OnMainThread(), builtIn.GetApplication().OnMainThread());
  host.GetApplication().ProcessMessages();
  EXPECT_EQ(host.GetApplication().MainWindow(), builtIn.GetApplication().MainWindow());
  EXPECT_EQ(host.GetScreen().Monitors(), builtIn.GetScreen().Monitors());
  EXPECT_EQ(host.GetScreen().MousePosition(), builtIn.GetScreen().MousePosition());
  EXPECT_EQ(host.GetScreen().PixelsPerInch(), builtIn.GetScreen().PixelsPerInch());
  EXPECT_EQ(host.GetScreen().MessageFontHeight(), builtIn.GetScreen().MessageFontHeight());
  EXPECT_EQ(host.GetScreen().Capability(0, DeviceCapability{8}),
            builtIn.GetScreen().Capability(0, DeviceCapability{8}));
  EXPECT_EQ(host.GetClipboard().GetText(), "al gazdei");
  host.GetClipboard().SetText("alt text");
  EXPECT_EQ(builtIn.GetClipboard().GetText(), "alt text");
  EXPECT_EQ(host.GetColours().SystemColour(5), builtIn.GetColours().SystemColour(5));
}

}  // namespace
}  // namespace kiv
