#pragma once

#include <exception>
#include <new>
#include <span>

#include <rasterkit/codecs/png/png_errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A libpng encoder that writes to a stream; the destructor destroys it.
class PngWriter {
 public:
  explicit PngWriter(TStream& stream) : stream_(stream) {
    png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &errors_, PngErrors::OnFatal,
                                   PngErrors::OnWarning);
    if (png_) info_ = png_create_info_struct(png_);
    if (!info_) {
      png_destroy_write_struct(&png_, nullptr);
      throw std::bad_alloc();
    }
    png_set_write_fn(png_, this, OnWrite, [](png_structp) {});
  }
  ~PngWriter() { png_destroy_write_struct(&png_, &info_); }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  png_structp Png() const { return png_; }
  png_infop Info() const { return info_; }

  /// Calls libpng in `body`; throws the error of the stream, else that of the library.
  template <class Body>
  void Run(const Body& body) {
    if (RunPng(errors_, body)) return;
    if (streamError_) std::rethrow_exception(streamError_);
    errors_.Throw();
  }

 private:
  /// No exception may pass through the library: it is kept, and the library is made to fail.
  static void OnWrite(png_structp png, png_bytep bytes, size_t count) {
    auto& writer = *static_cast<PngWriter*>(png_get_io_ptr(png));
    if (!writer.Write(bytes, count)) png_error(png, "the stream takes no more");
  }

  bool Write(const uint8_t* bytes, size_t count) noexcept {
    try {
      stream_.Write(std::span(bytes, count));
      return true;
    } catch (...) {
      streamError_ = std::current_exception();
      return false;
    }
  }

  TStream& stream_;
  std::exception_ptr streamError_;
  PngErrors errors_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

}  // namespace rasterkit::detail
