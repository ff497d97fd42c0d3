#include "WinUtil/FloppyHost.h"
#include "platform/FailingCalls.h"

namespace kiv::floppy {
namespace {

using enum DialogAnswer;
using platform::SystemCall;
using platform::SystemStatus;
using std::filesystem::path;
using testing::AnyOf;
using testing::StartsWith;

constexpr auto kNotWritten = "Copierea pe discheta a esuat. Discheta este protejata la scriere sau este defecta.";
constexpr auto kDiffers =
    "Copierea pe discheta a esuat. Discheta este defecta - inlocuiti discheta si incercati inca o data!";

class FloppyCopy : public CopyTest {
 protected:
  void ExpectCopied() {
    EXPECT_TRUE(ReadWhole(folder_ / "disc/a") == a_);
    EXPECT_EQ(ReadWhole(folder_ / "disc/b"), b_);
  }
  [[nodiscard]] Text SourceOfSize(std::uintmax_t size) const {
    const path file = folder_ / "local/large";
    WriteWhole(file, "x");
    std::filesystem::resize_file(file, size);
    return At("local/large");
  }

  ScriptedDrive drive_;
};

TEST_F(FloppyCopy, TellsTheStateOfTheDriveByTheSystemsCode) {
  const struct {
    std::int32_t error;
    stareFloppyInDrive state;
  } cases[] = {{0, existaOk}, {21, nuExista}, {31, existaNeformatat}, {1005, existaNeformatat},
               {2, nuExista}, {3, nuExista},  {1, nuExista},          {1006, nuExista}};
  for (const auto& volume : cases) {
    drive_.Tell({volume.error});
    EXPECT_EQ(StareFloppy(), volume.state) << volume.error;
    EXPECT_FALSE(ExistaFloppy());
  }
}

TEST_F(FloppyCopy, AsksUntilItIsDoneOrTheUserGivesUp) {
  const struct {
    const char* name;
    std::deque<std::int32_t> errors;
    bool former;  ///< a destination is there already
    std::vector<Step> steps;
    bool copied;
  } cases[] = {
      {"at once", {0}, false, {{kInsert, Ok}, {kDone, Ok}}, true},
      {"not even begun", {0}, false, {{kInsert, Cancel}}, false},
      {"none, given up", {21}, false, {{kInsert, Ok}, {kNone, Cancel}}, false},
      {"none, then one", {21, 21, 0}, false, {{kInsert, Ok}, {kNone, Ok}, {kNone, Ok}, {kDone, Ok}}, true},
      {"unreadable, given up", {31}, false, {{kInsert, Ok}, {kUnreadable, Cancel}}, false},
      {"unreadable, none, a good one",
       {1005, 7, 0},
       false,
       {{kInsert, Ok}, {kUnreadable, Ok}, {kNone, Ok}, {kDone, Ok}},
       true},
      {"written over", {0}, true, {{kInsert, Ok}, {kHasData, Yes}, {kDone, Ok}}, true},
      {"kept", {0}, true, {{kInsert, Ok}, {kHasData, No}, {kAnother, Cancel}}, false},
      {"kept, taken out", {0, 21}, true, {{kInsert, Ok}, {kHasData, No}, {kAnother, Retry}, {kNone, Cancel}}, false},
      {"kept, then written over",
       {0},
       true,
       {{kInsert, Ok}, {kHasData, No}, {kAnother, Retry}, {kHasData, Yes}, {kDone, Ok}},
       true},
  };
  for (const auto& run : cases) {
    SCOPED_TRACE(run.name);
    std::filesystem::remove(folder_ / "disc/a");
    std::filesystem::remove(folder_ / "disc/b");
    if (run.former) {
      WriteWhole(folder_ / "disc/b", "vechi");
    }
    drive_.Tell(run.errors);
    Expect(run.steps);
    CopiazaPeDischetaMulti(sources_, destinations_);
    EXPECT_EQ(host_.GetDialogs().Outstanding(), 0U);
    if (run.copied) {
      ExpectCopied();
    } else {
      EXPECT_FALSE(std::filesystem::exists(folder_ / "disc/a"));
      EXPECT_EQ(ReadWhole(folder_ / "disc/b"), run.former ? "vechi" : "");
    }
  }
}

TEST_F(FloppyCopy, OfNothingAsksForADisketteNevertheless) {
  ExpectCopy();
  CopiazaPeDischetaMulti({}, {});
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "disc"));
}

TEST_F(FloppyCopy, RefusesWhatCannotBeCopiedBeforeAnyDialog) {
  const Text missing = At("local/none");
  const struct {
    StringList sources;
    StringList destinations;
    Text failure;
  } cases[] = {
      {{sources_[0], missing}, {"x"}, "Fisierul " + missing + " nu exista!"},
      {{At("local")}, {"x"}, "Fisierul " + At("local") + " nu exista!"},
      {sources_, {"x"}, "Numarul destinatiilor nu este egal cu numarul surselor"},
      {{}, {"x"}, "Numarul destinatiilor nu este egal cu numarul surselor"},
      {{SourceOfSize(1'415'577), sources_[1]},
       {"x", "y"},
       "Nu pot copia pe discheta; Dimensiunea fisierelor depaseste capacitatea totala a dischetei!"},
  };
  for (const auto& refused : cases) {
    EXPECT_EQ(Failure([&] { CopiazaPeDischetaMulti(refused.sources, refused.destinations); }), refused.failure);
  }
}

TEST_F(FloppyCopy, PacksWhatIsMoreThanItsLimit) {
  int packed = 0;
  const auto pack = [&](const StringList&, const StringList&, Text&, Text&) { ++packed; };
  const struct {
    std::uintmax_t size;
    bool withCallback;
    bool isPacked;
  } cases[] = {{1'258'291, true, false}, {1'258'292, true, true}, {1'258'292, false, false}, {1'415'577, false, false}};
  for (const auto& file : cases) {
    packed = 0;
    OnProcFaZipPentruDischeta = nullptr;
    if (file.withCallback) {
      OnProcFaZipPentruDischeta = pack;
    }
    const Text source = SourceOfSize(file.size);
    if (!file.isPacked) {
      ExpectCopy();
    }
    const Text failure = Failure([&] { CopiazaPeDischeta(source, At("disc/x")); });
    EXPECT_EQ(failure, file.isPacked ? "Fisierul  nu exista!" : "") << file.size;  // this callback names no archive
    EXPECT_EQ(packed, file.isPacked ? 1 : 0) << file.size;
    EXPECT_EQ(std::filesystem::remove(folder_ / "disc/x"), !file.isPacked);
  }
}

TEST_F(FloppyCopy, DeletesTheArchiveWhateverHappens) {
  const Text large = SourceOfSize(1'258'292);
  const Text destination = At("disc/arhiva.zip");
  const Text local = At("local/arhiva.zip");
  const struct {
    const char* name;
    std::uintmax_t size;  ///< of the archive
    bool fails;           ///< the callback, once the archive is there
    std::vector<Step> steps;
    Text failure;
  } cases[] = {
      {"copied", 10, false, {{kInsert, Ok}, {kDone, Ok}}, ""},
      {"larger than what is packed, but not packed twice", 1'415'577, false, {{kInsert, Ok}, {kDone, Ok}}, ""},
      {"too large",
       1'415'578,
       false,
       {},
       "Nu pot copia pe discheta; Fisierele specificate sunt prea mari pentru a fi copiate pe o singura discheta, "
       "chiar daca am incercat sa le arhivez (sa le fac ZIP)"},
      {"given up", 10, false, {{kInsert, Cancel}}, ""},
      {"packing fails", 10, true, {}, "disc plin"},
      {"a host without dialogs",
       10,
       false,
       {},
       "Dialog neasteptat: informare \"Introduceti o discheta in unitate.\" (OK/Cancel); se astepta nici unul"},
  };
  for (const auto& run : cases) {
    SCOPED_TRACE(run.name);
    OnProcFaZipPentruDischeta = [&](const StringList& sources, const StringList& destinations, Text& onDiskette,
                                    Text& archive) {
      EXPECT_EQ(sources, StringList{large});
      EXPECT_EQ(destinations, StringList{At("disc/mare")});
      WriteWhole(folder_ / "local/arhiva.zip", "z");
      std::filesystem::resize_file(folder_ / "local/arhiva.zip", run.size);
      std::filesystem::permissions(folder_ / "local/arhiva.zip", std::filesystem::perms::owner_read);
      archive = local;
      onDiskette = destination;
      if (run.fails) {
        throw Error("disc plin");
      }
    };
    Expect(run.steps);
    EXPECT_EQ(Failure([&] { CopiazaPeDischeta(large, At("disc/mare")); }), run.failure);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "local/arhiva.zip"));
    EXPECT_EQ(std::filesystem::remove(folder_ / "disc/arhiva.zip"), run.steps.size() == 2);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "disc/mare"));
  }
}

