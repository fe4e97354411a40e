#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

void ChangeDepth(TBitmap& bitmap, int bits) {
  switch (bits) {
    case 1:
      bitmap.SetPixelFormat(pf1bit);
      break;
    case 8:
      bitmap.SetPixelFormat(pf8bit);
      break;
    case 24:
      bitmap.SetPixelFormat(pf24bit);
      break;
    default:
      break;
  }
}

void SetQuality(TGraphic& graphic, int quality) {
  auto& jpeg = dynamic_cast<TJPEGImage&>(graphic);
  jpeg.SetCompressionQuality(static_cast<uint8_t>(quality));
  if (quality < 100) jpeg.Compress();
}

/// A transparent PNG shows the bitmap's background where it is transparent.
void DrawTransparentPng(const TPngImage& png, TBitmap& bitmap) {
  bitmap.SetPixelFormat(pf24bit);
  bitmap.SetSize(png.Width(), png.Height());
  bitmap.Canvas().Draw(0, 0, png);
  bitmap.SetTransparentColor(png.TransparentColor());
  bitmap.SetTransparent(true);
}

}  // namespace

std::unique_ptr<TGraphic> ConvertBitmap(TBitmap& bitmap, int type, int bits, int quality) {
  ChangeDepth(bitmap, bits);
  std::unique_ptr<TGraphic> graphic = CreateGraphicOfType(type);
  if (!graphic) throw UnsupportedError("there is no graphic type " + std::to_string(type));
  graphic->Assign(&bitmap);
  if (type == gtJpg && quality >= 1 && quality <= 100) SetQuality(*graphic, quality);
  return graphic;
}

std::unique_ptr<TBitmap> GraphicIntoBitmap(const TGraphic* graphic) {
  constexpr int kBlankSide = 10;
  auto bitmap = std::make_unique<TBitmap>();
  bitmap->SetSize(kBlankSide, kBlankSide);
  const auto* png = dynamic_cast<const TPngImage*>(graphic);
  if (png != nullptr && png->Transparent()) {
    DrawTransparentPng(*png, *bitmap);
  } else if (graphic != nullptr) {
    bitmap->Assign(graphic);
  }
  return bitmap;
}

}  // namespace rasterkit
