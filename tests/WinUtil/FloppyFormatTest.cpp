// The system's format dialog is translated and operated: in real windows on Windows, in a model of them elsewhere.
#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <thread>

#include "WinUtil/TestWindows.h"
#include "kivtools/Host.h"
#include "kivtools/WinUtil/Floppy.h"
#include "platform/Diskettes.h"
#include "platform/HelperThreads.h"
#include "platform/Timer.h"

namespace kiv {
namespace {

using std::chrono::milliseconds;
using testing::AnyOf;
using testing::AnyOfArray;
using testing::Contains;
using testing::Each;
using testing::IsEmpty;

/// Stands for the system's format call: it runs the test's own work on the calling thread.
class FormatCall : public platform::Diskettes {
 public:
  using Work = std::function<std::int32_t(Handle owner, std::uint32_t drive)>;
  explicit FormatCall(Work work) : work_(std::move(work)) {}

  [[nodiscard]] std::int32_t ShowFormatDialog(TextView /*operation*/, Handle owner,
                                              std::uint32_t drive) const override {
    return work_(owner, drive);
  }

 private:
  Work work_;
  Replacement<const platform::Diskettes> inUse_{platform::diskettes_service, *this};
};

/// Whether this thread was started while a format call ran; threads of earlier tests may still be about.
thread_local bool is_helper = false;

class MarkedThreads : public platform::HelperThreads {
 public:
  void Start(TextView context, std::function<void()> work) const override {
    platform::SystemHelperThreads().Start(context, [work = std::move(work)] {
      is_helper = true;
      work();
    });
  }

 private:
  Replacement<const platform::HelperThreads> inUse_{platform::helper_threads, *this};
};

/// Notes how long the helper's thread was to sleep, and lets all sleep a millisecond.
class NotedTimer : public platform::Timer {
 public:
  [[nodiscard]] milliseconds Now() const override { return platform::SystemTimer().Now(); }
  void Sleep(milliseconds duration) const override {
    if (is_helper) {
      const std::scoped_lock lock(mutex_);
      sleeps_.push_back(duration);
    }
    std::this_thread::sleep_for(milliseconds(1));
  }
  std::vector<milliseconds> Take() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(sleeps_, {});
  }

 private:
  mutable std::mutex mutex_;
  mutable std::vector<milliseconds> sleeps_;
  Replacement<const platform::Timer> inUse_{platform::timer_service, *this};
};

struct Control {
  const char* className;
  const char* text;
  const char* romanian;
  std::int32_t width;  ///< 0 for one that keeps its size
};

/// The controls of all editions of the dialog and of its message boxes; what is not here is a static text.
constexpr Control kControls[] = {
    {"Static", "Ca&pacity:", "Capacitate", 100},
    {"Button", "Format type", "Tipul formatului", 0},
    {"Button", "Other options", "Alte optiuni", 0},
    {"Button", "Format &options", "Alte optiuni", 0},
    {"Button", "&Start", "&Start", 0},
    {"Button", "&Close", "Inchide", 0},
    {"Button", "&Quick (erase)", "Rapid (sterge discheta)", 0},
    {"Button", "&Quick Format", "Rapid (sterge discheta)", 0},
    {"Button", "&Full", "Complet", 0},
    {"Button", "Copy system files &only", "Numai copiaza fisiere sistem", 0},
    {"Static", "Label", "Eticheta", 0},
    {"Static", "Volume &label", "Eticheta", 0},
    {"Button", "&No label", "Fara eticheta", 0},
    {"Button", "&Display summary when finished", "Afisez un rezumat cand termin", 0},
    {"Button", "Copy s&ystem files", "Copiaza fisierele sistem", 0},
    {"Static", "&File system", "Sistem de fisiere", 200},
    {"Static", "&Allocation unit size", "Dimensiunea unitatii de alocare", 200},
    {"ComboBox", "Default allocation size", "Default allocation size", 0},
    {"Button", "&Enable Compression", "Activeaza compresia", 0},
    {"Button", "Create an &MS-DOS startup disk", "Creaza un disc de pornire Ms-DOS", 0},
    {"Button", "&Help", "&Help", 0},
    {"Button", "&Retry", "", 0},
    {"Button", "Cancel", "", 0},
    {"Button", "OK", "", 0},
    {"Button", "Close", "", 0},
};
constexpr const char* kCaption = "Formatez discheta de 3\xBD inch (A:)";

class FloppyFormat : public testing::Test {
 protected:
  /// A dialog is recognised by its caption, which it gets when all its controls are there.
  Handle MakeDialog(TextView caption, const StringList& texts, Handle owner = 0) {
    const Handle dialog = windows_.MakeDialog("se face", owner);
    for (const Text& text : texts) {
      const auto* const known = std::ranges::find_if(kControls, [&](const Control& one) { return one.text == text; });
      const char* const className = known != std::end(kControls) ? known->className : "Static";
      controls_[text] = windows_.Make(className, text, dialog);
    }
    windows_.SetText(dialog, caption);
    return dialog;
  }
  Handle MakeMain() { return main_ = MakeDialog("Format - 3\xBD Floppy (A:)", {"&Quick (erase)", "&Start", "&Close"}); }

