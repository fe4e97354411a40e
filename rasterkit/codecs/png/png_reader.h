#pragma once

#include <cstdint>
#include <cstring>
#include <new>
#include <span>

#include <rasterkit/codecs/png/png_errors.h>

namespace rasterkit::detail {

/// A libpng decoder for bytes in memory; the destructor destroys it.
class PngReader {
 public:
  explicit PngReader(std::span<const uint8_t> bytes) : bytes_(bytes) {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &errors_, PngErrors::OnFatal,
                                  PngErrors::OnWarning);
    if (png_) info_ = png_create_info_struct(png_);
    if (!info_) {
      png_destroy_read_struct(&png_, nullptr, nullptr);
      throw std::bad_alloc();
    }
    png_set_read_fn(png_, this, OnRead);
  }
  ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;

  png_structp Png() const { return png_; }
  png_infop Info() const { return info_; }
  const PngErrors& Errors() const { return errors_; }
  /// True if the library needed more bytes than there are.
  bool RanDry() const { return ranDry_; }
  /// Remembers that the data of the rows ended early.
  void NoteEndOfRows() { rowsEnded_ = true; }
  bool RowsEnded() const { return rowsEnded_; }

  /// Calls libpng in `body`; false if it failed, after which only queries are allowed.
  template <class Body>
  bool Try(const Body& body) {
    return RunPng(errors_, body);
  }
  /// The same, but throws.
  template <class Body>
  void Run(const Body& body) {
    if (!RunPng(errors_, body)) errors_.Throw();
  }

 private:
  static void OnRead(png_structp png, png_bytep target, size_t count) {
    auto& reader = *static_cast<PngReader*>(png_get_io_ptr(png));
    if (reader.bytes_.size() - reader.position_ < count) {
      reader.ranDry_ = true;
      png_error(png, "unexpected end of the file");
    }
    std::memcpy(target, reader.bytes_.data() + reader.position_, count);
    reader.position_ += count;
  }

  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
  bool ranDry_ = false, rowsEnded_ = false;
  PngErrors errors_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

}  // namespace rasterkit::detail
