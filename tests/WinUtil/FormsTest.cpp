#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <thread>

#include "Expect.h"
#include "kivtools/Host/Headless.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/Forms.h"
#include "platform/HelperThreads.h"
#include "platform/Timer.h"

namespace kiv {
namespace {

using namespace std::chrono_literals;
using host::Monitor;
using host::Point;
using host::Rect;
using host::headless::Form;

/// A screen of these monitors, installed as long as it lives.
class Desktop {
 public:
  Desktop(std::vector<Monitor> monitors, Point mouse) {
    host_.GetScreen().SetMonitors(std::move(monitors));
    host_.GetScreen().SetMousePosition(mouse);
    host::Install(host_);
  }

 private:
  host::headless::Host host_;
};

/// Keeps what was to run on a helper thread, or refuses it.
class KeptThreads : public platform::HelperThreads {
 public:
  void Start(TextView context, std::function<void()> work) const override {
    if (refuse) {
      throw OsError(11, Text(context) + ": refuz");
    }
    works.push_back(std::move(work));
  }
  bool refuse = false;
  mutable std::vector<std::function<void()>> works;

 private:
  Replacement<const platform::HelperThreads> inUse_{platform::helper_threads, *this};
};

/// A timer that passes as fast as somebody sleeps.
class QuickTimer : public platform::Timer {
 public:
  [[nodiscard]] std::chrono::milliseconds Now() const override { return now; }
  void Sleep(std::chrono::milliseconds duration) const override {
    now += duration;
    ++sleeps[duration];
    if (after) {
      after(now - kStart);
    }
  }
  static constexpr std::chrono::milliseconds kStart = 1'000'000ms;
  mutable std::chrono::milliseconds now = kStart;
  mutable std::map<std::chrono::milliseconds, int> sleeps;
  std::function<void(std::chrono::milliseconds)> after;