  /// Serves the windows until something holds.
  void ServeUntil(const std::function<bool()>& holds, const char* what) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!holds()) {
      windows_.Serve();
      std::this_thread::sleep_for(milliseconds(1));
      const std::vector<Handle> clicks = windows_.TakeClicks();
      clicks_.insert(clicks_.end(), clicks.begin(), clicks.end());
      if (std::chrono::steady_clock::now() > end) {
        ADD_FAILURE() << "waited in vain: " << what;
        return;
      }
    }
  }
  /// The next clicks; others may follow.
  void ExpectClicks(const std::vector<Handle>& expected) {
    ServeUntil([&] { return clicks_.size() >= expected.size(); }, "clicks");
    clicks_.resize(expected.size());
    EXPECT_EQ(clicks_, expected);
    clicks_.clear();
  }
  /// Clicks that are made again and again as long as a box stays open, in their order and no others. One of them may
  /// come to nothing: the system takes the mouse from a button whose window loses the focus meanwhile.
  void ExpectRepeatedClicks(const std::vector<Handle>& expected) {
    ServeUntil([&] { return IncludesInOrder(clicks_, expected); }, "repeated clicks");
    EXPECT_THAT(clicks_, Each(AnyOfArray(expected)));
    clicks_.clear();
  }
  static bool IncludesInOrder(const std::vector<Handle>& clicks, const std::vector<Handle>& expected) {
    auto next = expected.begin();
    for (const Handle click : clicks) {
      next += next != expected.end() && *next == click ? 1 : 0;
    }
    return next == expected.end();
  }
  void ExpectStarted() { ExpectClicks({controls_["&Quick (erase)"], controls_["&Start"]}); }
  void ExpectText(const char* control, const char* text) {
    ServeUntil([&] { return windows_.TextOf(controls_[control]) == text; }, text);
  }
  /// Time enough for the helper to look at the windows again and again.
  void ServeForAWhile() {
    int rounds = 0;
    ServeUntil([&] { return ++rounds > 50; }, "a while");
  }

  TestWindows windows_;
  MarkedThreads threads_;
  NotedTimer timer_;
  Handle main_ = 0;
  std::map<Text, Handle> controls_;
  std::vector<Handle> clicks_;
};

