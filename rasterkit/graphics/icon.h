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

  /// Makes an icon from a color bitmap and a mask; see `SetColorAndMask`.
  static std::unique_ptr<TIcon> FromColorAndMask(const TBitmap& color, const TBitmap& mask);

  /// Replaces the content. The alpha of a 32-bit color bitmap is used, regardless of its alpha
  /// mark, if any of it is not 0. Else the mask, converted to 1 bit, is used: ones are transparent.
  /// Throws RangeError, with the icon unchanged, if the bitmaps are empty or differ in size.
  void SetColorAndMask(const TBitmap& color, const TBitmap& mask);

  int Width() const override { return color_.Width(); }
  int Height() const override { return color_.Height(); }
  const Raster* Rows() const override { return &color_.Content(); }

  /// 32-bit bitmap of the colors with their alpha.
  const TBitmap& ColorBitmap() const { return color_; }
  /// 1-bit mask of the colors: ones where alpha is 0.
  std::unique_ptr<TBitmap> MaskBitmap() const;

  void LoadFromStream(TStream& stream) override;
  /// Writes an icon file with the picture, 32-bit, and its mask. Throws FormatError for an empty
  /// icon and LimitError beyond 256 x 256 pixels.
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

 protected:
  /// Makes an icon of any picture, in its size. Its defined alpha, else its transparent color,
  /// becomes the transparency.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  void Take(Raster raster);

  TBitmap color_;
};

}  // namespace rasterkit
