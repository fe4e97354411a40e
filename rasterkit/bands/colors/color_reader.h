#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include <rasterkit/raster/raster.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Reads rows of one kind of raster: their colors, and how opaque each pixel is. Any number of
/// threads may use it.
class ColorReader {
 public:
  /// The rows of `like` have no meaning.
  ColorReader(const Raster& like, int width);

  size_t Width() const { return width_; }
  TPixelFormat Format() const { return format_; }
  /// True if pixels have opacities of their own.
  bool HasAlpha() const { return hasAlpha_; }
  /// True if some pixels may be transparent.
  bool HasOpacity() const { return hasAlpha_ || key_; }

  /// B G R; alpha is dropped.
  void To24(const uint8_t* row, uint8_t* bgr) const;
  /// The same; the row itself if it has 24 bits, else `bgr`.
  const uint8_t* Colors(const uint8_t* row, uint8_t* bgr) const;
  /// 255 where there is no transparency. `bgr` are the row's colors.
  void Opacities(const uint8_t* row, const uint8_t* bgr, uint8_t* opacities) const;
  /// B G R A with these opacities. `scratch` has four bytes for each pixel.
  void To32(const uint8_t* row, uint8_t* bgra, uint8_t* scratch) const;
  /// B G R, drawn onto a background.
  void Painted(const uint8_t* row, TColor background, uint8_t* bgr) const;

 private:
  const TPixelFormat format_;
  const size_t width_;
  const bool hasAlpha_;
  std::optional<TColor> key_;
  PixelTable table_{};
};

/// Sets the alpha of pixels B G R A.
void PutOpacities(const uint8_t* opacities, size_t width, uint8_t* bgra);

/// Makes pixels B G R A of a color transparent.
void ClearColor(TColor color, size_t width, uint8_t* bgra);

}  // namespace rasterkit::detail