TEST_F(FloppyFormat, IsTranslatedAndStarted) {
  const StringList common = {"Ca&pacity:",
                             "&Start",
                             "&Close",
                             "&Full",
                             "Copy system files &only",
                             "&No label",
                             "&Display summary when finished",
                             "Copy s&ystem files",
                             "&File system",
                             "&Allocation unit size",
                             "Default allocation size",
                             "&Enable Compression",
                             "Create an &MS-DOS startup disk",
                             "&Help"};
  const struct {
    const char* caption;
    std::int32_t (*format)(Handle owner);
    std::uint32_t drive;
    StringList own;
    const char* quick;
  } editions[] = {
      {"Format - 3\xBD Floppy (A:)",
       FullFormatDriveA,
       0,
       {"Format type", "Other options", "&Quick (erase)", "Label"},
       "&Quick (erase)"},
      {"Format 3\xBD Floppy (A:)",
       FullFormatDriveA,
       0,
       {"Format &options", "&Quick Format", "Volume &label"},
       "&Quick Format"},
      {"Format - 3\xBD Floppy (B:)", FullFormatDriveB, 1, {"&Quick Format"}, "&Quick Format"},
      {"Format 3\xBD Floppy (B:)", FullFormatDriveB, 1, {"&Quick Format"}, "&Quick Format"},
  };
  for (const auto& edition : editions) {
    SCOPED_TRACE(edition.caption);
    controls_.clear();
    const FormatCall format([&](Handle owner, std::uint32_t drive) {
      EXPECT_EQ(owner, 77U);
      EXPECT_EQ(drive, edition.drive);
      StringList texts = common;
      texts.insert(texts.end(), edition.own.begin(), edition.own.end());
      main_ = MakeDialog(edition.caption, texts);
      ExpectClicks({controls_[edition.quick], controls_["&Start"]});
      EXPECT_EQ(windows_.TextOf(main_), kCaption);
      for (const Control& control : kControls) {
        if (const auto made = controls_.find(control.text); made != controls_.end()) {
          EXPECT_EQ(windows_.TextOf(made->second), control.romanian);
          const host::Rect bounds = windows_.BoundsOf(made->second);
          EXPECT_EQ(bounds.left, 5) << control.text;
          EXPECT_EQ(bounds.top, 7) << control.text;
          if (control.width != 0) {
            EXPECT_EQ(bounds.Width(), control.width) << control.text;
            EXPECT_EQ(bounds.Height(), 16) << control.text;
          }
        }
      }
      windows_.Destroy(main_);
      return -3;
    });
    EXPECT_EQ(edition.format(77), -3);
  }
}

TEST_F(FloppyFormat, IsTakenThroughItsMessageBoxes) {
  constexpr auto kNoDisk =
      "There is no disk in this drive or the drive door is open. Insert a disk in the drive and make sure the drive "
      "door is closed, and then click Retry.";
  constexpr auto kErase =
      "WARNING: Formatting will erase ALL data on this disk.\r\nTo format the disk, click OK. To quit, click CANCEL.";
  const FormatCall format([&](Handle, std::uint32_t) {
    ServeForAWhile();
    EXPECT_THAT(timer_.Take(), IsEmpty()) << "before it has begun it looks without a pause";
    MakeMain();
    ExpectStarted();

    const Handle noDisk = MakeDialog("Format 3\xBD Floppy (A:)", {kNoDisk, "&Retry", "Cancel"}, main_);
    ExpectText(kNoDisk,
               "Nu exista nici o discheta in unitate sau discheta introdusa este defecta. Asigurati-va ca exista o "
               "discheta in unitate si ca aceasta este introdusa corect");
    EXPECT_EQ(windows_.TextOf(noDisk), kCaption);
    ExpectText("&Retry", "Repeta");
    ExpectText("Cancel", "Renunt");
    ServeForAWhile();
    EXPECT_THAT(clicks_, IsEmpty()) << "the user decides";
    windows_.Destroy(noDisk);

    const Handle erase = MakeDialog("Format 3\xBD Floppy (A:)", {kErase, "OK", "Cancel"}, main_);
    ExpectClicks({controls_["OK"]});
    ExpectText(kErase,
               "ATENTIE: Formatarea va sterge toate datele de pe aceasta discheta.\n\rPentru a formata discheta, "
               "apasati OK. Pentru a renunta, apasati Renunt.");
    ExpectText("OK", "Ok");
    ExpectText("Cancel", "Renunt");
    windows_.Destroy(erase);

    const Handle other = MakeDialog("Formatting 3\xBD Floppy (A:)", {"Format Interrupted.", "OK"}, main_);
    windows_.BringToFront(other);
    ServeForAWhile();
    EXPECT_THAT(clicks_, IsEmpty()) << "it is not complete";
    windows_.Destroy(other);

    const Handle done = MakeDialog("Formatting 3\xBD Floppy (A:)", {"Format Complete.", "OK"}, main_);
    windows_.BringToFront(done);
    ExpectRepeatedClicks({controls_["OK"], controls_["&Close"]});
    return 0;
  });
  EXPECT_EQ(FullFormatDriveA(0), 0);
  const std::vector<milliseconds> sleeps = timer_.Take();
  EXPECT_THAT(sleeps, Contains(milliseconds(50))) << "between the two closing clicks";
  EXPECT_THAT(sleeps, Each(AnyOf(milliseconds(10), milliseconds(50))));
}

