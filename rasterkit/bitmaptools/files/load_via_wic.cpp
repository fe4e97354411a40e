#include <exception>
#include <utility>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {
namespace {

template <class T>
std::unique_ptr<TGraphic> CopyInto(const TBitmap& decoded) {
  auto graphic = std::make_unique<T>();
  graphic->Assign(&decoded);
  return graphic;
}

/// What a copy would be, without a second set of rows.
std::unique_ptr<TGraphic> MoveIntoBitmap(TBitmap& decoded) {
  auto bitmap = std::make_unique<TBitmap>(std::move(decoded));
  bitmap->SetModified(true);
  return bitmap;
}

}  // namespace

std::unique_ptr<TGraphic> LoadViaWic(const std::string& fileName) {
  TWICBitmap decoded;
  try {
    decoded.LoadFromFile(fileName);
  } catch (const std::exception&) {
    return nullptr;
  }
  switch (GetGraphicsType(ExtractFileExt(fileName))) {
    case gtJpg:
      return CopyInto<TJPEGImage>(decoded);
    case gtPng:
      return CopyInto<TPngImage>(decoded);
    default:
      return MoveIntoBitmap(decoded);
  }
}

}  // namespace rasterkit
