#include <utility>

#include <rasterkit/host/codecs/png_decoder.h>
#include <rasterkit/host/codecs/png_encoder.h>
#include <rasterkit/host/graphics/draw_picture.h>
#include <rasterkit/host/graphics/png_image.h>
#include <rasterkit/host/graphics/system_color.h>
#include <rasterkit/host/runtime/errors.h>

namespace rasterkit {
namespace {

bool DefinesAlpha(const TBitmap& bitmap) {
  return bitmap.PixelFormat() == pf32bit && bitmap.AlphaFormat() == afDefined;
}

}  // namespace

TPngImage::TPngImage() = default;
TPngImage::~TPngImage() = default;

int TPngImage::Width() const {
  return bitmap_.Width();
}
int TPngImage::Height() const {
  return bitmap_.Height();
}

bool TPngImage::HasAlpha() const {
  return DefinesAlpha(bitmap_);
}

void TPngImage::LoadFromStream(TStream& stream) {
  bitmap_ = TBitmap(DecodePng(stream.ReadToEnd()));
  AssignTransparency(bitmap_);
  modified_ = false;
}

void TPngImage::SaveToStream(TStream& stream) {
  if (Empty()) throw FormatError("PNG: there is no picture to save");
  Raster& rows = bitmap_.raster_;
  rows.transparentColor.reset();
  if (Transparent() && !HasAlpha()) rows.transparentColor = ResolveColor(TransparentColor());
  EncodePng(rows, stream);
}

void TPngImage::DrawTo(TCanvas& canvas, int left, int top, int width, int height) const {
  detail::DrawPicture(*this, bitmap_.Content(), canvas, {left, top, left + width, top + height});
}

void TPngImage::AssignToBitmap(TBitmap& target) const {
  bitmap_.AssignToBitmap(target);
  target.raster_.transparentColor.reset();
  target.AssignTransparency(*this);
}

void TPngImage::AssignFrom(const TGraphic& source) {
  TBitmap picture;
  source.AssignToBitmap(picture);
  if (!IsIndexed(picture.Content().Format()) && !DefinesAlpha(picture))
    picture.SetPixelFormat(pf24bit);
  bitmap_ = std::move(picture);
}

void TPngImage::Clear() {
  bitmap_ = TBitmap();
}

TColor TPngImage::AutomaticTransparentColor() const {
  return bitmap_.PixelColor(0, Height() - 1);
}

}  // namespace rasterkit
