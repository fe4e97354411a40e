#include <exception>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/host/graphics/jpeg_image.h>
#include <rasterkit/host/graphics/png_image.h>
#include <rasterkit/host/runtime/file_name.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {
namespace {

std::unique_ptr<TGraphic> MakeTarget(int type) {
  switch (type) {
    case gtJpg:
      return std::make_unique<TJPEGImage>();
    case gtPng:
      return std::make_unique<TPngImage>();
    default:
      return std::make_unique<TBitmap>();
  }
}

}  // namespace

std::unique_ptr<TGraphic> LoadViaWic(const std::string& fileName) {
  TWICBitmap decoded;
  try {
    decoded.LoadFromFile(fileName);
  } catch (const std::exception&) {
    return nullptr;
  }
  std::unique_ptr<TGraphic> graphic = MakeTarget(GetGraphicsType(ExtractFileExt(fileName)));
  graphic->Assign(&decoded);
  return graphic;
}

}  // namespace rasterkit
