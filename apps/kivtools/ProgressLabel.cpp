#include "apps/kivtools/ProgressLabel.h"

#include <algorithm>

#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"

namespace kivtools {
namespace {

ProgressLabel& LabelOf(void* context) noexcept {
  return *static_cast<ProgressLabel*>(context);
}

KivLength CopyOut(std::string_view text, char* buffer, std::size_t capacity) noexcept {
  if (capacity > 0) {
    const std::size_t copied = std::min(text.size(), capacity - 1);
    std::copy_n(text.data(), copied, buffer);
    buffer[copied] = '\0';
  }
  return static_cast<KivLength>(text.size());
}

/// What the library has cut off a path's beginning may have been the first bytes of a letter.
std::string WithoutCutLetter(std::string note) {
  constexpr std::string_view kDots = "...";
  std::size_t end = kDots.size();
  while (note.starts_with(kDots) && end < note.size() && (static_cast<unsigned char>(note[end]) & 0xC0U) == 0x80U) {
    ++end;
  }
  return note.starts_with(kDots) ? note.erase(kDots.size(), end - kDots.size()) : note;
}

}  // namespace

ProgressLabel::ProgressLabel(const Library& library, Progress& progress) : library_(library), progress_(progress) {
  KivHostTable table{};
  table.size = sizeof table;
  table.context = this;
  table.kind = [](void*, KivControl*) -> std::int32_t { return KIV_CONTROL_LABEL; };
  table.name = [](void*, KivControl*, char* buffer, std::size_t capacity) {
    return CopyOut("progress", buffer, capacity);
  };
  table.className = table.name;
  table.bounds = [](void* context, KivControl*, KivRect* bounds) { *bounds = {0, 0, LabelOf(context).Width(), 1}; };
  table.caption = [](void* context, KivControl*, char* buffer, std::size_t capacity) {
    return CopyOut(LabelOf(context).caption_, buffer, capacity);
  };
  table.setCaption = [](void* context, KivControl*, const char* text, std::size_t length) {
    LabelOf(context).caption_.assign(text, length);
  };
  table.repaint = [](void* context, KivControl*) { LabelOf(context).Repaint(); };
  library_.InstallHost(&table);
}

ProgressLabel::~ProgressLabel() {
  try {
    library_.InstallHost(nullptr);
  } catch (...) {  // NOLINT(bugprone-empty-catch): taking a host back needs nothing that could fail
  }
}

KivControl* ProgressLabel::Control() noexcept {
  return progress_.IsWatched() ? reinterpret_cast<KivControl*>(this) : nullptr;
}

std::int32_t ProgressLabel::Width() const {
  const std::size_t columns = std::max<std::size_t>(Progress::NoteColumns(), 1);
  const std::size_t taken = DisplayWidth(library_.PathToUtf8(caption_));
  return static_cast<std::int32_t>((taken * kMostWidth + columns - 1) / columns);
}

void ProgressLabel::Repaint() {
  progress_.Note(ShownName(WithoutCutLetter(library_.PathToUtf8(caption_))));
}

}  // namespace kivtools
