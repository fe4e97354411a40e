#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/png_image.h>

namespace rasterkit::detail {
namespace {

RGBArec* PixelRow(TBitmap& bitmap, int y) {
  return reinterpret_cast<RGBArec*>(bitmap.ScanLine(y));
}

TColor ColorOf(const RGBArec& pixel) {
  return RGB(pixel.r, pixel.g, pixel.b);
}

void ForgetTransparency(TBitmap& bitmap) {
  bitmap.SetTransparent(false);
  bitmap.SetAlphaFormat(afIgnored);
}

/// Converts to 24-bit first: the fourth byte of a 32-bit picture without an alpha channel is
/// undefined.
void MakeOpaqueAlpha(TBitmap& bitmap) {
  ForgetTransparency(bitmap);
  if (bitmap.PixelFormat() == pf32bit) bitmap.SetPixelFormat(pf24bit);
  bitmap.SetPixelFormat(pf32bit);
  bitmap.SetAlphaFormat(afDefined);
}

void ClearPixels(TBitmap& bitmap, TColor color) {
  for (int y = 0; y < bitmap.Height(); ++y) {
    RGBArec* const row = PixelRow(bitmap, y);
    for (int x = 0; x < bitmap.Width(); ++x) {
      if (ColorOf(row[x]) == color) row[x].a = 0;
    }
  }
}

}  // namespace

bool HasAlpha(const TBitmap& bitmap) {
  return bitmap.PixelFormat() == pf32bit && bitmap.AlphaFormat() == afDefined;
}

bool HasTransparency(const TBitmap& bitmap) {
  return HasAlpha(bitmap) || bitmap.Transparent();
}

void DropTransparency(std::unique_ptr<TBitmap>& bitmap, TColor background) {
  TPngImage picture;
  picture.Assign(bitmap.get());
  auto target = std::make_unique<TBitmap>();
  target->ResetPixels(pf24bit, picture.Width(), picture.Height());
  target->CarryFrom(
      *bitmap, {.palette = false, .alphaFormat = false, .transparency = CarriedTransparency::none});
  bitmap.reset();
  target->Canvas().Brush.Color = background;
  target->Canvas().FillRect({0, 0, target->Width(), target->Height()});
  target->Canvas().Draw(0, 0, picture);
  bitmap = std::move(target);
}

void MarkTransparent(TBitmap& bitmap, TColor color) {
  if (!HasTransparency(bitmap)) {
    bitmap.SetTransparent(true);
    bitmap.SetTransparentColor(color);
    return;
  }
  KeyToAlpha(bitmap);
  ClearPixels(bitmap, color);
}

void KeyToAlpha(TBitmap& bitmap) {
  if (HasAlpha(bitmap) || !bitmap.Transparent()) return;
  const TColor key = bitmap.TransparentColor();
  MakeOpaqueAlpha(bitmap);
  ClearPixels(bitmap, key);
}

void MakeAlphaChannel(TBitmap& bitmap) {
  KeyToAlpha(bitmap);
  if (!HasAlpha(bitmap)) MakeOpaqueAlpha(bitmap);
}

AlphaPlane::AlphaPlane(TBitmap& bitmap) {
  if (!HasTransparency(bitmap)) return;
  KeyToAlpha(bitmap);
  width_ = bitmap.Width();
  alphas_.reserve(static_cast<size_t>(width_) * static_cast<size_t>(bitmap.Height()));
  for (int y = 0; y < bitmap.Height(); ++y) {
    const RGBArec* const row = PixelRow(bitmap, y);
    for (int x = 0; x < width_; ++x) alphas_.push_back(row[x].a);
  }
  ForgetTransparency(bitmap);
  bitmap.SetPixelFormat(pf24bit);
}

void AlphaPlane::Restore(TBitmap& bitmap) const {
  if (alphas_.empty()) return;
  bitmap.SetPixelFormat(pf32bit);
  const uint8_t* alpha = alphas_.data();
  for (int y = 0; y < bitmap.Height(); ++y, alpha += width_) {
    RGBArec* const row = PixelRow(bitmap, y);
    for (int x = 0; x < width_; ++x) row[x].a = alpha[x];
  }
  bitmap.SetAlphaFormat(afDefined);
}

}  // namespace rasterkit::detail
