#include <cerrno>
#include <cstdint>
#include <optional>
#include <system_error>
#include <utility>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/file_rights.h>
#include <rasterkit/runtime/files/posix_acl.h>

namespace rasterkit::detail {
namespace {

constexpr mode_t kRights = 0777, kGroupRights = 0070;

bool MeansUnsupported(int error) {
  return error == ENOTSUP || error == ENOSYS;
}

std::string ReasonOf(int error) {
  return std::generic_category().message(error);
}

class Keeper {
 public:
  Keeper(const SystemFile& old, const SystemFile& file, const std::string& name)
      : old_(old), file_(file), name_(name), before_(StatusOf(old)) {}

  std::vector<std::string> Keep() {
    if (before_.st_nlink > 1) {
      Warn("the old file had " + std::to_string(before_.st_nlink) +
           " names (hard links); the others keep the old content");
    }
    // First, while the file belongs to this process and its owner can write it.
    CopyUserAttributes();
    KeepOwner();
    if (const auto acl = ReadAcl()) {
      KeepAcl(*acl);
    } else {
      KeepMode();
    }
    return std::move(warnings_);
  }

 private:
  void Warn(std::string text) { warnings_.push_back(std::move(text)); }
  [[noreturn]] void Fail(int error) const { ThrowSystemError("cannot be written", error, name_); }

  struct stat StatusOf(const SystemFile& file) const {
    struct stat status {};
    if (Calls().status(file.Handle(), &status) != 0) Fail(errno);
    return status;
  }

  // ---- extended attributes

  void CopyUserAttributes() {
    std::string names;
    const ssize_t size = Calls().listAttributes(old_.Handle(), nullptr, 0);
    if (size > 0) {
      names.resize(static_cast<size_t>(size));
      const ssize_t filled = Calls().listAttributes(old_.Handle(), names.data(), names.size());
      names.resize(filled > 0 ? static_cast<size_t>(filled) : 0);
    }
    if ((size < 0 && !MeansUnsupported(errno)) || (size > 0 && names.empty())) {
      Warn("the extended attributes cannot be kept: " + ReasonOf(errno));
    }
    for (size_t at = 0; at < names.size();) {
      const std::string attribute = names.c_str() + at;
      at += attribute.size() + 1;
      if (attribute.starts_with("user.")) CopyAttribute(attribute);
    }
  }

  void CopyAttribute(const std::string& attribute) {
    int error = 0;
    const auto value = ReadAttribute(attribute.c_str(), error);
    if (value && Calls().setAttribute(file_.Handle(), attribute.c_str(), value->data(),
                                      value->size()) == 0) {
      return;
    }
    if (value) error = errno;
    if (error == 0) return;
    Warn("the extended attribute " + attribute + " cannot be kept: " + ReasonOf(error));
  }

  /// Returns nothing with error 0 if there is no such attribute.
  std::optional<std::vector<uint8_t>> ReadAttribute(const char* attribute, int& error) const {
    std::vector<uint8_t> value;
    ssize_t size = Calls().getAttribute(old_.Handle(), attribute, nullptr, 0);
    if (size > 0) {
      value.resize(static_cast<size_t>(size));
      size = Calls().getAttribute(old_.Handle(), attribute, value.data(), value.size());
    }
    if (size < 0) {
      error = errno == ENODATA || MeansUnsupported(errno) ? 0 : errno;
      return std::nullopt;
    }
    value.resize(static_cast<size_t>(size));
    return value;
  }

  // ---- owner and group

  void KeepOwner() {
    const struct stat now = StatusOf(file_);
    if (now.st_uid != before_.st_uid && !ChangeOwner(before_.st_uid, before_.st_gid)) {
      Warn("the file now belongs to the user who saved it, instead of its former owner");
    }
    if (StatusOf(file_).st_gid != before_.st_gid) ChangeOwner(kSame, before_.st_gid);
    const struct stat after = StatusOf(file_);
    isOwnerKept_ = after.st_uid == before_.st_uid;
    group_ = after.st_gid;
    if (!IsGroupKept()) {
      Warn(
          "the group of the file cannot be kept; rights are reduced so that no other user gains "
          "any");
    }
  }

  bool ChangeOwner(uid_t owner, gid_t group) const {
    return Calls().changeOwner(file_.Handle(), owner, group) == 0;
  }

  bool IsGroupKept() const { return group_ == before_.st_gid; }

  // ---- mode and list

  std::optional<PosixAcl> ReadAcl() const {
    int error = 0;
    const auto bytes = ReadAttribute(PosixAcl::kAttribute, error);
    if (error != 0) Fail(error);
    if (!bytes) return std::nullopt;
    auto acl = PosixAcl::Parse(*bytes);
    if (!acl) Fail(EINVAL);
    return acl;
  }

  void KeepAcl(PosixAcl acl) {
    if (!IsGroupKept()) acl.NarrowToOtherGroup();
    const std::vector<uint8_t> bytes = acl.Bytes();
    if (Calls().setAttribute(file_.Handle(), PosixAcl::kAttribute, bytes.data(), bytes.size()) ==
        0) {
      return SetMode(acl.Mode());
    }
    Warn("the access control list cannot be kept (" + ReasonOf(errno) +
         "); rights are reduced so that no other user gains any");
    SetModeWithoutAcl(acl.ModeWithoutList());
  }

  void KeepMode() {
    const mode_t mode = before_.st_mode & kRights;
    SetModeWithoutAcl(IsGroupKept() ? mode : NarrowedToOtherGroup(mode));
  }

  /// The folder may have given the file a list, which would reach other people than the mode says.
  void SetModeWithoutAcl(mode_t mode) {
    const bool isRemoved = Calls().removeAttribute(file_.Handle(), PosixAcl::kAttribute) == 0 ||
                           errno == ENODATA || MeansUnsupported(errno);
    if (isRemoved) return SetMode(mode);
    // In a file with a list these bits limit all of its entries.
    Warn("the access control list of the folder cannot be removed (" + ReasonOf(errno) +
         "); only the owner and others keep their rights");
    SetMode(mode & ~kGroupRights);
  }

  void SetMode(mode_t rights) {
    // Programs with these bits run with the rights of the owner or of the group.
    mode_t special = before_.st_mode & S_ISVTX;
    if (isOwnerKept_) special |= before_.st_mode & S_ISUID;
    if (IsGroupKept()) special |= before_.st_mode & S_ISGID;
    const mode_t wanted = rights | special;
    if ((StatusOf(file_).st_mode & ~static_cast<mode_t>(S_IFMT)) == wanted) return;
    if (Calls().changeMode(file_.Handle(), wanted) == 0) return;
    const int error = errno;
    const mode_t actual = StatusOf(file_).st_mode & ~static_cast<mode_t>(S_IFMT);
    const mode_t tooMuch = actual & ~wanted & ~static_cast<mode_t>(S_IRWXU);
    if (tooMuch != 0) Fail(error);
    Warn("the mode of the file cannot be kept: " + ReasonOf(error));
  }

  static constexpr uid_t kSame = static_cast<uid_t>(-1);

  const SystemFile& old_;
  const SystemFile& file_;
  const std::string& name_;
  const struct stat before_;
  bool isOwnerKept_ = true;
  gid_t group_ = 0;
  std::vector<std::string> warnings_;
};

}  // namespace

std::vector<std::string> KeepRights(const SystemFile& old, const SystemFile& file,
                                    const std::string& name) {
  return Keeper(old, file, name).Keep();
}

}  // namespace rasterkit::detail
