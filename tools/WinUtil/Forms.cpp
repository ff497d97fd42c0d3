#include "kivtools/WinUtil/Forms.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "core/Wrapping.h"
#include "kivtools/Host.h"
#include "platform/HelperThreads.h"
#include "platform/Timer.h"

namespace kiv {
namespace {

using namespace std::chrono_literals;

/// How far the coordinate lies outside of from..to.
std::int64_t Outside(std::int32_t coordinate, std::int32_t from, std::int32_t to) {
  return std::max(
      {std::int64_t{from} - coordinate, std::int64_t{coordinate} - (std::int64_t{to} - 1), std::int64_t{0}});
}

/// A measure of the distance from a monitor; squares of two 33-bit numbers need the room.
long double Distance(const host::Rect& monitor, host::Point point) {
  const auto across = static_cast<long double>(Outside(point.x, monitor.left, monitor.right));
  const auto down = static_cast<long double>(Outside(point.y, monitor.top, monitor.bottom));
  return across * across + down * down;
}

host::Monitor MonitorUnderMouse(TextView operation) {
  const host::Screen& screen = host::Current().GetScreen();
  const std::vector<host::Monitor> monitors = screen.Monitors();
  if (monitors.empty()) {
    throw Error(Text(operation) + ": ecranul nu are nici un monitor");
  }
  const host::Point mouse = screen.MousePosition();
  return *std::min_element(monitors.begin(), monitors.end(), [mouse](const auto& one, const auto& other) {
    return Distance(one.bounds, mouse) < Distance(other.bounds, mouse);
  });
}

/// The start of something of that size in the middle of from..to, yet not before `from`.
std::int32_t Middle(std::int32_t from, std::int32_t to, std::int32_t size) {
  return std::max(from, Wrapped(from + (std::int64_t{to} - from - size) / 2));
}

void Centre(host::Form& form, const host::Rect& workArea) {
  const host::Rect bounds = form.Bounds();
  form.SetBounds(host::Rect::At(Middle(workArea.left, workArea.right, bounds.Width()),
                                Middle(workArea.top, workArea.bottom, bounds.Height()), bounds.Width(),
                                bounds.Height()));
}

bool IsLargeLandscape(const host::Rect& monitor) {
  constexpr std::int32_t kLargeWidth = 1200;
  return monitor.Width() >= kLargeWidth && monitor.Width() > monitor.Height();
}

/// Maximises a window as soon as it is shown.
class TCentreazaSiRedimensioneazaFormThread {
 public:
  explicit TCentreazaSiRedimensioneazaFormThread(std::shared_ptr<host::Window> window) : window_(std::move(window)) {}

  void operator()() const noexcept {
    const platform::Timer& timer = platform::timer_service.Current();
    const auto start = timer.Now();
    for (auto now = start; now < start + 30s; now = timer.Now()) {
      if (window_->Visible()) {
        window_->Maximise();
        return;
      }
      // Most forms are shown at once; for the others a second more does not matter.
      timer.Sleep(now < start + 10s ? 1ms : 1'000ms);
    }
  }

 private:
  std::shared_ptr<host::Window> window_;
};

}  // namespace

void CentreazaForm(host::Form& form, bool allowEnlarging) {
  constexpr std::int32_t kFrame = 12;
  const host::Rect workArea = MonitorUnderMouse("CentreazaForm").workArea;
  if (allowEnlarging && workArea.Width() - kFrame < form.Width() && workArea.Height() - kFrame < form.Height()) {
    CentreazaSiRedimensioneazaForm(form);
    return;
  }
  Centre(form, workArea);
}

void CentreazaSiRedimensioneazaForm(host::Form& form) {
  constexpr std::int32_t kMargin = 15;
  const auto [monitor, workArea] = MonitorUnderMouse("CentreazaSiRedimensioneazaForm");
  if (IsLargeLandscape(monitor)) {
    Centre(form, workArea);
    return;
  }
  form.SetBounds(host::Rect::At(workArea.left + kMargin, workArea.top + kMargin, workArea.Width() - 2 * kMargin,
                                workArea.Height() - 2 * kMargin));
  Centre(form, workArea);  // a framework may have refused the size
  // Last, so that a form which is visible already is not moved while another thread maximises it.
  platform::helper_threads.Current().Start("CentreazaSiRedimensioneazaForm: nu pot porni firul care mareste fereastra",
                                           TCentreazaSiRedimensioneazaFormThread(form.GetWindow()));
}

}  // namespace kiv
