#include <array>
#include <cstring>
#include <utility>

#include <rasterkit/host/codecs/decode_picture.h>
#include <rasterkit/host/codecs/picture_type.h>
#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {
namespace {

/// The first bytes decide whether any codec is asked at all; they are given back to the stream.
bool IsKnownPicture(TStream& stream) {
  std::array<uint8_t, 64> head;
  const uint64_t start = stream.Position();
  const size_t there = stream.Read(head);
  stream.SetPosition(start);
  return SniffPictureType({head.data(), there}) != PictureType::unknown;
}

/// Paints the fully transparent pixels of an alpha channel opaque white, so that a caller that
/// ignores alpha sees paper where the picture shows nothing. Partly transparent pixels keep their
/// alpha.
void WhitenTransparentPixels(Raster& raster) {
  for (int y = 0; y < raster.Height(); ++y) {
    uint8_t* row = raster.Row(y);
    for (int x = 0; x < raster.Width(); ++x) {
      if (row[4 * x + 3] == 0) std::memset(row + 4 * x, 0xFF, 4);
    }
  }
}

Raster DecodeKnownPicture(TStream& stream) {
  if (!IsKnownPicture(stream)) throw FormatError("Invalid image");
  Raster raster = DecodePicture(stream);
  if (raster.Format() == pf32bit && raster.alphaFormat == afDefined) {
    WhitenTransparentPixels(raster);
  }
  raster.transparentColor.reset();
  return raster;
}

Raster ReadPicture(const std::string& fileName) {
  TFileStream file(fileName);
  if (file.Size() > 0) return DecodeKnownPicture(file);
  // A pipe or a device states no size and gives its bytes only once.
  TMemoryStream memory(file.ReadToEnd());
  return DecodeKnownPicture(memory);
}

}  // namespace

void TWICBitmap::LoadFromFile(const std::string& fileName) {
  try {
    TBitmap loaded(ReadPicture(fileName));
    static_cast<TBitmap&>(*this) = std::move(loaded);
  } catch (Error& error) {
    error.AttachFile(fileName);
    throw;
  }
}

void TWICBitmap::SaveToFile(const std::string& fileName) {
  throw UnsupportedError("TIFF files cannot be written by this version", fileName);
}

}  // namespace rasterkit
