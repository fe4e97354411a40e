#pragma once

#include <cstdint>
#include <span>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit {

/// A file for data that does not fit into memory. It has no name, no other process can open it, and
/// it is gone with the object or the process, however that ends.
class RASTERKIT_EXPORT ScratchFile {
 public:
  /// Reserves `bytes` of the disk. `folder` in UTF-8; empty: the system's folder for temporary
  /// files. Throws FileError, which names the folder and the need, without room or rights. Checks
  /// the time of the call (see RequireTime).
  ScratchFile(const std::string& folder, uint64_t bytes);
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  uint64_t Bytes() const { return bytes_; }

  /// Several threads may write and read different bytes. Both throw RangeError beyond the reserved
  /// bytes, FileError if the system fails.
  void Write(uint64_t position, std::span<const uint8_t> bytes);
  void Read(uint64_t position, std::span<uint8_t> bytes) const;

 private:
  void Open();
  void Reserve();
  [[noreturn]] void Fail(int error) const;
  void RequireInside(uint64_t position, size_t count) const;

  const std::string folder_;
  const uint64_t bytes_;
  detail::SystemFile file_;
};

/// The system's folder for temporary files, in UTF-8.
RASTERKIT_EXPORT std::string TemporaryFolder();

/// Bytes of all scratch files of the process.
RASTERKIT_EXPORT uint64_t ScratchBytes();

}  // namespace rasterkit
