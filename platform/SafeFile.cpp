#include "platform/SafeFile.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <random>

namespace kiv::platform {
namespace {

constexpr std::size_t kLongestName = 255;

/// The name with an ending, cut short where file systems would refuse it as a whole.
NativeString WithEnding(NativeView name, std::string_view ending) {
  NativeString whole(name.substr(0, kLongestName - ending.size()));
  whole.append(ending.begin(), ending.end());
  return whole;
}

/// A number that looks random to others. The clock makes it another one in a process that has been forked off, the
/// count makes it another one within a tick; asking the system for each would cost as much as copying a small file.
std::uint64_t UnlikelyNumber() {
  static const std::uint64_t seed = [] {
    std::random_device random;
    return std::uint64_t{random()} << 32U | random();
  }();
  static std::atomic<std::uint64_t> count;
  const auto now = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  std::uint64_t bits = seed + now + count.fetch_add(0x9E3779B97F4A7C15U, std::memory_order_relaxed);
  bits = (bits ^ bits >> 30U) * 0xBF58476D1CE4E5B9U;
  bits = (bits ^ bits >> 27U) * 0x94D049BB133111EBU;
  return bits ^ bits >> 31U;
}

std::filesystem::path FolderOf(const std::filesystem::path& path) {
  const std::filesystem::path folder = path.parent_path();
  return folder.empty() ? "." : folder;
}

}  // namespace

NativeString TemporaryName(NativeView name) {
  std::array<char, 32> ending{};
  std::snprintf(ending.data(), ending.size(), ".tmp-%016" PRIx64, UnlikelyNumber());
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
  const SystemStatus opened = UnderTemporaryName(name_.native(), temporary_, [&](SystemName temporary) {
    return content_.Open(at, temporary, OpenMode::CreateNew, permissions);
  });
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
  const NativeString second = TemporaryName(name_.native());
  if (const SystemStatus linked = MakeHardLink(*at_, name_, *at_, second); linked.Failed()) {
    return linked;
  }
  const SystemStatus renamed = Rename(*at_, second, *at_, WithEnding(name_.native(), ".bak"), Existing::Replaced);
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
