#include <algorithm>
#include <climits>
#include <system_error>

#include <fcntl.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {
namespace {

/// Drops `count` bytes from the front of `pieces`.
void DropFront(std::span<iovec>& pieces, size_t count) {
  while (!pieces.empty() && count >= pieces.front().iov_len) {
    count -= pieces.front().iov_len;
    pieces = pieces.subspan(1);
  }
  if (pieces.empty()) return;
  pieces.front().iov_base = static_cast<char*>(pieces.front().iov_base) + count;
  pieces.front().iov_len -= count;
}

ssize_t ReadSome(int handle, std::span<iovec> pieces, int64_t position) {
  const int count = static_cast<int>(std::min<size_t>(pieces.size(), IOV_MAX));
  return Uninterrupted([&] {
    return position < 0 ? Calls().readPieces(handle, pieces.data(), count)
                        : Calls().readPiecesAt(handle, pieces.data(), count, position);
  });
}

ssize_t WriteSome(int handle, std::span<const uint8_t> bytes, int64_t position) {
  return Uninterrupted([&] {
    return position < 0 ? Calls().write(handle, bytes.data(), bytes.size())
                        : Calls().writeAt(handle, bytes.data(), bytes.size(), position);
  });
}

}  // namespace

void ThrowSystemError(const std::string& action, int error, const std::string& file) {
  throw FileError(action + ": " + std::generic_category().message(error), file);
}

int SystemFile::Close() {
  if (handle_ < 0) return 0;
  // The handle is gone even when a signal interrupts the call.
  const int result = Calls().close(std::exchange(handle_, -1));
  return result == 0 || errno == EINTR ? 0 : errno;
}

SystemFile OpenAt(int folder, const std::string& name, int flags, mode_t mode) {
  if (name.find('\0') != std::string::npos) {
    errno = EINVAL;
    return {};
  }
  return SystemFile(
      Uninterrupted([&] { return Calls().openAt(folder, name.c_str(), flags | O_CLOEXEC, mode); }));
}

size_t ReadPieces(const SystemFile& file, std::span<iovec> pieces, int64_t position,
                  const std::string& name) {
  size_t total = 0;
  DropFront(pieces, 0);
  while (!pieces.empty()) {
    const ssize_t count = ReadSome(file.Handle(), pieces, position);
    if (count < 0) ThrowSystemError("cannot be read", errno, name);
    if (count == 0) break;
    total += static_cast<size_t>(count);
    if (position >= 0) position += count;
    DropFront(pieces, static_cast<size_t>(count));
  }
  return total;
}

void WriteAll(const SystemFile& file, std::span<const uint8_t> bytes, int64_t position,
              const std::string& name) {
  while (!bytes.empty()) {
    const ssize_t count = WriteSome(file.Handle(), bytes, position);
    if (count < 0) ThrowSystemError("cannot be written", errno, name);
    if (position >= 0) position += count;
    bytes = bytes.subspan(static_cast<size_t>(count));
  }
}

}  // namespace rasterkit::detail
