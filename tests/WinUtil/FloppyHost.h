#pragma once

#include <gmock/gmock.h>

#include <deque>
#include <functional>

#include "kivtools/Host/Headless.h"
#include "kivtools/WinUtil/Floppy.h"
#include "kivtools/WinUtil/Paths.h"
#include "platform/Diskettes.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

/// For tests that copy onto diskettes: the dialogs with their texts, a host that answers by a script, a drive that
/// tells what it is told to.
namespace kiv::floppy {

using host::DialogAnswer;
using host::DialogButtons;
using host::DialogKind;
using Dialog = host::headless::Dialogs::Dialog;

inline const Dialog kInsert{DialogKind::Information, "Introduceti o discheta in unitate.", DialogButtons::OkCancel};
inline const Dialog kNone{DialogKind::Warning,
                          "Nu exista nici o discheta in unitate.\r\nIntroduceti o discheta in unitate si apasati "
                          "\r\nbutonul \"OK\" pentru a continua.",
                          DialogButtons::OkCancel};
inline const Dialog kUnreadable{DialogKind::Warning,
                                "Discheta din unitate este defecta sau nu este formatata. \r\nIntroduceti in unitate o "
                                "discheta noua si apasati butonul \"OK\" \r\npentru a continua.",
                                DialogButtons::OkCancel};
inline const Dialog kHasData{DialogKind::Warning,
                             "Discheta contine date. Doriti sa stergeti datele existente si sa copiati peste?",
                             DialogButtons::YesNo};
inline const Dialog kAnother{DialogKind::Warning,
                             "Va rugam introduceti in unitate o alta discheta sau apasati \"Renunt\"",
                             DialogButtons::RetryCancel};
inline const Dialog kDone{DialogKind::Information, "Copierea pe discheta s-a finalizat cu succes.", DialogButtons::Ok};

inline Dialog CannotDelete(const Text& destination) {
  return {DialogKind::Error, "Nu pot sterge fisierul " + destination + ". Discheta este protejata la scriere.",
          DialogButtons::Ok};
}

struct Step {
  Dialog dialog;
  DialogAnswer answer;
};

/// Gives one answer of the volume query after the other, the last one for ever.
class ScriptedDrive : public platform::Diskettes {
 public:
  void Tell(std::deque<std::int32_t> errors) { errors_ = std::move(errors); }

  [[nodiscard]] std::int32_t VolumeError() const noexcept override {
    const std::int32_t error = errors_.front();
    if (errors_.size() > 1) {
      errors_.pop_front();
    }
    return error;
  }

 private:
  mutable std::deque<std::int32_t> errors_ = {0};
  Replacement<const platform::Diskettes> inUse_{platform::diskettes_service, *this};
};

/// A folder with two sources and a diskette, and the headless host. After each test the sources are what they were, no
/// temporary file is left and every expected dialog has been shown.
class CopyTest : public testing::Test {
 protected:
  CopyTest() {
    host::Install(host_);
    for (const char* name : {"local", "temp", "disc"}) {
      std::filesystem::create_directory(folder_ / name);
    }
    TempFilePath = At("temp");
    WriteWhole(folder_ / "local/a", a_);
    WriteWhole(folder_ / "local/b", b_);
  }
  ~CopyTest() override {
    TempFilePath = before_;
    OnProcFaZipPentruDischeta = nullptr;
  }

  void TearDown() override {
    EXPECT_EQ(host_.GetDialogs().Outstanding(), 0U);
    ExpectNothingHarmed();
  }

  void ExpectNothingHarmed() {
    EXPECT_TRUE(ReadWhole(folder_ / "local/a") == a_);
    EXPECT_EQ(ReadWhole(folder_ / "local/b"), b_);
    EXPECT_TRUE(std::filesystem::is_empty(folder_ / "temp"));
  }

  [[nodiscard]] Text At(const std::filesystem::path& name) const {
    std::filesystem::path native = folder_ / name;
    return platform::TextFromPath(native.make_preferred());
  }
  void Expect(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
      host_.GetDialogs().Expect(step.dialog, step.answer);
    }
  }
  void ExpectCopy() { Expect({{kInsert, DialogAnswer::Ok}, {kDone, DialogAnswer::Ok}}); }

  /// What the work throws, empty for nothing.
  static Text Failure(const std::function<void()>& work) {
    try {
      work();
    } catch (const Error& error) {
      return error.what();
    }
    return {};
  }

  TestFolder folder_;
  std::string a_ = std::string(3'000, 'a') + "sfarsit";
  std::string b_ = "b";
  StringList sources_ = {At("local/a"), At("local/b")};
  StringList destinations_ = {At("disc/a"), At("disc/b")};
  host::headless::Host host_;

 private:
  Text before_ = TempFilePath;
};

}  // namespace kiv::floppy
