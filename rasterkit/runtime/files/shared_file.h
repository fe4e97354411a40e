#pragma once

#include <memory>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit {

/// A regular file that stays open, for several readers at once. What was opened is read even if the
/// name leads to another file later, or to none. Size and time of the last change are noted when it
/// is opened.
class RASTERKIT_EXPORT SharedFile {
 public:
  /// Throws FileError for a folder, a missing or an unreadable file.
  explicit SharedFile(const std::string& fileName);
  ~SharedFile();

  const std::string& FileName() const { return name_; }
  /// False for pipes and devices, and for files of the system that state no size: they must be read
  /// once, from the beginning.
  bool IsRegular() const { return isRegular_; }
  uint64_t Size() const;

  /// A stream with a position of its own. It keeps the file open. The streams of a file that is not
  /// regular share their position.
  std::unique_ptr<TStream> Stream() const;
  /// Another handle to the open file.
  detail::SystemFile Handle() const;

  /// Throws FileError if the open file has another size or another time of change than at the time
  /// of opening.
  void RequireUnchanged() const;
  /// True if the name leads to the open file.
  bool IsNamed(const std::string& fileName) const;

 private:
  struct State;

  std::string name_;
  bool isRegular_ = false;
  std::shared_ptr<const State> state_;
};

}  // namespace rasterkit