TEST_F(FloppyCopy, SparesASourceThatIsCalledTheArchive) {
  const Text large = SourceOfSize(1'300'000);
  OnProcFaZipPentruDischeta = [&](const StringList&, const StringList&, Text&, Text& archive) {
    archive = sources_[1];
  };
  EXPECT_EQ(Failure([&] {
              CopiazaPeDischetaMulti({large, sources_[1]}, destinations_);
            }),
            "CopiazaPeDischetaMulti: arhiva " + sources_[1] + " este una din surse");
}

TEST_F(FloppyCopy, NeverDeletesASourceThatIsAtADestination) {
  std::filesystem::create_hard_link(folder_ / "local/b", folder_ / "disc/legat");
  const struct {
    const char* name;
    StringList sources;
    Text destination;
    Text refused;
  } cases[] = {
      {"itself", {sources_[1]}, sources_[1], sources_[1]},
      {"by another name", {sources_[1]}, At("disc/legat"), sources_[1]},
      {"another one", {sources_[0], sources_[1]}, sources_[1], sources_[1]},
  };
  for (const auto& run : cases) {
    Expect({{kInsert, Ok}, {kHasData, Yes}});
    StringList destinations = {run.destination, At("disc/x")};
    destinations.resize(run.sources.size());
    EXPECT_EQ(Failure([&] { CopiazaPeDischetaMulti(run.sources, destinations); }), "Nu pot deschide " + run.refused)
        << run.name;
    EXPECT_EQ(ReadWhole(folder_ / "disc/legat"), b_);
  }
}

/// Does something with files right before a system call, once, when it is time for it.
class Meddling : public platform::SystemCallGate {
 public:
  using Time = std::function<bool(SystemCall)>;
  Meddling(Time isTime, std::function<void()> work) : isTime_(std::move(isTime)), work_(std::move(work)) {}

  SystemStatus Before(SystemCall call) noexcept override {
    if (!done_ && isTime_(call)) {
      done_ = true;
      work_();
    }
    return {};
  }
  [[nodiscard]] bool Done() const { return done_; }

 private:
  Time isTime_;
  std::function<void()> work_;
  bool done_ = false;
  Replacement<platform::SystemCallGate> inUse_{platform::system_call_service, *this};
};

TEST_F(FloppyCopy, ReadsBackWhatItHasWritten) {
  const path copy = folder_ / "disc/a";
  const path readBack = folder_ / "temp/test_1.bin";
  const path source = folder_ / "local/a";
  const auto isWhole = [&](const path& file) {
    std::error_code missing;
    return std::filesystem::file_size(file, missing) == a_.size() && !missing;
  };
  const auto copied = [&](SystemCall call) {
    return (call == SystemCall::Open || call == SystemCall::Query) && isWhole(copy);
  };
  const auto closing = [&](SystemCall call) { return call == SystemCall::Close && isWhole(readBack); };
  const auto comparing = [&](SystemCall call) { return call == SystemCall::Read && isWhole(readBack); };
  const struct {
    const char* name;
    Meddling::Time when;
    std::function<void()> work;
    const char* failure;
  } cases[] = {
      {"not there", copied, [&] { std::filesystem::remove(copy); }, kNotWritten},
      {"not read back", closing, [&] { std::filesystem::remove(readBack); }, kNotWritten},
      {"cut short", copied, [&] { std::filesystem::resize_file(copy, a_.size() - 1); }, kDiffers},
      {"last byte", copied, [&] { WriteWhole(copy, a_.substr(0, a_.size() - 1) + "x"); }, kDiffers},
      {"source cut short meanwhile", comparing, [&] { std::filesystem::resize_file(source, 0); }, kDiffers},
  };
  for (const auto& run : cases) {
    SCOPED_TRACE(run.name);
    Expect({{kInsert, Ok}});
    {
      const Meddling meddling(run.when, run.work);
      EXPECT_EQ(Failure([&] { CopiazaPeDischetaMulti(sources_, destinations_); }), run.failure);
      EXPECT_TRUE(meddling.Done());
    }
    EXPECT_FALSE(std::filesystem::exists(folder_ / "disc/b")) << "nothing further is copied";
    EXPECT_TRUE(std::filesystem::is_empty(folder_ / "temp"));
    WriteWhole(source, a_);
    std::filesystem::remove(copy);
  }
}

