#pragma once

#include <string>

#include "apps/kivtools/Library.h"
#include "apps/kivtools/Output.h"

namespace kivtools {

/// A label of this program's that the library shows paths on: they become the note of a progress bar. While it lives,
/// this program is the library's host.
class ProgressLabel {
 public:
  /// The width, in the library's pixels, of a caption that takes all that the terminal has for it.
  static constexpr std::int32_t kMostWidth = 350;

  ProgressLabel(const Library& library, Progress& progress);
  ~ProgressLabel();
  ProgressLabel(const ProgressLabel&) = delete;
  ProgressLabel& operator=(const ProgressLabel&) = delete;

  /// As the library takes it; null, a label that nobody sees, where nobody watches.
  [[nodiscard]] KivControl* Control() noexcept;

 private:
  [[nodiscard]] std::int32_t Width() const;
  void Repaint();

  const Library& library_;
  Progress& progress_;
  std::string caption_;  // as the library writes it
};

}  // namespace kivtools
