#pragma once

#include <cstdint>
#include <exception>
#include <span>
#include <string>

#include <rasterkit/codecs/tiff/tiff_handle.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A libtiff handle that writes one picture from the stream's position on, whatever lies there. It
/// prints nothing and is closed on every way out; only `Finish` makes a file of what was written.
class TiffOutput {
 public:
  /// Writes the header. The stream must outlive the handle.
  TiffOutput(TStream& stream, bool isBig);
  ~TiffOutput();
  TiffOutput(const TiffOutput&) = delete;
  TiffOutput& operator=(const TiffOutput&) = delete;

  TIFF* Tiff() const { return tiff_; }

  /// The values as the tag's type wants them; see TIFFSetField.
  template <typename... Values>
  void Set(uint32_t tag, Values... values) {
    Require(TIFFSetField(tiff_, tag, values...) == 1);
  }

  /// Packs the rows of a strip and writes them. They stay as they are.
  void WriteStrip(uint32_t strip, std::span<const uint8_t> rows);
  /// Writes a strip's bytes as they are.
  void WritePacked(uint32_t strip, std::span<const uint8_t> bytes);
  /// Writes the directory; the stream is then behind the file.
  void Finish();

 private:
  static tmsize_t OnRead(thandle_t self, void* target, tmsize_t count);
  static tmsize_t OnWrite(thandle_t self, void* bytes, tmsize_t count);
  static toff_t OnSeek(thandle_t self, toff_t offset, int origin);
  static toff_t OnSize(thandle_t self);
  static int OnClose(thandle_t self);

  bool Write(std::span<const uint8_t> bytes) noexcept;
  /// Throws what the stream threw, else what the library complained about.
  void Require(bool isDone);

  TStream& stream_;
  const uint64_t start_;
  uint64_t position_ = 0, size_ = 0;
  bool isOpen_ = true;
  std::exception_ptr error_;
  TiffMessages messages_;
  TIFF* tiff_ = nullptr;
};

}  // namespace rasterkit::detail
