#include "tests/codecs/png/png_files.h"

#include <png.h>
#include <zlib.h>

#include <rasterkit/codecs/png/png_encoder.h>

namespace rasterkit::test {

ByteList Word32(uint32_t value) {
  return {static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
          static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}

ByteList operator+(ByteList a, const ByteList& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

ByteList PngChunk(const std::string& name, const ByteList& data) {
  const ByteList body = ByteList(name.begin(), name.end()) + data;
  const auto checksum =
      static_cast<uint32_t>(crc32(0, body.data(), static_cast<uInt>(body.size())));
  return Word32(static_cast<uint32_t>(data.size())) + body + Word32(checksum);
}

ByteList PngSignature() {
  return {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
}

ByteList PngHeader(uint32_t width, uint32_t height, int bitDepth, int colorType, int interlace) {
  return PngChunk(
      "IHDR", Word32(width) + Word32(height) +
                  ByteList{static_cast<uint8_t>(bitDepth), static_cast<uint8_t>(colorType), 0, 0,
                           static_cast<uint8_t>(interlace)});
}

ByteList PngData(const ByteList& rows) {
  uLongf size = compressBound(static_cast<uLong>(rows.size()));
  ByteList packed(size);
  compress2(packed.data(), &size, rows.data(), static_cast<uLong>(rows.size()), 9);
  packed.resize(size);
  return PngChunk("IDAT", packed);
}

ByteList PngEnd() {
  return PngChunk("IEND", {});
}

ByteList PngFile(uint32_t width, uint32_t height, int bitDepth, int colorType, const ByteList& rows,
                 const ByteList& before) {
  const size_t rowBytes = rows.size() / height;
  ByteList filtered;
  for (size_t y = 0; y < height; y++) {
    filtered.push_back(0);
    const auto row = rows.begin() + static_cast<long>(y * rowBytes);
    filtered.insert(filtered.end(), row, row + static_cast<long>(rowBytes));
  }
  return PngSignature() + PngHeader(width, height, bitDepth, colorType) + before +
         PngData(filtered) + PngEnd();
}

ByteList InterlacedPng(const Raster& raster) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  ByteList file;
  png_set_write_fn(
      png, &file,
      [](png_structp writer, png_bytep bytes, size_t count) {
        auto& target = *static_cast<ByteList*>(png_get_io_ptr(writer));
        target.insert(target.end(), bytes, bytes + count);
      },
      nullptr);
  const bool indexed = IsIndexed(raster.Format());
  const int type = indexed                      ? PNG_COLOR_TYPE_PALETTE
                   : raster.Format() == pf32bit ? PNG_COLOR_TYPE_RGB_ALPHA
                                                : PNG_COLOR_TYPE_RGB;
  png_set_IHDR(png, info, static_cast<png_uint_32>(raster.Width()),
               static_cast<png_uint_32>(raster.Height()),
               indexed ? StoredBitsPerPixel(raster.Format()) : 8, type, PNG_INTERLACE_ADAM7,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  std::vector<png_color> colors;
  for (const tagPALETTEENTRY& entry : raster.palette.Entries()) {
    colors.push_back({entry.peRed, entry.peGreen, entry.peBlue});
  }
  if (indexed) png_set_PLTE(png, info, colors.data(), static_cast<int>(colors.size()));
  png_write_info(png, info);
  png_set_bgr(png);
  std::vector<png_bytep> rows;
  for (int y = 0; y < raster.Height(); y++) rows.push_back(const_cast<png_bytep>(raster.Row(y)));
  png_write_image(png, rows.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return file;
}

ByteList Encoded(const Raster& raster, int level) {
  TMemoryStream stream;
  EncodePng(raster, stream, level);
  return stream.TakeBytes();
}

}  // namespace rasterkit::test
