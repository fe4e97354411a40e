#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <vector>

#include <rasterkit/codecs/png/png_errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A libpng decoder for a stream, from its position on; the destructor destroys it. The stream may
/// be read elsewhere between two calls.
class PngReader {
 public:
  explicit PngReader(TStream& stream) : stream_(stream), position_(stream.Position()) {
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

  /// Calls libpng in `body`; false if it failed, after which only queries are allowed. Throws the
  /// error of the stream.
  template <class Body>
  bool Try(const Body& body) {
    const bool isDone = RunPng(errors_, body);
    if (streamError_) std::rethrow_exception(streamError_);
    return isDone;
  }
  /// The same, but throws.
  template <class Body>
  void Run(const Body& body) {
    if (!Try(body)) errors_.Throw();
  }

 private:
  static void OnRead(png_structp png, png_bytep target, size_t count);
  /// No exception may pass through the library: it is kept, and the library is made to fail.
  bool Read(uint8_t* target, size_t count) noexcept;
  size_t Take(uint8_t* target, size_t count);

  TStream& stream_;
  /// Of the next byte that comes from the stream.
  uint64_t position_;
  /// Bytes that the stream gave ahead, and how many of them are used.
  std::vector<uint8_t> ahead_;
  size_t used_ = 0;
  bool ranDry_ = false, rowsEnded_ = false;
  std::exception_ptr streamError_;
  PngErrors errors_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

}  // namespace rasterkit::detail
