#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/metadata.h>
#include <rasterkit/codecs/provisional_io.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>

// Stand-ins on the decoders and encoders of bitmaps until each folder has its own functions.

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;

uint32_t Word(Bytes block, size_t at, bool isBig, int bytes) {
  uint32_t value = 0;
  for (int i = 0; i < bytes; i++) {
    const auto place = at + static_cast<size_t>(isBig ? i : bytes - 1 - i);
    value = value << 8 | (place < block.size() ? block[place] : 0);
  }
  return value;
}

std::optional<int> OrientationOf(Bytes exif) {
  if (exif.size() < 14) return std::nullopt;
  const bool isBig = exif[0] == 'M';
  const size_t directory = Word(exif, 4, isBig, 4);
  for (size_t i = 0; i < Word(exif, directory, isBig, 2); i++) {
    const size_t entry = directory + 2 + 12 * i;
    if (entry + 12 > exif.size()) break;
    if (Word(exif, entry, isBig, 2) != 274) continue;
    const auto value = static_cast<int>(Word(exif, entry + 8, isBig, 2));
    if (value >= 1 && value <= 8) return value;
  }
  return std::nullopt;
}

PictureHeader HeaderOf(const Raster& rows, Bytes file) {
  PictureHeader header;
  header.width = rows.Width();
  header.height = rows.Height();
  header.layout.bits =
      StoredBitsPerPixel(rows.Format()) < 8 ? StoredBitsPerPixel(rows.Format()) : 8;
  header.layout.profile = rows.profile;
  header.layout.bands = rows.Format() == pf32bit ? 4 : IsIndexed(rows.Format()) ? 1 : 3;
  if (rows.Format() == pf32bit) header.layout.alpha = AlphaKind::straight;
  if (IsIndexed(rows.Format())) {
    header.layout.model = IsGrayRamp(rows.palette) ? ColorModel::gray : ColorModel::palette;
    if (header.layout.model == ColorModel::palette) header.layout.palette = rows.palette;
  }
  header.metadata.resolution = rows.resolution;
  header.metadata.profile = rows.profile;
  const PictureMetadata metadata = ReadMetadata(file);
  header.metadata.exif.assign(metadata.exif.begin(), metadata.exif.end());
  header.orientation = OrientationOf(header.metadata.exif);
  header.frames = metadata.pictures;
  return header;
}

template <class Encode>
WrittenPicture Written(const Pixels& pixels, const PictureWriting& writing, const Encode& encode) {
  const auto* rows = std::get_if<Raster>(&pixels);
  if (rows == nullptr) throw UnsupportedError("these numbers cannot be written");
  Raster copy = rows->Clone();
  copy.resolution = writing.metadata.resolution;
  copy.profile = writing.metadata.profile;
  encode(copy);
  WrittenPicture written;
  written.form = writing.form;
  written.layout = HeaderOf(copy, {}).layout;
  return written;
}

}  // namespace

PictureHeader ReadBmpHeader(TStream& stream) {
  return HeaderOf(DecodeBmp(stream), {});
}
PictureHeader ReadGifHeader(Bytes file) {
  return HeaderOf(DecodeGif(file), file);
}
PictureHeader ReadWebpHeader(Bytes file) {
  return HeaderOf(DecodeWebp(file), file);
}
WrittenPicture WriteBmp(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  return Written(pixels, writing,
                 [&](const Raster& rows) { EncodeBmp(rows, stream, BmpProfile::embed); });
}

}  // namespace rasterkit
