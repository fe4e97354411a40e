#pragma once

#include <QString>
#include <atomic>
#include <string>
#include <vector>

/// What stands in a folder. Internal to the room.
namespace rasterkit::detail {

struct FolderEntry {
  QString name;
  bool isFolder = false;
  /// In bytes.
  qint64 size = 0;
  /// Of the last change, in milliseconds since 1970, universal time; 0 when it is not known.
  qint64 time = 0;

  bool operator==(const FolderEntry&) const = default;
};

enum class FolderState { isReading, isRead, isGone, isUnreadable };

struct FolderContent {
  FolderState state = FolderState::isReading;
  /// Why it is unreadable, in the system's words.
  QString reason;
  /// By name as people sort: without regard to case, and "plan 2" before "plan 10".
  std::vector<FolderEntry> entries;

  bool operator==(const FolderContent&) const = default;
};

/// Files and folders in `directory`, hidden ones left out, links as what they lead to. Takes about
/// seven microseconds an entry; gives up when cancelled, its answer is of no use then.
FolderContent ReadFolder(const std::string& directory, const std::atomic<bool>& isCancelled);

}  // namespace rasterkit::detail
