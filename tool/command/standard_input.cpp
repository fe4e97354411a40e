#include "tool/command/standard_input.h"

#include <cerrno>
#include <mutex>
#include <new>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"

namespace rasterkit::tool {
namespace {

std::string Reason(int error) {
  return std::generic_category().message(error);
}

class StandardInputStream : public TStream {
 public:
  size_t Read(std::span<uint8_t> target) override {
    ssize_t count = 0;
    do {
      count = read(STDIN_FILENO, target.data(), target.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) throw FileError("cannot be read: " + Reason(errno));
    return static_cast<size_t>(count);
  }
  void Write(std::span<const uint8_t>) override {
    throw UnsupportedError("stdin cannot be written");
  }
  uint64_t Position() const override { return 0; }
  void SetPosition(uint64_t) override {
    throw UnsupportedError("stdin cannot be read from another place");
  }
  uint64_t Size() const override { return 0; }
};

/// Writes all bytes to a handle. Returns the error number, 0 on success.
int WriteAllTo(int handle, std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(handle, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    bytes = bytes.subspan(static_cast<size_t>(count));
  }
  return 0;
}

/// A file in memory that no name leads to.
std::string MakeMemoryFile(std::span<const uint8_t> bytes) {
  const int handle = memfd_create("stdin", MFD_CLOEXEC);
  const int error = handle < 0 ? errno : WriteAllTo(handle, bytes);
  if (error != 0) throw Failure(exitInputUnreadable, "-: cannot be kept: " + Reason(error));
  return "/proc/self/fd/" + std::to_string(handle);
}

}  // namespace

bool IsStandardStream(const std::string& file) {
  return file == "-";
}

std::vector<uint8_t> TakeStandardInput() {
  static std::mutex mutex;
  static bool isTaken = false;
  const std::lock_guard lock(mutex);
  if (isTaken) throw Failure(exitInputUnreadable, "-: stdin can be read only once");
  isTaken = true;
  try {
    const InterruptibleWait waiting;
    StandardInputStream stream;
    return ReadUnsizedPicture(stream);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, "-: " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, "-: out of memory");
  }
}

std::string ReadableName(const std::string& file) {
  if (!IsStandardStream(file)) return file;
  static std::mutex mutex;
  static std::string name;
  const std::lock_guard lock(mutex);
  if (name.empty()) name = MakeMemoryFile(TakeStandardInput());
  return name;
}

void WriteStandardOutput(std::span<const uint8_t> bytes) {
  const InterruptibleWait waiting;
  if (const int error = WriteAllTo(STDOUT_FILENO, bytes); error != 0) {
    throw Failure(exitOutputNotWritten, "-: cannot be written to stdout: " + Reason(error));
  }
}

void RequireNoTerminal() {
  if (isatty(STDOUT_FILENO) == 0) return;
  throw Failure(exitWrongUsage,
                "a picture is not written to a terminal; direct stdout to a file or a program");
}

}  // namespace rasterkit::tool
