#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/name_errors.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit {
namespace {

TBitmap Converted(const TBitmap& bitmap, TPixelFormat format) {
  TBitmap copy(ConvertRaster(bitmap.Content(), format));
  copy.AssignTransparency(bitmap);
  return copy;
}

/// SaveToFile of the bitmap would mark it as unmodified.
void SaveAsBmp(const TBitmap& bitmap, const std::string& fileName) {
  AtomicFile file(fileName);
  EncodeBmp(bitmap.Content(), file, BmpProfile::embed);
  file.Commit();
}

void Save(const TBitmap& bitmap, int type, int quality, const std::string& fileName) {
  if (type == gtBmp) return SaveAsBmp(bitmap, fileName);
  const std::unique_ptr<TGraphic> graphic = CreateGraphicOfType(type);
  graphic->Assign(&bitmap);
  if (type == gtJpg && quality > 0) {
    auto& jpeg = static_cast<TJPEGImage&>(*graphic);
    jpeg.SetCompressionQuality(static_cast<uint8_t>(quality));
    jpeg.Compress();
  }
  graphic->SaveToFile(fileName);
}

}  // namespace

void SaveWindowsBitmap(const TBitmap& bitmap, int bits, int quality, const std::string& fileName) {
  const int type = GetGraphicsType(ExtractFileExt(fileName));
  if (type == gtNone) return;
  const TPixelFormat format = bits > 0 ? GetPixelFormat(bits) : bitmap.PixelFormat();
  detail::NameErrors(fileName, [&] {
    if (format == bitmap.PixelFormat()) {
      Save(bitmap, type, quality, fileName);
    } else {
      Save(Converted(bitmap, format), type, quality, fileName);
    }
  });
}

}  // namespace rasterkit
