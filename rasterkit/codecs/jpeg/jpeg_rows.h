#pragma once

#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_plan.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// Rows of a picture as an encoder takes them.
class JpegRows {
 public:
  /// Keeps a reference. Throws UnsupportedError for pixels that a JPEG file cannot hold,
  /// FormatError for an empty picture, LimitError for a width or height above 65,500 pixels.
  explicit JpegRows(const Pixels& pixels);

  int Width() const { return WidthOf(pixels_); }
  int Height() const { return HeightOf(pixels_); }
  JpegColors Colors() const { return colors_; }
  /// True if the colors of a pixel stand in the order B G R.
  bool IsBgr() const { return raster_ != nullptr && colors_ == JpegColors::rgb; }
  /// The row; valid until the next `kept` calls if it is converted. Inks are inverted on request.
  const uint8_t* Row(int y, bool inverted);

  /// Rows that stay valid at the same time.
  static constexpr int kKept = 16;

 private:
  const Pixels& pixels_;
  const Raster* raster_ = nullptr;
  const Samples* samples_ = nullptr;
  JpegColors colors_ = JpegColors::gray;
  std::vector<uint8_t> converted_[kKept];
};

}  // namespace rasterkit::detail
