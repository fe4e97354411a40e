#include "tests/support/ico_file.h"

#include <rasterkit/codecs/png/png_encoder.h>

namespace rasterkit::test {
namespace {

using ByteList = std::vector<uint8_t>;

void Append(ByteList& bytes, uint32_t value, int count) {
  for (uint64_t rest = value; count > 0; --count, rest >>= 8)
    bytes.push_back(static_cast<uint8_t>(rest));
}

void AppendRows(ByteList& bytes, const Raster& raster) {
  for (int y = raster.Height() - 1; y >= 0; --y)
    bytes.insert(bytes.end(), raster.Row(y), raster.Row(y) + raster.Stride());
}

}  // namespace

IcoPicture IcoBitmap(const Raster& colors, const Raster* mask, bool stateBoth) {
  IcoPicture picture{colors.Width(), colors.Height(), StoredBitsPerPixel(colors.Format()), {}};
  ByteList& bytes = picture.bytes;
  Append(bytes, 40, 4);
  Append(bytes, static_cast<uint32_t>(colors.Width()), 4);
  Append(bytes, static_cast<uint32_t>(colors.Height() * (stateBoth ? 2 : 1)), 4);
  Append(bytes, 1, 2);
  Append(bytes, static_cast<uint32_t>(picture.bits), 2);
  Append(bytes, 0, 24);
  for (int i = 0; IsIndexed(colors.Format()) && i < 1 << picture.bits; ++i) {
    const tagPALETTEENTRY entry = colors.palette.Entry(i);
    bytes.insert(bytes.end(), {entry.peBlue, entry.peGreen, entry.peRed, 0});
  }
  AppendRows(bytes, colors);
  if (mask) AppendRows(bytes, *mask);
  return picture;
}

IcoPicture IcoPng(const Raster& raster) {
  TMemoryStream stream;
  EncodePng(raster, stream);
  return {raster.Width(), raster.Height(), 32, stream.TakeBytes()};
}

ByteList IcoFile(const std::vector<IcoPicture>& pictures) {
  ByteList file;
  Append(file, 0, 2);
  Append(file, 1, 2);
  Append(file, static_cast<uint32_t>(pictures.size()), 2);
  uint32_t offset = static_cast<uint32_t>(6 + 16 * pictures.size());
  for (const IcoPicture& picture : pictures) {
    Append(file, static_cast<uint32_t>(picture.width), 1);
    Append(file, static_cast<uint32_t>(picture.height), 1);
    Append(file, 0, 2);
    Append(file, 1, 2);
    Append(file, static_cast<uint32_t>(picture.bits), 2);
    Append(file, static_cast<uint32_t>(picture.bytes.size()), 4);
    Append(file, offset, 4);
    offset += static_cast<uint32_t>(picture.bytes.size());
  }
  for (const IcoPicture& picture : pictures)
    file.insert(file.end(), picture.bytes.begin(), picture.bytes.end());
  return file;
}

}  // namespace rasterkit::test
