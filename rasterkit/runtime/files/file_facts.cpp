#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/file_facts.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/save_target.h>

namespace rasterkit {

FileFacts FactsOfFile(const std::string& fileName) {
  struct stat status {};
  const bool isName = fileName.find('\0') == std::string::npos;
  if (!isName || detail::Calls().statusAt(AT_FDCWD, fileName.c_str(), &status, 0) != 0) return {};
  constexpr int64_t kNanoseconds = 1'000'000'000;
  return {true, status.st_dev, status.st_ino, static_cast<uint64_t>(status.st_size),
          int64_t{status.st_mtim.tv_sec} * kNanoseconds + status.st_mtim.tv_nsec};
}

void RequireSavable(const std::string& fileName) {
  const detail::SaveTarget target = detail::FindTarget(fileName);
  if (target.kind == detail::SaveTarget::Kind::straight) {
    if (detail::Calls().accessAt(target.folder.Handle(), target.name.c_str(), W_OK) == 0) return;
    detail::ThrowSystemError("cannot be written", errno, fileName);
  }
  // The file that a save begins with, which vanishes again.
  AtomicFileOptions options;
  options.syncs = false;
  const AtomicFile probe(fileName, options);
}

std::string FullName(const std::string& fileName) {
  std::error_code error;
  const std::filesystem::path full = std::filesystem::absolute(ToPath(fileName), error);
  return error ? fileName : full.lexically_normal().string();
}

}  // namespace rasterkit
