#pragma once

#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_plan.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// Rows of a picture as an encoder takes them.
class JpegRows {
 public:
  /// For pixels of the kind of `like` and a picture of that size. Throws UnsupportedError for
  /// pixels that a JPEG file cannot hold, FormatError for an empty picture, LimitError for a width
  /// or height above 65,500 pixels.
  JpegRows(const Pixels& like, int width, int height);

  int Width() const { return width_; }
  int Height() const { return height_; }
  JpegColors Colors() const { return colors_; }
  /// True if the colors of a pixel stand in the order B G R.
  bool IsBgr() const { return isBgr_; }
  /// A row of `pixels`; valid until the next `kKept` calls if it is converted. Inks are inverted on
  /// request.
  const uint8_t* Row(const Pixels& pixels, int y, bool inverted);

  /// Rows that stay valid at the same time.
  static constexpr int kKept = 16;

 private:
  int width_, height_;
  JpegColors colors_ = JpegColors::gray;
  bool isBgr_ = false;
  std::vector<uint8_t> converted_[kKept];
};

}  // namespace rasterkit::detail
