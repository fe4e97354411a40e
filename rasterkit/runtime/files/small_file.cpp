#include <cerrno>

#include <fcntl.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/small_file.h>
#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {

bool IsRegularFile(const std::string& fileName) {
  struct stat status {};
  return fileName.find('\0') == std::string::npos &&
         Calls().statusAt(AT_FDCWD, fileName.c_str(), &status, 0) == 0 && S_ISREG(status.st_mode);
}

std::optional<SmallFile> ReadSmallFile(const std::string& fileName, size_t most) {
  // A device may act when it is opened, so the kind is asked before; a pipe that takes the name in
  // between does not block.
  if (!IsRegularFile(fileName)) return std::nullopt;
  const SystemFile file = OpenAt(AT_FDCWD, fileName, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file.IsOpen() && errno == ENOENT) return std::nullopt;
  struct stat status {};
  if (!file.IsOpen() || Calls().status(file.Handle(), &status) != 0) {
    ThrowSystemError("cannot be opened", errno, fileName);
  }
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  SmallFile result;
  const auto size = static_cast<uint64_t>(status.st_size);
  result.isCut = size > most;
  result.bytes.resize(result.isCut ? most : static_cast<size_t>(size));
  iovec piece{result.bytes.data(), result.bytes.size()};
  result.bytes.resize(ReadPieces(file, {&piece, 1}, 0, fileName));
  return result;
}

}  // namespace rasterkit::detail
