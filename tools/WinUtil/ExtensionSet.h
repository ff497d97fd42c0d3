#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "platform/NameCase.h"
#include "platform/Paths.h"

namespace kiv {

/// The extensions by which files are chosen. A file's own has small letters when it is compared.
class ExtensionSet {
 public:
  /// What an entry means: with capital letters and "*" both are as they stand, or they are made small, and "*" is all.
  enum class Case : std::uint8_t { AsGiven, Any };
  enum class Star : std::uint8_t { NoMeaning, EveryFile };

  ExtensionSet(const StringList& extensions, Case letters, Star star) {
    for (const TextView extension : extensions) {
      takesAll_ = takesAll_ || (star == Star::EveryFile && extension == "*");
      auto native = platform::PathFromText(extension).native();
      if (letters == Case::Any) {
        std::ranges::transform(native, native.begin(), platform::LowerLetter);
      }
      extensions_.push_back(std::move(native));
    }
  }

  /// Whether a file of that name is chosen.
  [[nodiscard]] bool Takes(platform::NativeView name) const noexcept {
    if (takesAll_) {
      return true;
    }
    const std::size_t dot = name.rfind('.');
    const auto extension = dot == platform::NativeView::npos ? platform::NativeView() : name.substr(dot + 1);
    return std::ranges::any_of(extensions_, [extension](const auto& entry) {
      return std::ranges::equal(entry, extension, {}, {}, platform::LowerLetter);
    });
  }

 private:
  std::vector<platform::NativeString> extensions_;
  bool takesAll_ = false;
};

}  // namespace kiv
