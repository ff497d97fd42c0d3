#include <gtest/gtest.h>

#include <algorithm>

#include "kivtools/Host/HeadlessControls.h"
#include "platform/Paths.h"
#include "tools/WinUtil/FittedPath.h"

namespace kiv {
namespace {

/// With the system's separator for each "/".
Text Path(Text path) {
  std::ranges::replace(path, '/', platform::kPathSeparator);
  return path;
}

TEST(FittedPath, ShowsAsManyFoldersAsFit) {
  constexpr std::int32_t kLetter = 8;  // the width of each letter of the label
  struct Case {
    Text path;
    std::int32_t letters;
    Text caption;
  };
  const std::vector<Case> cases = {
      {"/a/b", 4, "/a/b"},                            // fits
      {"", 0, ""},                                    // nothing to show
      {"/unu/doi/trei/f.txt", 18, ".../trei/f.txt"},  // with "doi" it is exactly as wide, and that one is taken back
      {"/unu/doi/trei/f.txt", 17, ".../trei/f.txt"},
      {"/unu/doi/trei/f.txt", 15, ".../trei/f.txt"},
      {"/unu/doi/trei/f.txt", 14, "f.txt"},  // exactly as wide is as wide as too wide
      {"/unu/doi/trei/f.txt", 6, "f.txt"},
      {"/unu/doi/trei/f.txt", 5, ""},  // the name alone is exactly as wide: nothing was remembered
      {"/unu/doi/trei/f.txt", 4, "...t"},
      {"/unu/doi/trei/f.txt", 3, "..."},
      {"/unu/doi/trei/f.txt", 2, "..."},  // nothing left to take away
      {"/unu/doi/trei/f.txt", -1, "..."},
      {"nume-lung.txt", 9, "...ng.txt"},
      {"/a/", 2, ""},  // no name at all
      {"d/f.txt", 6, "f.txt"},
      {"/folder-foarte-lung/f.txt", 24, "f.txt"},
  };
  for (const Case& row : cases) {
    host::headless::Label label(nullptr, "lblFisier");
    ShowFitted(label, Path(row.path), row.letters * kLetter);
    EXPECT_EQ(label.Caption(), Path(row.caption)) << row.path << " in " << row.letters;
  }
}

}  // namespace
}  // namespace kiv
