#pragma once

#include "kivtools/Types.h"
#include "platform/Files.h"

namespace kiv {

/// Whether something that is no folder has the name; a link that leads nowhere counts where links stand for themselves.
bool FileExists(const Text& path, platform::Links links);

/// Whether deleting `path`, or writing over it, would take away `other`: what `other` leads to, or its own name. True
/// where the system does not tell; false where nothing has the name `path`.
bool WouldTakeAway(const Text& path, const Text& other);

/// A file that this process has made and nobody else needs: it is deleted with this object, whatever has happened. It
/// need not exist.
class OwnFile {
 public:
  OwnFile() = default;
  explicit OwnFile(Text path) : path_(std::move(path)) {}
  ~OwnFile();
  OwnFile(const OwnFile&) = delete;
  OwnFile& operator=(const OwnFile&) = delete;

  /// Its path, which somebody else may still have to fill in.
  [[nodiscard]] Text& Path() noexcept { return path_; }
  [[nodiscard]] const Text& Path() const noexcept { return path_; }

  /// If it turns out to be one of these, it is not ours and stays. The list must live as long as this object.
  void Spare(const StringList& files) noexcept { spared_ = &files; }
  /// Whether it has turned out so.
  [[nodiscard]] bool IsSpared() const;

 private:
  Text path_;
  const StringList* spared_ = nullptr;
};

}  // namespace kiv
