#include "tools/WinUtil/FittedPath.h"

#include "platform/Paths.h"

namespace kiv {
namespace {

constexpr TextView kDots = "...";

void ShowEndOfName(host::Label& label, TextView name, std::int32_t maxWidth) {
  label.SetCaption(Text(kDots).append(name));
  while (label.Width() > maxWidth && !name.empty()) {
    name.remove_prefix(1);
    label.SetCaption(Text(kDots).append(name));
  }
}

/// Takes one folder more each time, and back the last one: a host's users know the label that way.
void ShowLastFolders(host::Label& label, TextView path, std::size_t nameAt, std::int32_t maxWidth) {
  Text before;
  while (label.Width() < maxWidth && nameAt > 0) {
    before = label.Caption();
    const std::size_t above = nameAt >= 2 ? path.rfind(platform::kPathSeparator, nameAt - 2) : TextView::npos;
    nameAt = above == TextView::npos ? 0 : above + 1;
    label.SetCaption(Text(kDots).append(1, platform::kPathSeparator).append(path.substr(nameAt)));
  }
  label.SetCaption(before);
}

}  // namespace

void ShowFitted(host::Label& label, TextView path, std::int32_t maxWidth) {
  label.SetCaption(path);
  if (label.Width() <= maxWidth) {
    return;
  }
  const std::size_t nameAt = path.rfind(platform::kPathSeparator) + 1;  // npos + 1 is 0
  const TextView name = path.substr(nameAt);
  label.SetCaption(name);
  if (label.Width() > maxWidth) {
    ShowEndOfName(label, name, maxWidth);
  } else {
    ShowLastFolders(label, path, nameAt, maxWidth);
  }
}

}  // namespace kiv
