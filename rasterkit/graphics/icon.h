#pragma once

#include <memory>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A Windows icon: one 32-bit picture with a defined alpha channel, which is blended when it is
/// drawn. Loading takes the largest picture of an icon file, the deepest among equals.
///
/// Like every picture with an alpha channel it is `Transparent` with white, for those who take the
/// colors without it.
class RASTERKIT_EXPORT TIcon : public TGraphic {
 public:
  TIcon();
  ~TIcon() override;
  TIcon(TIcon&&) noexcept;
  TIcon& operator=(TIcon&&) noexcept;

  /// An icon of a color bitmap and a mask; see `SetColorAndMask`.
  static std::unique_ptr<TIcon> FromColorAndMask(const TBitmap& color, const TBitmap& mask);

  /// Replaces the content. The alpha of a 32-bit color bitmap counts, whatever its alpha mark
  /// says, when any of it is not 0; else the mask, as a 1-bit bitmap, says what is transparent: its
  /// ones. Both bitmaps stay with the caller. Throws
  /// RangeError, and keeps the icon as it was, when they are empty or differ in size.
  void SetColorAndMask(const TBitmap& color, const TBitmap& mask);

  int Width() const override { return color_.Width(); }
  int Height() const override { return color_.Height(); }
  const Raster* Rows() const override { return &color_.Content(); }

  /// The colors with their alpha, 32-bit.
  const TBitmap& ColorBitmap() const { return color_; }
  /// The mask that belongs to the colors, 1-bit: ones where the alpha is 0.
  std::unique_ptr<TBitmap> MaskBitmap() const;

  void LoadFromStream(TStream& stream) override;
  /// Writes an icon file with the picture, 32-bit, and its mask. Throws FormatError for an empty
  /// icon and LimitError beyond 256 x 256 pixels.
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

 protected:
  /// Any picture becomes an icon of its size: transparent where its defined alpha or its
  /// transparent color says so.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  void Take(Raster raster);

  TBitmap color_;
};

}  // namespace rasterkit
