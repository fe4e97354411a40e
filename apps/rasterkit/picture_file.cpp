#include "apps/rasterkit/picture_file.h"

#include <algorithm>
#include <array>
#include <new>

#include <rasterkit/host/codecs/bmp_decoder.h>
#include <rasterkit/host/codecs/bmp_encoder.h>
#include <rasterkit/host/codecs/decode_picture.h>
#include <rasterkit/host/codecs/jpeg_decoder.h>
#include <rasterkit/host/codecs/jpeg_encoder.h>
#include <rasterkit/host/codecs/metadata.h>
#include <rasterkit/host/codecs/png_decoder.h>
#include <rasterkit/host/codecs/png_encoder.h>
#include <rasterkit/host/raster/convert.h>
#include <rasterkit/host/runtime/atomic_file.h>
#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/host/runtime/file_name.h>
#include <rasterkit/host/runtime/text.h>

#include "apps/rasterkit/exit_code.h"
#include "apps/rasterkit/interruption.h"

namespace rasterkit::tool {
namespace {

/// Enough for every kind's mark, also for that of a PDF behind foreign bytes.
constexpr size_t kSniffedBytes = 1024;

PictureType SniffStream(TStream& stream) {
  std::array<uint8_t, kSniffedBytes> first;
  const size_t count = stream.Read(first);
  stream.SetPosition(0);
  return SniffPictureType(std::span(first).first(count));
}

void Take(LoadedPicture& picture, Raster raster, const CodecReport& report) {
  picture.bitmap = std::make_unique<TBitmap>(std::move(raster));
  picture.warnings.insert(picture.warnings.end(), report.warnings.begin(), report.warnings.end());
}

/// Compressed kinds are decoded where their bytes are: a stream would copy them.
Raster DecodeBytes(PictureType type, std::span<const uint8_t> bytes, CodecReport& report) {
  if (type == PictureType::jpeg) return DecodeJpeg(bytes, &report);
  if (type == PictureType::png) return DecodePng(bytes, &report);
  TSpanStream memory(bytes);
  return DecodePicture(memory, &report);
}

/// Bitmap files can be huge and have nothing beside their pixels: their rows go straight from the
/// file into the bitmap. The other kinds are compressed and looked at twice. A pipe has no size and
/// cannot be rewound.
void LoadStream(LoadedPicture& picture, TStream& stream) {
  CodecReport report;
  const bool isFile = stream.Size() > 0;
  if (isFile) picture.type = SniffStream(stream);
  if (isFile && picture.type == PictureType::bmp) {
    picture.bytes = stream.Size();
    Take(picture, DecodeBmp(stream, &report), report);
    return;
  }
  const std::vector<uint8_t> bytes = stream.ReadToEnd();
  picture.bytes = bytes.size();
  picture.type = SniffPictureType(std::span(bytes).first(std::min(kSniffedBytes, bytes.size())));
  const PictureMetadata metadata = ReadMetadata(bytes);
  picture.metadata = metadata.kinds;
  const bool isJpeg = picture.type == PictureType::jpeg;
  picture.photo = isJpeg ? ReadPhotoFacts(bytes) : ReadExifFacts(metadata.exif);
  picture.warnings = picture.photo.warnings;
  Take(picture, DecodeBytes(picture.type, bytes, report), report);
}

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

}  // namespace

LoadedPicture LoadPicture(const std::string& file) {
  LoadedPicture picture;
  LoadPictureInto(picture, file);
  return picture;
}

void LoadPictureInto(LoadedPicture& picture, const std::string& file) {
  try {
    TFileStream stream(file);
    LoadStream(picture, stream);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + error.Reason());
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": not enough memory");
  }
}

PictureType WritableType(const std::string& file) {
  const std::string extension = UpperCase(ExtractFileExt(file));
  if (extension == ".BMP") return PictureType::bmp;
  if (extension == ".JPG" || extension == ".JPEG") return PictureType::jpeg;
  if (extension == ".PNG") return PictureType::png;
  return PictureType::unknown;
}

void SavePicture(const TBitmap& bitmap, const std::string& name, int quality) {
  try {
    AtomicFile file(name);
    switch (WritableType(name)) {
      case PictureType::bmp:
        EncodeBmp(bitmap.Content(), file, BmpProfile::embed);
        break;
      case PictureType::png:
        SavePng(bitmap, file);
        break;
      default:
        SaveJpeg(bitmap, file, quality);
        break;
    }
    StopIfInterrupted();
    file.Commit();
  } catch (const Error& error) {
    throw Failure(exitOutputNotWritten, name + ": " + error.Reason());
  } catch (const std::bad_alloc&) {
    throw Failure(exitOutputNotWritten, name + ": not enough memory");
  }
}

}  // namespace rasterkit::tool
