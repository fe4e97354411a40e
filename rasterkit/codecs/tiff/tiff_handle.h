#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tiffio.h>

#include <rasterkit/codecs/tiff/tiff_source.h>

namespace rasterkit::detail {

/// Messages of libtiff for one handle. Bounded: a damaged file can give one for every row.
class TiffMessages {
 public:
  /// The texts since the last call, each once.
  std::vector<std::string> TakeErrors() { return std::exchange(errors_, {}); }
  std::vector<std::string> TakeWarnings() { return std::exchange(warnings_, {}); }

  static int OnError(TIFF* tiff, void* self, const char* module, const char* format,
                     va_list arguments);
  static int OnWarning(TIFF* tiff, void* self, const char* module, const char* format,
                       va_list arguments);

 private:
  std::vector<std::string> errors_, warnings_;
};

/// A libtiff handle for a source, at the first directory of the file. It prints nothing and
/// allocates no block above the picture memory limit; the destructor closes it.
class TiffHandle {
 public:
  /// Throws FormatError with the text of libtiff if the first directory cannot be read, and the
  /// errors of the source. The source must outlive the handle.
  explicit TiffHandle(TiffSource& source);
  ~TiffHandle();
  TiffHandle(const TiffHandle&) = delete;
  TiffHandle& operator=(const TiffHandle&) = delete;

  TIFF* Tiff() const { return tiff_; }
  TiffMessages& Messages() { return messages_; }
  TiffSource& Source() const { return source_; }

  /// The value of the tag, or its default if it is absent; `T` must be the type of the tag.
  template <typename T>
  T Field(uint32_t tag, T otherwise) const {
    T value{};
    return TIFFGetFieldDefaulted(tiff_, tag, &value) ? value : otherwise;
  }

 private:
  static tmsize_t OnRead(thandle_t self, void* target, tmsize_t count);
  static tmsize_t OnWrite(thandle_t self, void* bytes, tmsize_t count);
  static toff_t OnSeek(thandle_t self, toff_t offset, int origin);
  static toff_t OnSize(thandle_t self);
  static int OnClose(thandle_t self);

  TiffSource& source_;
  uint64_t position_ = 0;
  TiffMessages messages_;
  TIFF* tiff_ = nullptr;
};

}  // namespace rasterkit::detail
