#include <algorithm>
#include <cstdlib>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/metafiles/records/dib_head.h>
#include <rasterkit/metafiles/records/dib_reader.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>

namespace rasterkit::detail {
namespace {

/// Pixels that the bitmaps of one file may have in addition to those that its size allows.
constexpr uint64_t kFreePixels = uint64_t{1} << 28;
/// The same for one bitmap. The best compression stores about 1000 pixels per byte.
constexpr uint64_t kFreePixelsEach = uint64_t{1} << 24;
constexpr uint64_t kMostPixelsPerByte = 1024;

struct PixelSize {
  uint64_t width = 0, height = 0;
};

PixelSize EmbeddedSize(const DibHead& head, std::span<const uint8_t> bits) {
  if (head.compression == BmpCompression::jpeg) {
    const JpegFrame frame = ReadJpegFrame(bits);
    return {static_cast<uint64_t>(frame.width), static_cast<uint64_t>(frame.height)};
  }
  // A PNG file has its signature and the length and name of the first chunk before the size.
  MetafileBytes fields(bits, 16);
  const auto big = [&] {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | fields.Byte();
    return value;
  };
  const uint32_t width = big();
  return {width, big()};
}

PixelSize StatedSize(const DibHead& head, const DibRequest& request) {
  if (head.width <= 0 || head.height == 0 || head.bits > 32) {
    throw FormatError("metafile: a bitmap has an invalid size or bit depth");
  }
  const uint64_t rows = request.rows ? *request.rows : static_cast<uint64_t>(std::abs(head.height));
  return {static_cast<uint64_t>(head.width), rows};
}

/// The BMP decoder treats alpha 0 in all pixels as undefined; here the bytes count as they are.
void ClearAlpha(Raster& raster) {
  for (int y = 0; y < raster.Height(); ++y) {
    uint8_t* row = raster.Row(y);
    for (int x = 0; x < raster.Width(); ++x) row[4 * x + 3] = 0;
  }
}

}  // namespace

DibParts SplitPackedDib(std::span<const uint8_t> bytes, DibColors colors) {
  const DibHead head = ReadDibHead(bytes, colors);
  const uint64_t end = head.tableOffset + head.entries * head.entryBytes;
  if (end > bytes.size()) throw FormatError("metafile: a bitmap has no rows");
  const auto split = static_cast<size_t>(end);
  return {bytes.first(split), bytes.subspan(split)};
}

DibReader::DibReader(uint64_t fileBytes)
    : pixelsLeft_(kFreePixels + kMostPixelsPerByte * fileBytes) {}

void DibReader::Take(uint64_t pixels, uint64_t bytes) {
  if (pixels > kFreePixelsEach && pixels / kMostPixelsPerByte > bytes) {
    throw LimitError("metafile: a bitmap is too large for its amount of data");
  }
  if (pixels > pixelsLeft_) {
    throw LimitError("metafile: the bitmaps are too large for the size of the file");
  }
  pixelsLeft_ -= pixels;
}

Dib DibReader::Read(const DibParts& parts, const DibRequest& request) {
  const DibHead head = ReadDibHead(parts.head, request.colors);
  const PixelSize size =
      head.IsEmbedded() ? EmbeddedSize(head, parts.bits) : StatedSize(head, request);
  // Both have at most 32 bits, so the product fits.
  if (size.height != 0) Take(size.width * size.height, parts.bits.size());
  const std::vector<uint8_t> file = DibAsFile(head, parts, request);
  TSpanStream stream(file);
  Dib dib;
  dib.raster = DecodeBmp(stream);
  dib.isTopDown = head.height < 0;
  const bool alphaIsKept = request.keepsAlpha && head.hasFourthByte;
  if (alphaIsKept && dib.raster.alphaFormat != afDefined) ClearAlpha(dib.raster);
  return dib;
}

}  // namespace rasterkit::detail
