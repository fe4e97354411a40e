#pragma once

#include <string>

#include <sys/stat.h>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {

/// A file that has another name while one is saved beside it or under its old name. A link is
/// renamed itself; what it leads to stays.
class RASTERKIT_EXPORT SetAside {
 public:
  /// Renames the file: "plan.tfw.bak", or with a number if that is taken. With `syncs` the new name
  /// is on the disk afterwards. Throws FileError; the file then has its own name.
  SetAside(const std::string& fileName, bool syncs);
  /// The same with a name of BackupNameOf, of this number or the next one that is free.
  SetAside(const std::string& fileName, bool syncs, int backupNumber);
  SetAside(SetAside&&) noexcept = default;

  const std::string& FileName() const { return fileName_; }
  /// The full name that it has meanwhile.
  std::string BackupName() const;

  /// Gives the file its name back, unless the name is taken. Returns false if it keeps its backup
  /// name.
  bool PutBack() noexcept;
  /// Removes the file. Returns false if the system refuses.
  bool Remove() noexcept;

 private:
  template <typename NameOf>
  void Rename(bool syncs, int first, int last, NameOf nameOf);
  bool Take(const std::string& backup);

  std::string fileName_;
  SystemFile folder_;
  std::string name_, backup_;
};

/// The file that a name leads to at this moment, to see whether another one takes its place.
class RASTERKIT_EXPORT FileIdentity {
 public:
  /// Follows links. Throws FileError if the system does not say whether there is a file.
  explicit FileIdentity(const std::string& fileName);
  bool Exists() const { return exists_; }
  /// True for a regular file.
  bool IsRegular() const { return exists_ && S_ISREG(mode_); }
  friend bool operator==(const FileIdentity& a, const FileIdentity& b) {
    return a.exists_ == b.exists_ &&
           (!a.exists_ || (a.device_ == b.device_ && a.number_ == b.number_));
  }

 private:
  bool exists_ = false;
  mode_t mode_ = 0;
  dev_t device_ = 0;
  ino_t number_ = 0;
};

}  // namespace rasterkit::detail
