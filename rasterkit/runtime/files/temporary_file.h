#pragma once

#include <memory>
#include <string>

#include <sys/types.h>

#include <rasterkit/runtime/files/system_file.h>
#include <rasterkit/runtime/files/temporary_names.h>

namespace rasterkit::detail {

/// A new file in a folder that does not have its final name yet. Without that name it is gone with
/// the object. Errors are thrown as FileError for the name `target`.
class TemporaryFile {
 public:
  /// Opens the file with these mode bits (the umask applies), without a name if the file system has
  /// such files. `folder` must outlive this object.
  TemporaryFile(const SystemFile& folder, mode_t mode, std::string target);
  ~TemporaryFile() { RemoveName(); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const SystemFile& File() const { return file_; }

  /// Gives the file a name that is free. Returns false if the name is taken.
  bool CreateName(const std::string& name);
  /// Gives the file a name, in place of the file that has it.
  void ReplaceName(const std::string& name);

 private:
  [[noreturn]] void Fail(int error) const;
  void FailIfRemoved();
  bool OpenNameless(mode_t mode);
  void OpenNamed(mode_t mode);
  void NameTheNameless();
  void RemoveName();
  bool LinkNamed(const std::string& name);
  bool ClaimName(const std::string& name);
  bool IsSameFile(const SystemFile& file, const std::string& name) const;

  const SystemFile& folder_;
  const std::string target_;
  SystemFile file_;
  /// Null while the file has no name, and when it has its final one.
  std::unique_ptr<TemporaryName> name_;
};

}  // namespace rasterkit::detail
