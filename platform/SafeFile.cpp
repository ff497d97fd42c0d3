#include "platform/SafeFile.h"

#include <array>
#include <cstdio>
#include <random>

namespace kiv::platform {
namespace {

constexpr std::size_t kLongestName = 255;

/// The name with an ending, cut short where file systems would refuse it as a whole.
std::filesystem::path WithEnding(const std::filesystem::path& name, std::string_view ending) {
  auto letters = name.native();
  if (letters.size() + ending.size() > kLongestName) {
    letters.resize(kLongestName - ending.size());
  }
  letters.append(ending.begin(), ending.end());
  return letters;
}

std::filesystem::path FolderOf(const std::filesystem::path& path) {
  const std::filesystem::path folder = path.parent_path();
  return folder.empty() ? "." : folder;
}

}  // namespace

std::filesystem::path TemporaryName(const std::filesystem::path& name) {
  std::random_device random;
  std::array<char, 32> ending{};
  std::snprintf(ending.data(), ending.size(), ".tmp-%08x%08x", static_cast<unsigned>(random()),
                static_cast<unsigned>(random()));
  return WithEnding(name, ending.data());
}

SystemStatus SafeFile::Create(const std::filesystem::path& path) {
  std::filesystem::path target = path;
  EntryInfo info;
  if (!Query(Folder::Working(), path, Links::AsThemselves, info).Failed() && info.kind == EntryKind::Link) {
    std::error_code unresolved;
    target = std::filesystem::canonical(path, unresolved);
    if (unresolved) {
      return SystemStatus(unresolved.value());
    }
  }
  Folder parent;
  if (const SystemStatus opened = parent.Open(Folder::Working(), FolderOf(target)); opened.Failed()) {
    return opened;
  }
  Abandon();
  parent_ = std::move(parent);
  return Create(parent_, target.filename());
}

SystemStatus SafeFile::Create(const Folder& at, const std::filesystem::path& name) {
  Abandon();
  at_ = &at;
  name_ = name;
  const SystemStatus found = Query(at, name_, Links::AsThemselves, old_);
  replaces_ = !found.Failed();
  const SystemStatus replaceable = replaces_ ? WhyNotReplaced(old_) : found;
  if (replaceable.Failed() && !replaceable.IsMissing()) {
    return replaceable;
  }
  const bool hasPermissions = replaces_ && old_.kind == EntryKind::File;
  const std::uint32_t permissions = hasPermissions ? old_.attributes & 0777U : 0666U;
  constexpr int kAttempts = 100;
  SystemStatus opened;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    temporary_ = TemporaryName(name_);
    opened = content_.Open(at, temporary_, OpenMode::CreateNew, permissions);
    if (!opened.IsExisting()) {
      break;
    }
  }
  pending_ = !opened.Failed();
  return opened;
}

SystemStatus SafeFile::Commit(Durability durability, Backup backup) {
  SystemStatus done = KeepAttributes();
  if (!done.Failed() && durability == Durability::Flushed) {
    done = content_.Flush();
  }
  // Closed in any case: some file systems tell only now that bytes could not be written.
  const SystemStatus closed = content_.Close();
  done = done.Failed() ? done : closed;
  if (!done.Failed() && replaces_ && backup == Backup::Kept) {
    done = KeepBackup();
  }
  if (!done.Failed()) {
    done = Rename(*at_, temporary_, *at_, name_, Existing::Replaced);
    pending_ = done.Failed();
  }
  if (done.Failed() || durability == Durability::Written) {
    Abandon();
    return done;
  }
  return at_->Flush();
}

/// Asked first, because some file systems refuse to set even what is set.
SystemStatus SafeFile::KeepAttributes() {
  if (!replaces_ || old_.kind != EntryKind::File) {
    return {};
  }
  EntryInfo now;
  const SystemStatus asked = content_.Query(now);
  const bool equal = now.attributes == old_.attributes && now.owner == old_.owner && now.group == old_.group;
  return asked.Failed() || equal ? asked : content_.SetAttributes(old_);
}

/// The old file gets a second name, so that the first is never without a file.
SystemStatus SafeFile::KeepBackup() {
  const std::filesystem::path second = TemporaryName(name_);
  if (const SystemStatus linked = MakeHardLink(*at_, name_, *at_, second); linked.Failed()) {
    return linked;
  }
  const SystemStatus renamed = Rename(*at_, second, *at_, WithEnding(name_, ".bak"), Existing::Replaced);
  // Where ".bak" is the same file already, renaming leaves the second name behind.
  static_cast<void>(RemoveFile(*at_, second));
  return renamed;
}

void SafeFile::Abandon() noexcept {
  static_cast<void>(content_.Close());
  if (pending_) {
    pending_ = false;
    static_cast<void>(RemoveFile(*at_, temporary_));
  }
}

}  // namespace kiv::platform
