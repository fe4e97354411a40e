#include <cstring>

#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/kernels/rows/word_rows.h>
#include <rasterkit/raster/pixel_words.h>
#include <rasterkit/raster/row_conversion.h>

namespace rasterkit {
namespace {

constexpr TColor ColorOf(const RGBArec& pixel) {
  return RGB(pixel.r, pixel.g, pixel.b);
}

// Calls `store` with position and index, from left to right; whole bytes first, so that the
// compiler unrolls their pixels.
template <int kBits, class Store>
void ForEachPackedIndex(const uint8_t* row, int width, Store store) {
  constexpr int kPerByte = 8 / kBits, kMask = (1 << kBits) - 1;
  const auto indexAt = [&](int x, int i) {
    return row[x / kPerByte] >> (8 - kBits * (i + 1)) & kMask;
  };
  int x = 0;
  for (; x + kPerByte <= width; x += kPerByte) {
    for (int i = 0; i < kPerByte; ++i) store(x + i, indexAt(x, i));
  }
  for (int i = 0; x + i < width; ++i) store(x + i, indexAt(x, i));
}

template <class Store>
void ForEachIndex(const uint8_t* row, TPixelFormat format, int width, Store store) {
  if (format == pf1bit) {
    ForEachPackedIndex<1>(row, width, store);
  } else {
    ForEachPackedIndex<4>(row, width, store);
  }
}

const uint8_t* BytesOf(const PixelTable& table) {
  return reinterpret_cast<const uint8_t*>(table.data());
}

}  // namespace

PixelTable MakePixelTable(const HPALETTE& palette) {
  PixelTable table;
  const TColorTable entries = PaletteTable(palette);
  for (size_t i = 0; i < table.size(); ++i) {
    table[i] = {entries[i].peBlue, entries[i].peGreen, entries[i].peRed, 255};
  }
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
    for (int i = 0; i < perByte; ++i) {
      byte = byte << bits | (x + i < width ? indexes[x + i] & mask : 0);
    }
    *row++ = static_cast<uint8_t>(byte);
  }
}

void RowTo32(const uint8_t* row, TPixelFormat format, int width, const PixelTable& table,
             RGBArec* pixels) {
  switch (format) {
    case pf15bit:
      kernels::Row555To32(row, static_cast<size_t>(width), reinterpret_cast<uint8_t*>(pixels));
      break;
    case pf16bit:
      kernels::Row565To32(row, static_cast<size_t>(width), reinterpret_cast<uint8_t*>(pixels));
      break;
    case pf24bit:
      kernels::Row24To32(row, static_cast<size_t>(width), reinterpret_cast<uint8_t*>(pixels));
      break;
    case pf8bit:
      kernels::Row8To32(row, static_cast<size_t>(width), BytesOf(table),
                        reinterpret_cast<uint8_t*>(pixels));
      break;
    case pf1bit:
    case pf4bit:
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
      kernels::Row32To24(reinterpret_cast<const uint8_t*>(pixels), static_cast<size_t>(width), row);
      break;
    default:
      std::memcpy(row, pixels, static_cast<size_t>(width) * sizeof(RGBArec));
  }
}

void RowTo24(const uint8_t* row, TPixelFormat format, int width, const PixelTable& table,
             RGBrec* pixels) {
  switch (format) {
    case pf8bit:
      kernels::Row8To24(row, static_cast<size_t>(width), BytesOf(table),
                        reinterpret_cast<uint8_t*>(pixels));
      break;
    case pf1bit:
    case pf4bit:
      ForEachIndex(row, format, width, [&](int x, int index) {
        std::memcpy(&pixels[x], &table[static_cast<size_t>(index)], 3);
      });
      break;
    case pf15bit:
      kernels::Row555To24(row, static_cast<size_t>(width), reinterpret_cast<uint8_t*>(pixels));
      break;
    case pf16bit:
      kernels::Row565To24(row, static_cast<size_t>(width), reinterpret_cast<uint8_t*>(pixels));
      break;
    case pf24bit:
      std::memcpy(pixels, row, static_cast<size_t>(width) * 3);
      break;
    default:
      kernels::Row32To24(row, static_cast<size_t>(width), reinterpret_cast<uint8_t*>(pixels));
  }
}

}  // namespace rasterkit