TEST_F(FloppyFormat, ClosesTheResults) {
  for (const char* const caption : {"Format Results - 3\xBD Floppy (A:)", "Format Results - 3\xBD Floppy (B:)"}) {
    const FormatCall format([&](Handle, std::uint32_t) {
      MakeMain();
      ExpectStarted();
      windows_.SetText(controls_["&Close"], "&Close");  // as the system does when it has finished
      const Handle results = MakeDialog(caption, {"Close", "1,457,664 bytes total disk space"}, main_);
      ExpectRepeatedClicks({controls_["Close"], controls_["&Close"]});
      windows_.Destroy(results);
      windows_.Destroy(main_);
      return 0;
    });
    EXPECT_EQ(FullFormatDriveA(0), 0);
  }
}

TEST_F(FloppyFormat, LeavesWhatItDoesNotKnowToTheUser) {
  const struct {
    const char* name;
    const char* caption;
    StringList texts;
  } cases[] = {
      {"too few controls",
       "Format 3\xBD Floppy (A:)",
       {"&Start", "&Quick Format",
        "&Schlie\xDF"
        "en",
        "Speicher"}},
      {"another caption", "Formatieren von 3\xBD (A:)", {"&Start", "&Close", "&Full", "&Quick Format"}},
      {"no dialog at all", "", {}},
  };
  for (const auto& dialog : cases) {
    SCOPED_TRACE(dialog.name);
    const FormatCall format([&](Handle, std::uint32_t) {
      const Handle made = MakeDialog(dialog.caption, dialog.texts);
      ServeForAWhile();
      EXPECT_THAT(clicks_, IsEmpty());
      EXPECT_EQ(windows_.TextOf(made), dialog.caption);
      for (const Text& text : dialog.texts) {
        EXPECT_EQ(windows_.TextOf(controls_[text]), text);
      }
      windows_.Destroy(made);
      return 1;
    });
    EXPECT_EQ(FullFormatDriveA(0), 1);
  }
  EXPECT_THAT(timer_.Take(), IsEmpty());
}

TEST_F(FloppyFormat, WaitsForAThreadThatHangs) {
  const FormatCall format([&](Handle, std::uint32_t) {
    MakeMain();
    windows_.Hang(milliseconds(350));
    ExpectStarted();
    return 0;
  });
  EXPECT_EQ(FullFormatDriveA(0), 0);
}

TEST_F(FloppyFormat, EndsItsThreadWhateverFails) {
  const FormatCall format([&](Handle, std::uint32_t) -> std::int32_t {
    MakeMain();
    ExpectStarted();
    throw Error("formatarea a esuat");
  });
  EXPECT_THROW(FullFormatDriveA(0), Error);
  // Nobody looks at the windows any more.
  windows_.Destroy(main_);
  MakeMain();
  ServeForAWhile();
  EXPECT_THAT(clicks_, IsEmpty());
  EXPECT_EQ(windows_.TextOf(main_), "Format - 3\xBD Floppy (A:)");
}

class NoThreads : public platform::HelperThreads {
 public:
  void Start(TextView context, std::function<void()> /*work*/) const override { throw OsError(11, Text(context)); }

 private:
  Replacement<const platform::HelperThreads> inUse_{platform::helper_threads, *this};
};

TEST_F(FloppyFormat, DoesNotBeginWithoutItsThread) {
  const NoThreads threads;
  const FormatCall format([](Handle, std::uint32_t) {
    ADD_FAILURE();
    return 0;
  });
  EXPECT_THROW(FullFormatDriveA(0), OsError);
  EXPECT_THROW(FullFormatDriveB(0), OsError);
}

/// An application whose message loop fails, every time.
class FailingHost : public host::Host, private host::Application {
 public:
  [[nodiscard]] host::Application& GetApplication() override { return *this; }

 private:
  [[nodiscard]] bool OnMainThread() const override { return true; }
  void ProcessMessages() override { throw Error("bucla de mesaje"); }
  [[nodiscard]] Handle MainWindow() const override { return 0; }
};

TEST_F(FloppyFormat, TellsAFailureOfTheApplicationWhenItsThreadHasEnded) {
  FailingHost host;
  host::Install(host);
  const FormatCall format([&](Handle, std::uint32_t) {
    MakeMain();  // which the helper is about to ask
    return 0;
  });
  try {
    FullFormatDriveA(0);
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "bucla de mesaje");
  }
}

}  // namespace
}  // namespace kiv
