#include "tests/support/oversized/oversized_files.h"

#include <algorithm>
#include <cstring>

#include <zlib.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/raster/raster.h>

#include "tests/support/bmp_file.h"
#include "tests/support/emf_file.h"
#include "tests/support/gif_file.h"
#include "tests/support/webp_file.h"

namespace rasterkit::test {
namespace {

using ByteList = std::vector<uint8_t>;

void AddBigEndian(ByteList& bytes, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<uint8_t>(value >> shift));
  }
}

void AddChunk(ByteList& file, const std::string& name, const ByteList& data) {
  ByteList body(name.begin(), name.end());
  body.insert(body.end(), data.begin(), data.end());
  AddBigEndian(file, static_cast<uint32_t>(data.size()));
  file.insert(file.end(), body.begin(), body.end());
  AddBigEndian(file, static_cast<uint32_t>(crc32(0, body.data(), static_cast<uInt>(body.size()))));
}

ByteList Deflated(const ByteList& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  ByteList packed(size);
  compress2(packed.data(), &size, bytes.data(), static_cast<uLong>(bytes.size()), 9);
  packed.resize(size);
  return packed;
}

Raster DarkRows(int width, int rows) {
  Raster raster(pf24bit, width, rows);
  for (int y = 0; y < rows; y++) std::memset(raster.Row(y), 0x40, raster.Stride());
  return raster;
}

/// The place behind a few bytes of the file.
size_t Behind(const ByteList& file, const ByteList& bytes) {
  const auto found = std::search(file.begin(), file.end(), bytes.begin(), bytes.end());
  return static_cast<size_t>(found - file.begin()) + bytes.size();
}

}  // namespace

ByteList OversizedPng(uint32_t width, uint32_t height, uint32_t rows) {
  ByteList file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  ByteList header;
  AddBigEndian(header, width);
  AddBigEndian(header, height);
  header.insert(header.end(), {8, 0, 0, 0, 0});
  AddChunk(file, "IHDR", header);
  AddChunk(file, "IDAT", Deflated(ByteList((size_t{width} + 1) * rows)));
  AddChunk(file, "IEND", {});
  return file;
}

ByteList OversizedRleBmp(int32_t width, int32_t height, uint32_t rows) {
  BmpFile file;
  file.width = width;
  file.height = height;
  file.bits = 8;
  file.compression = 1;
  file.palette.assign(256, 0x404040);
  constexpr int32_t kLongestRun = 255;
  for (uint32_t row = 0; row < rows; row++) {
    for (int32_t x = 0; x < width; x += kLongestRun) {
      file.pixels.push_back(static_cast<uint8_t>(std::min(kLongestRun, width - x)));
      file.pixels.push_back(7);
    }
    file.pixels.insert(file.pixels.end(), {0, 0});
  }
  return file.Bytes();
}

ByteList OversizedPlainBmp(int32_t width, int32_t height, uint32_t rows) {
  BmpFile file;
  file.width = width;
  file.height = height;
  file.bits = 8;
  file.palette.assign(256, 0x404040);
  file.pixels.assign(static_cast<size_t>((width + 3) / 4 * 4) * rows, 7);
  return file.Bytes();
}

ByteList OversizedJpeg(uint16_t width, uint16_t height, uint16_t rows) {
  ByteList file = EncodeJpeg(DarkRows(width, rows), 90);
  // Marker of a baseline frame, length of three components, 8 bits.
  const size_t at = Behind(file, {0xFF, 0xC0, 0, 17, 8});
  file[at] = static_cast<uint8_t>(height >> 8);
  file[at + 1] = static_cast<uint8_t>(height);
  return file;
}

ByteList OversizedGif(uint16_t width, uint16_t height, size_t dataBytes) {
  GifFile file = PlainGif(width, 1);
  file.screenHeight = height;
  file.pictures[0].height = height;
  ByteList bytes = file.Bytes();
  constexpr size_t kBlock = 255;
  // Before the end of the picture's data and of the file.
  ByteList more;
  for (size_t left = dataBytes; left > 0; left -= std::min(left, kBlock)) {
    more.push_back(static_cast<uint8_t>(std::min(left, kBlock)));
    more.resize(more.size() + std::min(left, kBlock));
  }
  bytes.insert(bytes.end() - 2, more.begin(), more.end());
  return bytes;
}

ByteList OversizedWebp(uint16_t width, uint16_t height, uint16_t rows) {
  ByteList file = LossyWebp(DarkRows(width, rows));
  // The start code of a key frame and the width.
  const size_t at = Behind(file, {0x9D, 0x01, 0x2A}) + 2;
  file[at] = static_cast<uint8_t>(height);
  file[at + 1] = static_cast<uint8_t>(height >> 8);
  return file;
}

ByteList OversizedEmf(int32_t side, size_t bytes) {
  EmfFile file;
  file.bounds = {0, 0, side - 1, side - 1};
  // A pixel of 96 dpi in 0.01 mm, and of the device in mm.
  const auto length = static_cast<int32_t>(int64_t{side} * 2540 / 96);
  file.frame = {0, 0, length, length};
  file.deviceWidth = file.deviceHeight = 960;
  file.deviceWidthMm = file.deviceHeightMm = 254;
  constexpr size_t kComment = 1000;
  while (file.records.size() + kComment < bytes) {
    FieldBytes comment;
    comment.Long(static_cast<int64_t>(kComment)).Bytes(ByteList(kComment));
    file.Add(detail::EmfType::comment, comment);
  }
  return file.Bytes();
}

ByteList Padded(ByteList file, size_t bytes) {
  file.resize(std::max(file.size(), bytes));
  return file;
}

std::vector<NamedFile> OversizedFiles() {
  return {{"bomb.png", OversizedPng(60000, 70000, 1)},
          {"bomb.bmp", OversizedRleBmp(4000000, 720, 1)},
          {"bomb.jpg", OversizedJpeg(17000, 17000, 16)},
          {"bomb.emf", OversizedEmf(16000, 72000)}};
}

}  // namespace rasterkit::test
