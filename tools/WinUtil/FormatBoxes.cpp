#include "tools/WinUtil/FormatBoxes.h"

#include <algorithm>

namespace kiv::format_boxes {
namespace {

constexpr std::array<TextView, 6> kFormatCaptions = {
    "Format - 3\xBD Floppy (A:)", "Format 3\xBD Floppy (A:)", "Format - 3\xBD Floppy (B:)",
    "Format 3\xBD Floppy (B:)",   kRomanianCaption,           "Formatez discheta de 3\xBD inch (B:)",
};
constexpr std::array<TextView, 2> kResultsCaptions = {
    "Format Results - 3\xBD Floppy (A:)",
    "Format Results - 3\xBD Floppy (B:)",
};
constexpr TextView kNoDisk =
    "There is no disk in this drive or the drive door is open. Insert a disk in the drive and make sure the drive door "
    "is closed, and then click Retry.";
constexpr TextView kEraseWarning =
    "WARNING: Formatting will erase ALL data on this disk.\r\nTo format the disk, click OK. To quit, click CANCEL.";

struct Window {
  Handle handle;
  Text className;
  Text text;
};

Window Read(platform::ThreadWindows& windows, Handle handle) {
  constexpr std::chrono::milliseconds kLimit(100);  // its thread may hang
  return {handle, windows.ClassOf(handle), windows.TextOf(handle, kLimit).value_or("<nu pot determina text>")};
}

template <std::size_t size>
bool IsOneOf(const std::array<TextView, size>& texts, TextView text) {
  return std::ranges::find(texts, text) != texts.end();
}

bool Matches(const Control& control, const Window& window) {
  return window.className == control.className &&
         (window.text == control.text || (!control.otherText.empty() && window.text == control.otherText));
}

void TakeControl(Found& found, const Window& window) {
  const auto* const control =
      std::ranges::find_if(kControls, [&](const Control& known) { return Matches(known, window); });
  if (control != kControls.end()) {
    found.controls[static_cast<std::size_t>(control - kControls.begin())] = window.handle;
  }
}

void TakePopupChild(Found& found, const Window& window) {
  if (window.className == "Button") {
    if (window.text == "&Retry") {
      found.popupRetry = window.handle;
    } else if (window.text == "Cancel") {
      found.popupCancel = window.handle;
    } else if (window.text == "OK") {
      found.popupOk = window.handle;
    }
  } else if (window.className == "Static" && (window.text == kNoDisk || window.text == kEraseWarning)) {
    found.popupText = window.handle;
    found.message = window.text == kNoDisk ? Message::NoDisk : Message::EraseWarning;
  }
}

void Take(Found& found, const Window& window, Handle parent) {
  const bool isDialog = window.className == "#32770";
  if (window.text == kRomanianCaption || (isDialog && IsOneOf(kFormatCaptions, window.text))) {
    (found.main == 0 ? found.main : found.popup) = window.handle;
  } else if (isDialog && IsOneOf(kResultsCaptions, window.text)) {
    found.results = window.handle;
  } else if (parent == 0) {
    return;
  } else if (parent == found.main) {
    TakeControl(found, window);
  } else if (parent == found.popup) {
    TakePopupChild(found, window);
  } else if (parent == found.results && window.text == "Close") {
    found.resultsClose = window.handle;
  }
}

}  // namespace

std::int32_t Found::Count() const {
  return 1 + static_cast<std::int32_t>(controls.size()) -
         static_cast<std::int32_t>(std::ranges::count(controls, Handle{0}));
}

Found Look(platform::ThreadWindows& windows) {
  Found found;
  for (const Handle top : windows.TopLevel()) {
    Take(found, Read(windows, top), 0);
    for (const Handle child : windows.Children(top)) {
      Take(found, Read(windows, child), top);
    }
  }
  return found;
}

Handle FindCompletionOk(platform::ThreadWindows& windows) {
  const Handle box = windows.Foreground();
  if (box == 0) {
    return 0;
  }
  bool complete = false;
  Handle ok = 0;
  for (const Handle child : windows.Children(box)) {
    const Window window = Read(windows, child);
    complete = complete || (window.className == "Static" && window.text == "Format Complete.");
    if (window.className == "Button" && window.text == "OK") {
      ok = window.handle;
    }
  }
  return complete ? ok : 0;
}

}  // namespace kiv::format_boxes
