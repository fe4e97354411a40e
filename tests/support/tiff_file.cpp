#include "tests/support/tiff_file.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

namespace rasterkit::test {

namespace {

/// A file in memory that libtiff writes and reads back.
struct Memory {
  std::vector<uint8_t> bytes;
  uint64_t position = 0;

  static Memory& Of(thandle_t self) { return *static_cast<Memory*>(self); }
  static tmsize_t Read(thandle_t self, void* target, tmsize_t count) {
    Memory& file = Of(self);
    const uint64_t left = file.position < file.bytes.size() ? file.bytes.size() - file.position : 0;
    const auto there = std::min<uint64_t>(left, static_cast<uint64_t>(count));
    if (there > 0) std::memcpy(target, file.bytes.data() + file.position, there);
    file.position += there;
    return static_cast<tmsize_t>(there);
  }
  static tmsize_t Write(thandle_t self, void* source, tmsize_t count) {
    Memory& file = Of(self);
    const uint64_t end = file.position + static_cast<uint64_t>(count);
    if (file.bytes.size() < end) file.bytes.resize(end);
    std::memcpy(file.bytes.data() + file.position, source, static_cast<size_t>(count));
    file.position = end;
    return count;
  }
  static toff_t Seek(thandle_t self, toff_t offset, int origin) {
    Memory& file = Of(self);
    const uint64_t base = origin == SEEK_CUR   ? file.position
                          : origin == SEEK_END ? file.bytes.size()
                                               : 0;
    return file.position = base + offset;
  }
  static toff_t Size(thandle_t self) { return Of(self).bytes.size(); }
  static int Close(thandle_t) { return 0; }
};

void SetTags(TIFF* tiff, const TiffFile& file) {
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, file.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, file.height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, file.bits);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, file.samples);
  TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, file.sampleFormat);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, file.compression);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, file.photometric);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
               file.isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  if (file.predictor != 1) TIFFSetField(tiff, TIFFTAG_PREDICTOR, file.predictor);
  if (!file.extraSamples.empty())
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(file.extraSamples.size()),
                 file.extraSamples.data());
  if (!file.colorMap.empty()) {
    const size_t count = file.colorMap.size() / 3;
    const uint16_t* red = file.colorMap.data();
    TIFFSetField(tiff, TIFFTAG_COLORMAP, red, red + count, red + 2 * count);
  }
  if (file.tileWidth != 0) {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, file.tileWidth);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, file.tileHeight);
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, file.rowsPerStrip ? file.rowsPerStrip : file.height);
  }
  if (file.setTags) file.setTags(tiff);
}

bool WritePackedStrips(TIFF* tiff, const TiffFile& file) {
  uint32_t strip = 0;
  for (std::vector<uint8_t> bytes : file.packedStrips) {
    if (TIFFWriteRawStrip(tiff, strip++, bytes.data(), static_cast<tmsize_t>(bytes.size())) < 0)
      return false;
  }
  return true;
}

bool WriteStrips(TIFF* tiff, const TiffFile& file) {
  if (!file.packedStrips.empty()) return WritePackedStrips(tiff, file);
  const uint32_t rows = file.rowsPerStrip ? file.rowsPerStrip : file.height;
  uint32_t strip = 0;
  for (size_t plane = 0; plane < file.Planes(); plane++) {
    for (uint32_t y = 0; y < file.height; y += rows, strip++) {
      const size_t first = (plane * file.height + y) * file.RowBytes();
      const size_t count = std::min(rows, file.height - y) * file.RowBytes();
      std::vector<uint8_t> part(file.pixels.begin() + static_cast<ptrdiff_t>(first),
                                file.pixels.begin() + static_cast<ptrdiff_t>(first + count));
      if (TIFFWriteEncodedStrip(tiff, strip, part.data(), static_cast<tmsize_t>(count)) < 0)
        return false;
    }
  }
  return true;
}

bool WriteTiles(TIFF* tiff, const TiffFile& file) {
  const size_t pixelBits = size_t{file.bits} * (file.isPlanar ? 1u : file.samples);
  const size_t tileRow = (file.tileWidth * pixelBits + 7) / 8;
  for (size_t plane = 0; plane < file.Planes(); plane++) {
    for (uint32_t y = 0; y < file.height; y += file.tileHeight) {
      for (uint32_t x = 0; x < file.width; x += file.tileWidth) {
        std::vector<uint8_t> tile(tileRow * file.tileHeight);
        const size_t from = x * pixelBits / 8;
        const size_t count = std::min(tileRow, file.RowBytes() - from);
        for (uint32_t i = 0; i < file.tileHeight && y + i < file.height; i++)
          std::memcpy(tile.data() + i * tileRow,
                      file.pixels.data() + (plane * file.height + y + i) * file.RowBytes() + from,
                      count);
        const uint32_t index = TIFFComputeTile(tiff, x, y, 0, static_cast<uint16_t>(plane));
        if (TIFFWriteEncodedTile(tiff, index, tile.data(), static_cast<tmsize_t>(tile.size())) < 0)
          return false;
      }
    }
  }
  return true;
}

