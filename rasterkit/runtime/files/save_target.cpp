#include <array>
#include <climits>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/save_target.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostLinks = 40;

[[noreturn]] void Fail(int error, const std::string& fileName) {
  ThrowSystemError("cannot be written", error, fileName);
}

/// Opens the folder of `path`, which is relative to `start`, and returns it with the last name.
std::pair<SystemFile, std::string> SplitAndOpen(int start, const std::string& path,
                                                const std::string& fileName) {
  const size_t slash = path.rfind('/');
  const bool hasFolder = slash != std::string::npos;
  const std::string folderName = hasFolder ? path.substr(0, slash + 1) : ".";
  std::string name = hasFolder ? path.substr(slash + 1) : path;
  if (name.empty() || path.find('\0') != std::string::npos) Fail(EINVAL, fileName);
  SystemFile folder = OpenAt(start, folderName, O_PATH | O_DIRECTORY);
  if (!folder.IsOpen()) Fail(errno, fileName);
  return {std::move(folder), std::move(name)};
}

/// In a folder like /tmp anybody can put a link under the name that somebody else will use. The
/// rule is that of the system's protected_symlinks, which not every system has turned on.
void RequireTrustedLink(const SystemFile& folder, const struct stat& link,
                        const std::string& fileName) {
  struct stat place {};
  if (Calls().status(folder.Handle(), &place) != 0) Fail(errno, fileName);
  constexpr mode_t kShared = S_ISVTX | S_IWOTH;
  if ((place.st_mode & kShared) != kShared) return;
  if (link.st_uid != geteuid() && link.st_uid != place.st_uid) Fail(EACCES, fileName);
}

std::string ReadLink(const SystemFile& folder, const std::string& name,
                     const std::string& fileName) {
  std::array<char, PATH_MAX> target;
  const ssize_t size =
      Calls().readLinkAt(folder.Handle(), name.c_str(), target.data(), target.size());
  if (size < 0) Fail(errno, fileName);
  if (static_cast<size_t>(size) == target.size()) Fail(ENAMETOOLONG, fileName);
  return {target.data(), static_cast<size_t>(size)};
}

/// A link like /proc/self/fd/1 leads to an open file. Its text is only a description.
bool IsLinkToHandle(const SystemFile& folder) {
  struct statfs system {};
  return fstatfs(folder.Handle(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

}  // namespace

SaveTarget FindTarget(const std::string& fileName) {
  SaveTarget target;
  target.path = fileName;
  std::tie(target.folder, target.name) = SplitAndOpen(AT_FDCWD, fileName, fileName);
  for (int links = 0;; ++links) {
    if (Calls().statusAt(target.folder.Handle(), target.name.c_str(), &target.status,
                         AT_SYMLINK_NOFOLLOW) != 0) {
      if (errno != ENOENT) Fail(errno, fileName);
      return target;
    }
    if (!S_ISLNK(target.status.st_mode)) break;
    if (IsLinkToHandle(target.folder)) {
      target.kind = SaveTarget::Kind::straight;
      return target;
    }
    if (links == kMostLinks) Fail(ELOOP, fileName);
    RequireTrustedLink(target.folder, target.status, fileName);
    const std::string path = ReadLink(target.folder, target.name, fileName);
    auto [folder, name] = SplitAndOpen(target.folder.Handle(), path, fileName);
    target.folder = std::move(folder);
    target.name = std::move(name);
    target.path =
        path.starts_with('/') ? path : target.path.substr(0, target.path.rfind('/') + 1) + path;
  }
  if (S_ISDIR(target.status.st_mode)) Fail(EISDIR, fileName);
  const bool isRegular = S_ISREG(target.status.st_mode);
  target.kind = isRegular ? SaveTarget::Kind::regular : SaveTarget::Kind::straight;
  return target;
}

}  // namespace rasterkit::detail
