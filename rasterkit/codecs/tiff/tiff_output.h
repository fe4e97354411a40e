#pragma once

#include <cstdint>
#include <exception>
#include <span>
#include <string>

#include <rasterkit/codecs/tiff/tiff_handle.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A libtiff handle that writes one picture from the stream's position on. It prints nothing, and
/// the destructor closes it; only `Finish` makes the file complete.
class TiffOutput {
 public:
  /// Writes the header. The stream must outlive the handle.
  TiffOutput(TStream& stream, bool isBig);
  ~TiffOutput();
  TiffOutput(const TiffOutput&) = delete;
  TiffOutput& operator=(const TiffOutput&) = delete;

  TIFF* Tiff() const { return tiff_; }

  /// Sets a tag; the values must have the type of the tag (see TIFFSetField).
  template <typename... Values>
  void Set(uint32_t tag, Values... values) {
    Require(TIFFSetField(tiff_, tag, values...) == 1);
  }

  /// Compresses the rows of a strip and writes them; does not change them.
  void WriteStrip(uint32_t strip, std::span<const uint8_t> rows);
  /// Writes the compressed bytes of a strip.
  void WritePacked(uint32_t strip, std::span<const uint8_t> bytes);
  /// Writes the directory; the stream is then at the end of the file.
  void Finish();

 private:
  static tmsize_t OnRead(thandle_t self, void* target, tmsize_t count);
  static tmsize_t OnWrite(thandle_t self, void* bytes, tmsize_t count);
  static toff_t OnSeek(thandle_t self, toff_t offset, int origin);
  static toff_t OnSize(thandle_t self);
  static int OnClose(thandle_t self);

  bool Write(std::span<const uint8_t> bytes) noexcept;
  /// Throws the error of the stream, else that of the library.
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