struct Close {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Handle = std::unique_ptr<TIFF, Close>;

/// The memory must outlive the handle; nothing when libtiff would not.
Handle Open(Memory& memory, const std::string& mode) {
  const auto silence = [](TIFF*, void*, const char*, const char*, va_list) { return 1; };
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  TIFFOpenOptionsSetWarningHandlerExtR(options, silence, nullptr);
  TIFFOpenOptionsSetErrorHandlerExtR(options, silence, nullptr);
  Handle tiff(TIFFClientOpenExt("test", mode.c_str(), &memory, Memory::Read, Memory::Write,
                                Memory::Seek, Memory::Close, Memory::Size, nullptr, nullptr,
                                options));
  TIFFOpenOptionsFree(options);
  return tiff;
}

}  // namespace

std::vector<uint8_t> TiffFile::Bytes() const {
  Memory memory;
  Handle tiff = Open(memory, mode);
  if (!tiff) return {};
  SetTags(tiff.get(), *this);
  const bool isWritten =
      tileWidth != 0 ? WriteTiles(tiff.get(), *this) : WriteStrips(tiff.get(), *this);
  tiff.reset();
  return isWritten ? memory.bytes : std::vector<uint8_t>();
}

std::vector<std::vector<uint8_t>> PackedStrips(const std::vector<uint8_t>& bytes) {
  Memory memory{bytes};
  const Handle tiff = Open(memory, "rm");
  std::vector<std::vector<uint8_t>> strips;
  for (uint32_t i = 0; tiff && i < TIFFNumberOfStrips(tiff.get()); i++) {
    std::vector<uint8_t> strip(TIFFGetStrileByteCount(tiff.get(), i));
    TIFFReadRawStrip(tiff.get(), i, strip.data(), static_cast<tmsize_t>(strip.size()));
    strips.push_back(std::move(strip));
  }
  return strips;
}

std::vector<uint8_t> SamplesByLibrary(const TiffFile& file, const std::vector<uint8_t>& bytes) {
  Memory memory{bytes};
  const Handle handle = Open(memory, "rm");
  TIFF* tiff = handle.get();
  if (!tiff) return {};
  if (file.photometric == PHOTOMETRIC_YCBCR)
    TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
  std::vector<uint8_t> samples(file.PixelBytes());
  const bool isTiled = file.tileWidth != 0;
  const uint32_t height = isTiled ? file.tileHeight : file.rowsPerStrip;
  const uint32_t width = isTiled ? file.tileWidth : file.width;
  const size_t pixelBytes = size_t{file.bits} / 8 * (file.isPlanar ? 1u : file.samples);
  std::vector<uint8_t> block(pixelBytes * width * height);
  uint32_t index = 0;
  for (size_t plane = 0; plane < file.Planes(); plane++) {
    for (uint32_t y = 0; y < file.height; y += height) {
      for (uint32_t x = 0; x < file.width; x += width, index++) {
        const tmsize_t there = isTiled ? TIFFReadEncodedTile(tiff, index, block.data(), -1)
                                       : TIFFReadEncodedStrip(tiff, index, block.data(), -1);
        if (there < 0) return {};
        const size_t count = std::min(width, file.width - x) * pixelBytes;
        for (uint32_t i = 0; i < height && y + i < file.height; i++)
          std::memcpy(
              samples.data() + (plane * file.height + y + i) * file.RowBytes() + x * pixelBytes,
              block.data() + i * width * pixelBytes, count);
      }
    }
  }
  return samples;
}

std::vector<uint8_t> RandomSamples(const TiffFile& file, std::mt19937& random) {
  std::vector<uint8_t> bytes(file.PixelBytes());
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  if (file.sampleFormat != SAMPLEFORMAT_IEEEFP) return bytes;
  std::uniform_real_distribution<double> real(-2, 2);
  for (size_t at = 0; file.bits == 32 && at + 4 <= bytes.size(); at += 4) {
    const auto value = static_cast<float>(real(random));
    std::memcpy(bytes.data() + at, &value, 4);
  }
  for (size_t at = 0; file.bits == 64 && at + 8 <= bytes.size(); at += 8) {
    const double value = real(random);
    std::memcpy(bytes.data() + at, &value, 8);
  }
  // 24-bit floats below 2, the high byte last.
  for (size_t at = 0; file.bits == 24 && at + 3 <= bytes.size(); at += 3) bytes[at + 2] &= 0xBF;
  // Halves below 2: the highest bit of the exponent is 0.
  for (size_t at = 0; file.bits == 16 && at + 2 <= bytes.size(); at += 2) {
    uint16_t half;
    std::memcpy(&half, bytes.data() + at, 2);
    half &= 0xBFFF;
    std::memcpy(bytes.data() + at, &half, 2);
  }
  return bytes;
}

uint64_t StoredSample(const TiffFile& file, uint32_t x, uint32_t y, uint32_t sample) {
  const size_t plane = file.isPlanar ? sample : 0;
  const size_t index = file.isPlanar ? x : size_t{x} * file.samples + sample;
  const uint8_t* row = file.pixels.data() + (plane * file.height + y) * file.RowBytes();
  uint64_t value = 0;
  if (file.bits % 8 == 0) {
    // The processor's order: the low byte first.
    for (size_t i = file.bits / 8; i-- > 0;) value = value << 8 | row[index * (file.bits / 8u) + i];
    return value;
  }
  for (size_t bit = index * file.bits; bit < (index + 1) * file.bits; bit++)
    value = value << 1 | (row[bit / 8] >> (7 - bit % 8) & 1u);
  return value;
}

}  // namespace rasterkit::test