/// Refuses to remove anything.
class WriteProtected : public platform::SystemCallGate {
 public:
  SystemStatus Before(SystemCall call) noexcept override { return SystemStatus(call == SystemCall::Remove ? 5 : 0); }

 private:
  Replacement<platform::SystemCallGate> inUse_{platform::system_call_service, *this};
};

TEST_F(FloppyCopy, LeavesADisketteThatIsProtectedFromWriting) {
  WriteWhole(folder_ / "disc/a", "vechi");
  Expect({{kInsert, Ok}, {kHasData, Yes}, {CannotDelete(destinations_[0]), Ok}});
  const WriteProtected diskette;
  CopiazaPeDischetaMulti(sources_, destinations_);
  EXPECT_EQ(ReadWhole(folder_ / "disc/a"), "vechi");
}

/// A host whose user goes on as long as that is offered.
class WillingHost : public host::Host, private host::Dialogs {
 public:
  [[nodiscard]] host::Dialogs& GetDialogs() override { return *this; }
  /// Whether the last dialog said that the copy is done.
  [[nodiscard]] bool SaidDone() const { return saidDone_; }

 private:
  DialogAnswer Ask(DialogKind kind, TextView text, DialogButtons buttons) override {
    saidDone_ = text == kDone.text;
    if (buttons == DialogButtons::YesNo) {
      return Yes;
    }
    return kind == DialogKind::Information || buttons == DialogButtons::Ok ? Ok : Cancel;
  }

  bool saidDone_ = false;
};

TEST_F(FloppyCopy, HarmsNothingWhenAnyCallFails) {
  const Text archive = At("local/arhiva.zip");
  const auto pack = [&](const StringList&, const StringList&, Text& onDiskette, Text& local) {
    WriteWhole(folder_ / "local/arhiva.zip", a_);
    local = archive;
    onDiskette = At("disc/a");
  };
  const Text large = SourceOfSize(1'300'000);
  for (const bool packed : {false, true}) {
    OnProcFaZipPentruDischeta = pack;
    std::size_t calls = FailingCalls::kNone;
    for (std::size_t failing = 0; failing < calls; ++failing) {
      WillingHost host;
      host::Install(host);
      WriteWhole(folder_ / "disc/a", "vechi");
      Text failure;
      std::size_t seen = 0;
      bool failed = false;
      {
        const FailingCalls fails(failing);
        failure =
            Failure([&] { CopiazaPeDischeta(packed ? large : sources_[0], At(packed ? "disc/mare" : "disc/a")); });
        seen = fails.Seen().size();
        failed = fails.Failed();
      }
      if (!failed) {
        calls = seen;  // none is left to fail
        EXPECT_TRUE(host.SaidDone());
      }
      ExpectNothingHarmed();
      EXPECT_FALSE(std::filesystem::exists(folder_ / "local/arhiva.zip"));
      EXPECT_EQ(std::filesystem::file_size(folder_ / "local/large"), 1'300'000U);
      if (host.SaidDone()) {
        EXPECT_EQ(failure, "");
        // A source that could not be asked for its size is not packed.
        EXPECT_TRUE(ReadWhole(folder_ / "disc/a") == a_ || std::filesystem::remove(folder_ / "disc/mare"));
      }
      if (HasFailure()) {
        ADD_FAILURE() << "when call " << failing << " failed: " << failure;
        return;
      }
    }
    EXPECT_GT(calls, 20U);
    std::cout << calls << " calls failed, one at a time\n";
  }
  host::Install(host_);
}

}  // namespace
}  // namespace kiv::floppy
