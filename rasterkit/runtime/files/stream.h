#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A sequence of bytes with a position. System errors are thrown as FileError.
class RASTERKIT_EXPORT TStream {
 public:
  virtual ~TStream() = default;
  TStream(const TStream&) = delete;
  TStream& operator=(const TStream&) = delete;

  /// Reads up to `target.size()` bytes at the position and advances it. Returns the number of bytes
  /// read, 0 at the end.
  virtual size_t Read(std::span<uint8_t> target) = 0;
  /// Fills the pieces one after another as one read; returns the total number of bytes read.
  virtual size_t ReadScattered(std::span<const std::span<uint8_t>> pieces);
  /// Writes all of `source` at the position and advances it. Throws if not everything could be
  /// written.
  virtual void Write(std::span<const uint8_t> source) = 0;

  virtual uint64_t Position() const = 0;
  virtual void SetPosition(uint64_t position) = 0;
  virtual uint64_t Size() const = 0;

  /// Same as Read, but throws FormatError("unexpected end of data") if there are fewer bytes.
  void ReadExactly(std::span<uint8_t> target);
  /// Reads all bytes from the position to the end. Throws LimitError if they exceed the picture
  /// memory limit.
  std::vector<uint8_t> ReadToEnd();

 protected:
  TStream() = default;
};

/// A stream over bytes in memory that it owns and grows as needed.
class RASTERKIT_EXPORT TMemoryStream : public TStream {
 public:
  TMemoryStream() = default;
  /// Takes ownership of `bytes`; the position is 0.
  explicit TMemoryStream(std::vector<uint8_t> bytes);

  size_t Read(std::span<uint8_t> target) override;
  void Write(std::span<const uint8_t> source) override;
  uint64_t Position() const override { return position_; }
  void SetPosition(uint64_t position) override { position_ = position; }
  uint64_t Size() const override { return bytes_.size(); }

  void Clear();
  std::span<const uint8_t> Bytes() const { return bytes_; }
  std::vector<uint8_t> TakeBytes();

  /// Replaces the content by the file's bytes and sets the position to 0.
  void LoadFromFile(const std::string& fileName);
  /// Writes the whole content atomically (see AtomicFile).
  void SaveToFile(const std::string& fileName) const;
  /// Replaces the content by all bytes of `source` from its beginning and sets the position to 0.
  void LoadFromStream(TStream& source);

 private:
  std::vector<uint8_t> bytes_;
  uint64_t position_ = 0;
};

/// A read-only view of bytes that the caller keeps alive.
class RASTERKIT_EXPORT TSpanStream : public TStream {
 public:
  explicit TSpanStream(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  size_t Read(std::span<uint8_t> target) override;
  /// Always throws: the bytes are borrowed.
  void Write(std::span<const uint8_t> source) override;
  uint64_t Position() const override { return position_; }
  void SetPosition(uint64_t position) override { position_ = position; }
  uint64_t Size() const override { return bytes_.size(); }
  std::span<const uint8_t> Bytes() const { return bytes_; }

 private:
  std::span<const uint8_t> bytes_;
  uint64_t position_ = 0;
};

/// A file opened for reading. Other processes may read it too; on systems with file locks they
/// cannot write to it. The constructor throws FileError for a folder, a missing or an unreadable
/// file.
class RASTERKIT_EXPORT TFileStream : public TStream {
 public:
  explicit TFileStream(const std::string& fileName);
  ~TFileStream() override;

  size_t Read(std::span<uint8_t> target) override;
  size_t ReadScattered(std::span<const std::span<uint8_t>> pieces) override;
  /// Always throws: files are written with AtomicFile.
  void Write(std::span<const uint8_t> source) override;
  uint64_t Position() const override;
  void SetPosition(uint64_t position) override;
  /// Returns the size at opening in bytes; 0 for pipes and devices, which are read sequentially.
  uint64_t Size() const override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit
