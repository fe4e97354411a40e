#include "tool/pictures/save_picture.h"

#include <algorithm>
#include <new>

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"

namespace rasterkit::tool {
namespace {

constexpr int kMostEncoders = 64;

void SaveJpeg(const TBitmap& bitmap, AtomicFile& file, int quality) {
  const Raster& content = bitmap.Content();
  const bool isGray = content.Format() == pf8bit && IsGrayRamp(bitmap.Palette());
  if (isGray || content.Format() == pf24bit) {
    file.Write(EncodeJpeg(content, quality));
  } else {
    file.Write(EncodeJpeg(ConvertRaster(content, pf24bit), quality));
  }
}

/// The codec takes the transparent colour from the raster, the bitmap keeps it beside its own.
void SavePng(const TBitmap& bitmap, AtomicFile& file) {
  if (!bitmap.Transparent()) return EncodePng(bitmap.Content(), file);
  Raster content = bitmap.Content().Clone();
  content.transparentColor = bitmap.TransparentColor();
  EncodePng(content, file);
}

void SaveTiff(const TBitmap& bitmap, AtomicFile& file, const SaveOptions& options) {
  const Raster& content = bitmap.Content();
  TiffWriteOptions packing;
  packing.compression = options.compression;
  packing.threads = std::min(options.threads, kMostEncoders);
  packing.geo = options.geo;
  if (content.Format() == pf15bit || content.Format() == pf16bit) {
    EncodeTiff(ConvertRaster(content, pf24bit), file, packing);
  } else {
    EncodeTiff(content, file, packing);
  }
}

void Encode(const TBitmap& bitmap, PictureType type, AtomicFile& file, const SaveOptions& options) {
  switch (type) {
    case PictureType::bmp:
      return EncodeBmp(bitmap.Content(), file, BmpProfile::embed);
    case PictureType::png:
      return SavePng(bitmap, file);
    case PictureType::tiff:
      return SaveTiff(bitmap, file, options);
    default:
      return SaveJpeg(bitmap, file, options.quality);
  }
}

}  // namespace

PictureType WritableType(const std::string& file) {
  const std::string extension = UpperCase(ExtractFileExt(file));
  if (extension == ".BMP") return PictureType::bmp;
  if (extension == ".JPG" || extension == ".JPEG") return PictureType::jpeg;
  if (extension == ".PNG") return PictureType::png;
  if (extension == ".TIF" || extension == ".TIFF") return PictureType::tiff;
  return PictureType::unknown;
}

void SavePicture(const TBitmap& bitmap, const std::string& name, const SaveOptions& options) {
  try {
    const WholeOutput whole;
    AtomicFile file(name);
    Encode(bitmap, WritableType(name), file, options);
    StopIfInterrupted();
    file.Commit();
  } catch (const Error& error) {
    throw Failure(exitOutputNotWritten, name + ": " + error.Reason());
  } catch (const std::bad_alloc&) {
    throw Failure(exitOutputNotWritten, name + ": not enough memory");
  }
}

}  // namespace rasterkit::tool