 private:
  Replacement<const platform::Timer> inUse_{platform::timer_service, *this};
};

// Three side by side, and one above that is higher than wide; all with a task bar.
const Monitor kLeft{{-1'280, 0, 0, 1'024}, {-1'280, 0, 0, 994}};
const Monitor kMain{{0, 0, 1'920, 1'080}, {0, 0, 1'920, 1'040}};
const Monitor kSmall{{1'920, 0, 2'944, 768}, {1'920, 30, 2'944, 768}};
const Monitor kAbove{{0, -1'920, 1'080, 0}, {0, -1'920, 1'080, 0}};

TEST(CentreazaForm, GoesToTheMiddleOfTheMonitorUnderTheMouse) {
  const struct {
    Point mouse;
    Rect form;
    bool allowEnlarging;
    Point expected;
  } cases[] = {
      {{5, 5}, Rect::At(7, 7, 300, 200), true, {810, 420}},
      {{1'919, 1'079}, Rect::At(0, 0, 301, 201), true, {809, 419}},  // cut
      {{-1, 5}, Rect::At(0, 0, 280, 94), false, {-780, 450}},
      {{1'920, 767}, Rect::At(0, 0, 100, 100), false, {2'382, 349}},
      {{500, -1}, Rect::At(0, 0, 80, 20), false, {500, -970}},
      {{-5'000, 3'000}, Rect::At(0, 0, 280, 94), false, {-780, 450}},  // the nearest
      {{2'500, 900}, Rect::At(0, 0, 100, 100), false, {2'382, 349}},   // below the small one: 133 pixels
      {{2'000, 1'079}, Rect::At(0, 0, 300, 200), false, {810, 420}},   // nearer to the main one: 81 against 312
      {{5, 5}, Rect::At(0, 0, 1'930, 200), false, {0, 420}},           // overhangs to the right
      {{5, 5}, Rect::At(0, 0, 300, 5'000), false, {810, 0}},           // and below
      {{-5, 5}, Rect::At(0, 0, 9'999, 9'999), false, {-1'280, 0}},
      {{1'930, 5}, Rect::At(0, 0, 1'100, 500), true, {1'920, 149}},  // wider, not higher: only centred
      {{1'930, 5}, Rect::At(0, 0, 1'012, 800), true, {1'926, 30}},   // not wider than the area less 12
      {{1'930, 5}, Rect::At(0, 0, 1'013, 726), true, {1'925, 36}},
      {{5, 5}, Rect::At(0, 0, 1'909, 1'029), true, {5, 5}},  // a large monitor never enlarges
  };
  for (const auto& [mouse, bounds, allowEnlarging, expected] : cases) {
    const Desktop desktop({kMain, kLeft, kSmall, kAbove}, mouse);
    const KeptThreads threads;
    Form form("f");
    form.SetBounds(bounds);
    CentreazaForm(form, allowEnlarging);
    EXPECT_EQ(form.Bounds(), Rect::At(expected.x, expected.y, bounds.Width(), bounds.Height()))
        << mouse.x << ' ' << mouse.y << ' ' << bounds.Width() << ": " << form.Left() << ' ' << form.Top();
    EXPECT_TRUE(threads.works.empty());
  }
}

TEST(CentreazaSiRedimensioneazaForm, FillsSmallAndUprightMonitors) {
  const Rect put = Rect::At(0, 0, 1'100, 800);
  const struct {
    Monitor monitor;
    Rect expected;
    bool watched;
  } cases[] = {
      {{{0, 0, 1'024, 768}, {0, 0, 1'024, 738}}, Rect::At(15, 15, 994, 708), true},
      {kLeft, Rect::At(-1'190, 97, 1'100, 800), false},
      {kAbove, Rect::At(15, -1'905, 1'050, 1'890), true},
      {{{0, 0, 1'200, 1'199}, {0, 0, 1'200, 1'199}}, Rect::At(50, 199, 1'100, 800), false},
      {{{0, 0, 1'200, 1'200}, {0, 0, 1'200, 1'200}}, Rect::At(15, 15, 1'170, 1'170), true},
      {{{0, 0, 1'199, 600}, {0, 0, 1'199, 600}}, Rect::At(15, 15, 1'169, 570), true},
  };
  for (const auto& [monitor, expected, watched] : cases) {
    const Desktop desktop({monitor}, {monitor.bounds.left, monitor.bounds.top});
    const KeptThreads threads;
    Form form("f");
    form.SetBounds(put);
    CentreazaSiRedimensioneazaForm(form);
    EXPECT_EQ(form.Bounds(), expected) << monitor.bounds.Width();
    EXPECT_EQ(threads.works.size(), watched ? 1U : 0U);
  }
  const Desktop desktop({kSmall}, {});
  const KeptThreads threads;
  Form form("f");
  form.SetBounds(Rect::At(0, 0, 1'013, 727));
  CentreazaForm(form, true);
  EXPECT_EQ(form.Bounds(), Rect::At(1'935, 45, 994, 708));
  EXPECT_EQ(threads.works.size(), 1U);
}

TEST(CentreazaSiRedimensioneazaForm, HasItsPlaceBeforeAFaultIsTold) {
  const Desktop desktop({kSmall}, {});
  KeptThreads threads;
  threads.refuse = true;
  Form form("f");
  form.SetBounds(Rect::At(0, 0, 1'100, 800));
  ExpectError<OsError>([&] { CentreazaSiRedimensioneazaForm(form); },
                       "CentreazaSiRedimensioneazaForm: nu pot porni firul care mareste fereastra: refuz");
  EXPECT_EQ(form.Bounds(), Rect::At(1'935, 45, 994, 708));

  const Desktop nowhere({}, {});
  ExpectError<Error>([&] { CentreazaForm(form, true); }, "CentreazaForm: ecranul nu are nici un monitor");
  ExpectError<Error>([&] { CentreazaSiRedimensioneazaForm(form); },
                     "CentreazaSiRedimensioneazaForm: ecranul nu are nici un monitor");
}

/// What the watching thread does where the window is shown after so long, or never.
struct Watched {
  explicit Watched(std::chrono::milliseconds shown) {
    const Desktop desktop({kSmall}, {});
    const KeptThreads threads;
    Form form("f");
    form.SetVisible(shown == 0ms);
    CentreazaSiRedimensioneazaForm(form);
    timer.after = [&](std::chrono::milliseconds passed) {
      if (passed >= shown) {
        form.SetVisible(true);
      }
    };
    threads.works.at(0)();
    maximised = form.Maximised();
  }
  QuickTimer timer;
  bool maximised = false;
};

TEST(CentreazaSiRedimensioneazaForm, WaitsHalfAMinuteForTheWindow) {
  const struct {
    std::chrono::milliseconds shown;
    bool maximised;
    int shortSleeps;
    int longSleeps;
  } cases[] = {
      {0ms, true, 0, 0},
      {1ms, true, 1, 0},
      {9'999ms, true, 9'999, 0},
      {10'000ms, true, 10'000, 0},
      {10'001ms, true, 10'000, 1},
      {28'500ms, true, 10'000, 19},
      {29'000ms, true, 10'000, 19},
      {29'001ms, false, 10'000, 20},
      {3'600'000ms, false, 10'000, 20},
  };
  for (const auto& [shown, maximised, shortSleeps, longSleeps] : cases) {
    const Watched watched(shown);
    EXPECT_EQ(watched.maximised, maximised) << shown.count();
    EXPECT_EQ(watched.timer.sleeps[1ms], shortSleeps) << shown.count();
    EXPECT_EQ(watched.timer.sleeps[1'000ms], longSleeps) << shown.count();
  }
}

TEST(CentreazaSiRedimensioneazaForm, MaximisesOnAThreadOfItsOwn) {
  const Desktop desktop({kSmall}, {});
  Form form("f");
  CentreazaSiRedimensioneazaForm(form);
  {
    Form goesFirst("g");
    CentreazaSiRedimensioneazaForm(goesFirst);
    goesFirst.SetVisible(true);
  }
  form.SetVisible(true);
  for (int attempt = 0; attempt < 5'000 && !form.Maximised(); ++attempt) {
    std::this_thread::sleep_for(1ms);
  }
  EXPECT_TRUE(form.Maximised());
}

}  // namespace
}  // namespace kiv
