#pragma once

#include <memory>
#include <string>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// A file that comes into being whole or not at all: bytes go to a file beside the target, which
/// `Commit` renames over it. Without `Commit` (an exception on the way, an early return) the target
/// stays as it was and nothing is left behind. Mode bits of an existing target are kept, a symbolic
/// link keeps pointing (its target is replaced), and a target that is no regular file (a pipe, a
/// device) is written straight.
class RASTERKIT_EXPORT AtomicFile : public TStream {
 public:
  /// Throws FileError when the folder does not exist or cannot be written.
  explicit AtomicFile(const std::string& fileName);
  ~AtomicFile() override;

  size_t Read(std::span<uint8_t> target) override;
  void Write(std::span<const uint8_t> source) override;
  uint64_t Position() const override;
  void SetPosition(uint64_t position) override;
  uint64_t Size() const override;

  /// Flushes, checks that every byte was taken, and renames over the target. Throws FileError.
  void Commit();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit
