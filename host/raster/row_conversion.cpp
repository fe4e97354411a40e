#include <cstring>

#include <rasterkit/host/raster/pixel_words.h>
#include <rasterkit/host/raster/row_conversion.h>

namespace rasterkit {
namespace {

constexpr RGBArec Opaque(TColor color) {
  return {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
          static_cast<uint8_t>(color), 255};
}

constexpr TColor ColorOf(const RGBArec& pixel) {
  return RGB(pixel.r, pixel.g, pixel.b);
}

template <class Store>
void ForEachIndex(const uint8_t* row, TPixelFormat format, int width, Store store) {
  switch (format) {
    case pf1bit:
      for (int x = 0; x < width; ++x) store(x, row[x / 8] >> (7 - x % 8) & 1);
      break;
    case pf4bit:
      for (int x = 0; x < width; ++x) store(x, row[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15);
      break;
    default:
      for (int x = 0; x < width; ++x) store(x, row[x]);
  }
}

}  // namespace

PixelTable MakePixelTable(const HPALETTE& palette) {
  PixelTable table;
  const TColorTable entries = PaletteTable(palette);
  for (size_t i = 0; i < table.size(); ++i)
    table[i] = {entries[i].peBlue, entries[i].peGreen, entries[i].peRed, 255};
  return table;
}

void UnpackIndexes(const uint8_t* row, TPixelFormat format, int width, uint8_t* indexes) {
  if (format == pf8bit) {
    std::memcpy(indexes, row, static_cast<size_t>(width));
    return;
  }
  ForEachIndex(row, format, width,
               [&](int x, int index) { indexes[x] = static_cast<uint8_t>(index); });
}

void PackIndexes(const uint8_t* indexes, TPixelFormat format, int width, uint8_t* row) {
  if (format == pf8bit) {
    std::memcpy(row, indexes, static_cast<size_t>(width));
    return;
  }
  const int perByte = format == pf1bit ? 8 : 2;
  const int bits = 8 / perByte;
  const int mask = (1 << bits) - 1;
  for (int x = 0; x < width; x += perByte) {
    int byte = 0;
    for (int i = 0; i < perByte; ++i)
      byte = byte << bits | (x + i < width ? indexes[x + i] & mask : 0);
    *row++ = static_cast<uint8_t>(byte);
  }
}

void RowTo32(const uint8_t* row, TPixelFormat format, int width, const PixelTable& table,
             RGBArec* pixels) {
  switch (format) {
    case pf15bit:
      for (int x = 0; x < width; ++x) pixels[x] = Opaque(ColorFromWord555(LoadWord(row + 2 * x)));
      break;
    case pf16bit:
      for (int x = 0; x < width; ++x) pixels[x] = Opaque(ColorFromWord565(LoadWord(row + 2 * x)));
      break;
    case pf24bit:
      for (int x = 0; x < width; ++x, row += 3) pixels[x] = {row[0], row[1], row[2], 255};
      break;
    case pf1bit:
    case pf4bit:
    case pf8bit:
      ForEachIndex(row, format, width,
                   [&](int x, int index) { pixels[x] = table[static_cast<size_t>(index)]; });
      break;
    default:
      std::memcpy(pixels, row, static_cast<size_t>(width) * sizeof(RGBArec));
  }
}

void RowFrom32(const RGBArec* pixels, TPixelFormat format, int width, uint8_t* row) {
  switch (format) {
    case pf15bit:
      for (int x = 0; x < width; ++x) StoreWord(row + 2 * x, Word555FromColor(ColorOf(pixels[x])));
      break;
    case pf16bit:
      for (int x = 0; x < width; ++x) StoreWord(row + 2 * x, Word565FromColor(ColorOf(pixels[x])));
      break;
    case pf24bit:
      for (int x = 0; x < width; ++x, row += 3) std::memcpy(row, &pixels[x], 3);
      break;
    default:
      std::memcpy(row, pixels, static_cast<size_t>(width) * sizeof(RGBArec));
  }
}

void RowTo24(const uint8_t* row, TPixelFormat format, int width, const PixelTable& table,
             RGBrec* pixels) {
  switch (format) {
    case pf1bit:
    case pf4bit:
    case pf8bit:
      ForEachIndex(row, format, width, [&](int x, int index) {
        std::memcpy(&pixels[x], &table[static_cast<size_t>(index)], 3);
      });
      break;
    case pf15bit:
    case pf16bit:
      for (int x = 0; x < width; ++x) {
        const uint16_t word = LoadWord(row + 2 * x);
        const RGBArec pixel =
            Opaque(format == pf15bit ? ColorFromWord555(word) : ColorFromWord565(word));
        pixels[x] = {pixel.b, pixel.g, pixel.r};
      }
      break;
    case pf24bit:
      std::memcpy(pixels, row, static_cast<size_t>(width) * 3);
      break;
    default:
      for (int x = 0; x < width; ++x, row += 4) std::memcpy(&pixels[x], row, 3);
  }
}

}  // namespace rasterkit
