#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include <sys/stat.h>
#include <sys/uio.h>

#include <rasterkit/runtime/export.h>

/// The system's file calls, with errors thrown as FileError; internal to rasterkit/runtime.
namespace rasterkit::detail {

/// Throws FileError "ACTION: the system's text of `error`" for `file`.
[[noreturn]] void ThrowSystemError(const std::string& action, int error, const std::string& file);

/// Repeats a call that a signal interrupted.
template <typename Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

/// An open file of the system, closed by the destructor.
class RASTERKIT_EXPORT SystemFile {
 public:
  SystemFile() = default;
  explicit SystemFile(int handle) : handle_(handle) {}
  ~SystemFile() { Close(); }
  SystemFile(SystemFile&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}
  SystemFile& operator=(SystemFile&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  int Handle() const { return handle_; }
  bool IsOpen() const { return handle_ >= 0; }
  /// Returns the system's error number, 0 on success.
  int Close();
  /// Returns the handle, which the caller then closes.
  int Release() { return std::exchange(handle_, -1); }

 private:
  int handle_ = -1;
};

/// Calls `openat` again if a signal interrupts it. On failure the result is not open and `errno`
/// says why. A name with a zero byte is refused, since the system would see only its beginning.
SystemFile OpenAt(int folder, const std::string& name, int flags, mode_t mode = 0);

/// Fills `pieces` (which it changes) from `position`, or from the file's own position if `position`
/// is negative; stops at the end of the file. Returns the number of bytes read.
size_t ReadPieces(const SystemFile& file, std::span<iovec> pieces, int64_t position,
                  const std::string& name);

/// Writes all of `bytes` at `position`, or at the file's own position if `position` is negative.
void WriteAll(const SystemFile& file, std::span<const uint8_t> bytes, int64_t position,
              const std::string& name);

}  // namespace rasterkit::detail
