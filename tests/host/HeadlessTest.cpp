#include <gtest/gtest.h>

#include <thread>

#include "Expect.h"
#include "host/BuiltIn.h"
#include "kivtools/Host/Headless.h"

namespace kiv::host {
namespace {

using headless::Dialogs;

TEST(HeadlessDialogs, AnswerByTheScriptAndRefuseTheRest) {
  const Dialogs::Dialog insert{DialogKind::Information, "Introduceti o discheta in unitate.", DialogButtons::OkCancel};
  const Dialogs::Dialog over{DialogKind::Warning, "Discheta contine date.", DialogButtons::YesNo};
  const auto messageFor = [](Dialogs& dialogs, const Dialogs::Dialog& asked) -> Text {
    try {
      [[maybe_unused]] const auto answer = dialogs.Ask(asked.kind, asked.text, asked.buttons);
    } catch (const Error& error) {
      return error.what();
    }
    return "no error";
  };
  Dialogs dialogs;
  EXPECT_EQ(messageFor(dialogs, insert),
            "Dialog neasteptat: informare \"Introduceti o discheta in unitate.\" (OK/Cancel); se astepta nici unul");
  dialogs.Expect(insert, DialogAnswer::Cancel);
  dialogs.Expect(over, DialogAnswer::Yes);
  dialogs.Expect({DialogKind::Error, "Nu pot sterge", DialogButtons::Ok}, DialogAnswer::Ok);
  dialogs.Expect({DialogKind::Warning, "alta", DialogButtons::RetryCancel}, DialogAnswer::Retry);
  // Kind, text and buttons all count, and a refused dialog uses nothing up.
  for (const Dialogs::Dialog& wrong : {Dialogs::Dialog{DialogKind::Error, insert.text, insert.buttons},
                                       Dialogs::Dialog{insert.kind, insert.text, DialogButtons::Ok}, over}) {
    EXPECT_THROW((void)dialogs.Ask(wrong.kind, wrong.text, wrong.buttons), Error);
  }
  EXPECT_EQ(messageFor(dialogs, over),
            "Dialog neasteptat: avertizare \"Discheta contine date.\" (Yes/No); se astepta informare \"Introduceti o "
            "discheta in unitate.\" (OK/Cancel)");
  EXPECT_EQ(dialogs.Outstanding(), 4U);
  EXPECT_EQ(dialogs.Ask(insert.kind, insert.text, insert.buttons), DialogAnswer::Cancel);
  EXPECT_EQ(dialogs.Ask(over.kind, over.text, over.buttons), DialogAnswer::Yes);
  EXPECT_EQ(dialogs.Ask(DialogKind::Error, "Nu pot sterge", DialogButtons::Ok), DialogAnswer::Ok);
  EXPECT_EQ(dialogs.Ask(DialogKind::Warning, "alta", DialogButtons::RetryCancel), DialogAnswer::Retry);
  EXPECT_EQ(dialogs.Outstanding(), 0U);
}

TEST(HeadlessDialogs, TakeOnlyAnswersThatTheDialogHas) {
  for (std::int32_t buttons = 0; buttons <= 3; ++buttons) {
    static constexpr std::array<std::string_view, 4> kHas = {"0", "01", "23", "41"};
    for (std::int32_t answer = 0; answer <= 4; ++answer) {
      Dialogs dialogs;
      Text refused;
      try {
        dialogs.Expect({DialogKind::Warning, "x", DialogButtons{buttons}}, DialogAnswer{answer});
      } catch (const Error& error) {
        refused = error.what();
      }
      const bool has =
          kHas.at(static_cast<std::size_t>(buttons)).find(static_cast<char>('0' + answer)) != std::string_view::npos;
      static constexpr std::array<const char*, 4> kNames = {"OK", "OK/Cancel", "Yes/No", "Retry/Cancel"};
      const Text message = "Dialogul nu are butonul raspunsului: avertizare \"x\" (" +
                           Text(kNames.at(static_cast<std::size_t>(buttons))) + ")";
      EXPECT_EQ(refused, has ? "" : message) << buttons << ' ' << answer;
      EXPECT_EQ(dialogs.Outstanding(), has ? 1U : 0U);
    }
  }
}

TEST(HeadlessScreen, IsOneMonitorUntilItIsToldOtherwise) {
  headless::Screen screen;
  EXPECT_EQ(screen.Monitors(), (std::vector<Monitor>{{{0, 0, 1920, 1080}, {0, 0, 1920, 1040}}}));
  const auto capabilities = [&screen](Handle device) {
    std::vector<std::int32_t> values;
    for (const std::int32_t number : {4, 6, 8, 10, 110, 111, 112, 113}) {
      values.push_back(screen.Capability(device, DeviceCapability{number}));
    }
    return values;
  };
  EXPECT_EQ(capabilities(0), (std::vector<std::int32_t>{508, 285, 1920, 1080, 0, 0, 0, 0}));
  EXPECT_EQ(capabilities(1), std::vector<std::int32_t>(8, 0));
  screen.SetMonitors({{{-1024, 0, 0, 768}, {-1024, 0, 0, 738}}, {{0, 0, 800, 600}, {0, 0, 800, 600}}});
  screen.SetPixelsPerInch(128);
  EXPECT_EQ(capabilities(0), (std::vector<std::int32_t>{203, 152, 1024, 768, 0, 0, 0, 0}));
  screen.SetPixelsPerInch(0);
  EXPECT_EQ(capabilities(0)[0], 0);
  screen.SetMonitors({});
  EXPECT_EQ(capabilities(0), std::vector<std::int32_t>(8, 0));
}

TEST(HeadlessColours, AreThoseOfTheTable) {
  const headless::Colours colours;
  const struct {
    Colour colour;
    Colour resolved;
  } cases[] = {{0x00000000, 0x00000000}, {0x00FFFFFF, 0x00FFFFFF}, {0x00123456, 0x00123456}, {0x80000005, 0x00FFFFFF},
               {0xFF00000F, 0x00F0F0F0}, {0x01000018, 0x00E1FFFF}, {0xFF00001E, 0x00F0F0F0}, {0xFF00001F, 0x00000000},
               {0xFF0000FF, 0x00000000}, {0xFFFFFF02, 0x00D1B499}};
  for (const auto& [colour, resolved] : cases) {
    EXPECT_EQ(colours.Resolve(colour), resolved) << std::hex << colour;
  }
}

TEST(HeadlessApplication, ServesMessagesByWhatItIsTold) {
  headless::Application application;
  application.ProcessMessages();
  int rounds = 0;
  application.OnMessages([&rounds] { ++rounds; });
  application.ProcessMessages();
  application.ProcessMessages();
  EXPECT_EQ(rounds, 2);
  EXPECT_EQ(application.MainWindow(), 0U);
  EXPECT_TRUE(application.OnMainThread());
  bool onAnother = true;
  std::thread([&] { onAnother = application.OnMainThread(); }).join();
  EXPECT_FALSE(onAnother);
}

TEST(Host, FailuresThatNobodyCatchesAreShownOrLost) {
  headless::Host host;
  Install(host);
  host.GetDialogs().Expect({DialogKind::Error, "din handler", DialogButtons::Ok}, DialogAnswer::Ok);
  ShowFailure(Error("alta"));
  EXPECT_EQ(host.GetDialogs().Outstanding(), 1U);
  ShowFailure(Error("din handler"));
  EXPECT_EQ(host.GetDialogs().Outstanding(), 0U);
}

TEST(Host, ServicesThatItLacksAreThoseOfTheBuiltInOne) {
  struct Partly : Host {
    [[nodiscard]] Screen& GetScreen() override { return screen; }
    headless::Screen screen;
  };
  Host& builtIn = Current();
  {
    Partly mine;
    Install(mine);
    EXPECT_EQ(&Current().GetScreen(), &mine.screen);
    EXPECT_EQ(&Current().GetApplication(), &builtIn.GetApplication());
    EXPECT_EQ(&Current().GetDialogs(), &builtIn.GetDialogs());
    EXPECT_EQ(&Current().GetClipboard(), &builtIn.GetClipboard());
    EXPECT_EQ(&Current().GetColours(), &builtIn.GetColours());
  }
  EXPECT_EQ(&Current(), &builtIn);
  EXPECT_EQ(&builtIn, &BuiltInHost());
}

}  // namespace
}  // namespace kiv::host
