#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/codecs/heif/heif_library.h>
#include <rasterkit/metadata/color_profile.h>
#include <rasterkit/raster/pixel_layout.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A message of the library up to the first byte that is not printable ASCII.
std::string PlainText(std::string_view message);

/// Throws the error of a call for a failed one: LimitError for sizes and memory, UnsupportedError
/// for what the library lacks, else FormatError.
void RequireHeif(const heif_error& error);

/// An open HEIF file and its main picture.
class HeifFile {
 public:
  /// Reads the rest of the stream. Throws FormatError if it has no picture.
  explicit HeifFile(TStream& stream);
  HeifFile(const HeifFile&) = delete;
  HeifFile& operator=(const HeifFile&) = delete;

  const HeifLibrary& Library() const { return library_; }
  const heif_context* Context() const { return context_.get(); }
  const heif_image_handle* Picture() const { return picture_.get(); }
  /// Upright: turned, mirrored and cut as the file says.
  int Width() const { return width_; }
  int Height() const { return height_; }
  /// RGB, with alpha last. Grays are stored as colors.
  PixelLayout Layout() const;
  uint64_t Bytes() const { return bytes_.size(); }

 private:
  ColorProfile Profile() const;

  struct ContextEnd {
    void operator()(heif_context* context) const { OpenedHeifLibrary().context_free(context); }
  };
  struct HandleEnd {
    void operator()(heif_image_handle* handle) const {
      OpenedHeifLibrary().image_handle_release(handle);
    }
  };

  const HeifLibrary& library_;
  /// The context refers to them.
  std::vector<uint8_t> bytes_;
  std::unique_ptr<heif_context, ContextEnd> context_;
  std::unique_ptr<heif_image_handle, HandleEnd> picture_;
  int width_ = 0, height_ = 0;
};

}  // namespace rasterkit::detail
