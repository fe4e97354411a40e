#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include <rasterkit/graphics/bitmap.h>

#include "tests/support/test_pictures.h"

/// Random pictures with the typical colors of plans and photographs: white, almost white and black.
namespace rasterkit::test {

inline HPALETTE PaperPalette(int count, std::mt19937& random) {
  std::vector<tagPALETTEENTRY> entries(static_cast<size_t>(count));
  for (tagPALETTEENTRY& entry : entries) {
    const auto any = static_cast<uint8_t>(random());
    switch (random() % 6) {
      case 0:
        entry = {255, 255, 255, 0};
        break;
      case 1: {
        const uint8_t level = static_cast<uint8_t>(250 + random() % 6);
        entry = {level, static_cast<uint8_t>(250 + random() % 6), level, any};
        break;
      }
      case 2:
        entry = {0, 0, static_cast<uint8_t>(random() % 2), any};
        break;
      default:
        entry = {any, static_cast<uint8_t>(random()), static_cast<uint8_t>(random()), any};
    }
  }
  return HPALETTE(entries);
}

/// About `paper` of 8 pixels (in formats of 8 bits and more) are white, almost white, or black.
inline TBitmap PaperBitmap(TPixelFormat format, int width, int height, std::mt19937& random,
                           unsigned paper = 4) {
  TBitmap bitmap = RandomBitmap(format, width, height, random);
  const int bytes = bitmap.StoredBits() / 8;
  if (IsIndexed(format)) {
    // A palette may have fewer entries than the pixel format allows.
    const int room = 1 << bitmap.StoredBits();
    bitmap.SetPalette(
        PaperPalette(random() % 3 == 0 ? 1 + static_cast<int>(random() % room) : room, random));
  }
  if (bytes < 3) return bitmap;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      if (random() % 8 >= paper) continue;
      uint8_t* pixel = bitmap.ScanLine(y) + static_cast<ptrdiff_t>(x) * bytes;
      constexpr std::array<std::array<uint8_t, 3>, 8> kPaper{{{255, 255, 255},
                                                              {251, 251, 251},
                                                              {250, 255, 255},
                                                              {255, 250, 255},
                                                              {255, 255, 250},
                                                              {255, 255, 254},
                                                              {0, 0, 0},
                                                              {255, 255, 255}}};
      std::memcpy(pixel, kPaper[random() % kPaper.size()].data(), 3);
    }
  return bitmap;
}

}  // namespace rasterkit::test
