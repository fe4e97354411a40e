#pragma once

#include <memory>
#include <string>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// A file that is written as a whole or not at all. Bytes go to a temporary file beside the target;
/// `Commit` renames it to the target. Without `Commit` (an exception, an early return) the target
/// stays unchanged and the temporary file is deleted. Mode bits of an existing target are kept. If
/// the target is a symbolic link, the file it points to is replaced. A target that is not a regular
/// file (a pipe, a device) is written directly.
class RASTERKIT_EXPORT AtomicFile : public TStream {
 public:
  /// Throws FileError if the folder does not exist or cannot be written.
  explicit AtomicFile(const std::string& fileName);
  ~AtomicFile() override;

  size_t Read(std::span<uint8_t> target) override;
  void Write(std::span<const uint8_t> source) override;
  uint64_t Position() const override;
  void SetPosition(uint64_t position) override;
  uint64_t Size() const override;

  /// Flushes, checks that every byte was written, and renames to the target. Throws FileError.
  void Commit();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit
