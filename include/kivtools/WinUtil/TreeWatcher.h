/// @file
/// Told of what the operations on file trees do and pass over. See kivtools/WinUtil/FileLists.h and FileTrees.h.
#pragma once

#include "kivtools/Errors.h"
#include "kivtools/Types.h"

namespace kiv {

/// From its making to its end, an object of a class derived from this one is told what the operations on file trees do
/// that its thread calls: `InitFileList`, `InitFileListMaxDepth`, `RecursiveCopyWithExt`,
/// `RecursiveCopyWithExtSkipFolders`, `RecursiveDelete` and `MeasureTree`. They give the same results with and without
/// it. Within a watcher's time another one may watch in its place; both end on the thread where they began, the later
/// one first.
///
/// What a function throws ends the operation and reaches its caller: so a host lets its user cancel. Nothing is left
/// half done; what is done stays.
///
///     class Failures : public TreeWatcher {
///      public:
///       void OnFailure(TextView, const OsError& error) override { list.emplace_back(error.what()); }
///       StringList list;
///     } failures;
///     RecursiveDelete("C:\\temp\\lucru");
///     // failures.list: {"RecursiveDelete: C:\temp\lucru\a.txt: Access is denied"}, empty when all is deleted
class KIV_API TreeWatcher {
 public:
  TreeWatcher() noexcept;
  virtual ~TreeWatcher();
  TreeWatcher(const TreeWatcher&) = delete;
  TreeWatcher& operator=(const TreeWatcher&) = delete;

  /// A file has been copied, deleted or measured: its path and its size in bytes, 0 for what is no regular file. A copy
  /// has its source's path. Lists name their files themselves.
  virtual void OnFile(TextView path, std::uint64_t size);
  /// A folder has been copied before its files, deleted after them, or measured.
  virtual void OnFolder(TextView path);
  /// Something has been passed over: what it was, and why, as operation, path and the system's text and code. A folder
  /// that stays because of something in it is not told of, nor is what cannot be copied into a folder that has been.
  virtual void OnFailure(TextView path, const OsError& error);

 private:
  TreeWatcher* former_;
};

}  // namespace kiv
