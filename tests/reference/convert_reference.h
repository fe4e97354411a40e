#pragma once

#include <algorithm>
#include <optional>
#include <set>
#include <vector>

#include <rasterkit/raster/raster.h>

#include "tests/reference/gray.h"

/// Conversions between pixel formats written straight from their rules, a pixel at a time. Adaptive
/// palettes are skipped: which colors they choose is no rule.
namespace rasterkit::reference {

struct ReferencePixel {
  int index = 0;
  int red = 0, green = 0, blue = 0, alpha = 255;
};

inline ReferencePixel ReadPixel(const Raster& raster, int x, int y) {
  const uint8_t* row = raster.Row(y);
  ReferencePixel pixel;
  const auto fromWord = [&](int greenBits) {
    const int word = row[2 * x] + 256 * row[2 * x + 1];
    const int red = word / (32 << greenBits) % 32;
    const int green = word / 32 % (1 << greenBits);
    const int blue = word % 32;
    // The high bits of a channel are repeated below it.
    pixel.red = red * 8 + red / 4;
    pixel.green = greenBits == 6 ? green * 4 + green / 16 : green * 8 + green / 4;
    pixel.blue = blue * 8 + blue / 4;
  };
  switch (raster.Format()) {
    case pf1bit:
      pixel.index = row[x / 8] / (128 >> (x % 8)) % 2;
      break;
    case pf4bit:
      pixel.index = x % 2 == 0 ? row[x / 2] / 16 : row[x / 2] % 16;
      break;
    case pf8bit:
      pixel.index = row[x];
      break;
    case pf15bit:
      fromWord(5);
      break;
    case pf16bit:
      fromWord(6);
      break;
    case pf24bit:
      pixel.blue = row[3 * x];
      pixel.green = row[3 * x + 1];
      pixel.red = row[3 * x + 2];
      break;
    default:
      pixel.blue = row[4 * x];
      pixel.green = row[4 * x + 1];
      pixel.red = row[4 * x + 2];
      pixel.alpha = row[4 * x + 3];
  }
  if (IsIndexed(raster.Format()) && pixel.index < raster.palette.Count()) {
    const tagPALETTEENTRY entry = raster.palette.Entry(pixel.index);
    pixel.red = entry.peRed;
    pixel.green = entry.peGreen;
    pixel.blue = entry.peBlue;
  }
  return pixel;
}

/// The raster's rows must be zero before the first pixel is written.
inline void WritePixel(Raster& raster, int x, int y, const ReferencePixel& pixel) {
  uint8_t* row = raster.Row(y);
  const auto word = [&](int value) {
    row[2 * x] = static_cast<uint8_t>(value % 256);
    row[2 * x + 1] = static_cast<uint8_t>(value / 256);
  };
  switch (raster.Format()) {
    case pf1bit:
      row[x / 8] = static_cast<uint8_t>(row[x / 8] + (128 >> (x % 8)) * pixel.index);
      break;
    case pf4bit:
      row[x / 2] = static_cast<uint8_t>(row[x / 2] + (x % 2 == 0 ? 16 : 1) * pixel.index);
      break;
    case pf8bit:
      row[x] = static_cast<uint8_t>(pixel.index);
      break;
    case pf15bit:
      word(pixel.red / 8 * 1024 + pixel.green / 8 * 32 + pixel.blue / 8);
      break;
    case pf16bit:
      word(pixel.red / 8 * 2048 + pixel.green / 4 * 32 + pixel.blue / 8);
      break;
    default: {
      const int bytes = raster.Format() == pf24bit ? 3 : 4;
      row[bytes * x] = static_cast<uint8_t>(pixel.blue);
      row[bytes * x + 1] = static_cast<uint8_t>(pixel.green);
      row[bytes * x + 2] = static_cast<uint8_t>(pixel.red);
      if (bytes == 4) row[4 * x + 3] = static_cast<uint8_t>(pixel.alpha);
    }
  }
}

inline int Gray(const ReferencePixel& pixel) {
  return GrayInExtended(static_cast<uint8_t>(pixel.red), static_cast<uint8_t>(pixel.green),
                        static_cast<uint8_t>(pixel.blue));
}

inline int ColorNumber(const ReferencePixel& p) {
  return (p.red * 256 + p.green) * 256 + p.blue;
}

class Conversion {
 public:
  Conversion(const Raster& source, TPixelFormat format)
      : source_(source), target_(format, source.Width(), source.Height()) {
    for (int y = 0; y < target_.Height(); ++y)
      std::fill(target_.Row(y), target_.Row(y) + target_.Stride(), uint8_t{0});
  }

  /// Nothing where an adaptive palette is needed.
  std::optional<Raster> Run() {
    if (!IsIndexed(target_.Format())) {
      target_.palette = {};
      Map([](const ReferencePixel& pixel) { return pixel.index; });
    } else if (IsIndexed(source_.Format())) {
      if (!FromIndexed()) return std::nullopt;
    } else if (target_.Format() == pf1bit) {
      ToBlackAndWhite();
    } else if (!FromColors()) {
      return std::nullopt;
    }
    return std::move(target_);
  }

 private:
  int Limit() const {
    return target_.Format() == pf1bit ? 2 : target_.Format() == pf4bit ? 16 : 256;
  }

  template <class IndexOf>
  void Map(IndexOf indexOf) {
    for (int y = 0; y < source_.Height(); ++y) {
      for (int x = 0; x < source_.Width(); ++x) {
        ReferencePixel pixel = ReadPixel(source_, x, y);
        pixel.index = indexOf(pixel);
        WritePixel(target_, x, y, pixel);
      }
    }
  }

  void SetColors(const std::vector<int>& numbers) {
    std::vector<tagPALETTEENTRY> entries(static_cast<size_t>(Limit()));
    for (size_t i = 0; i < numbers.size(); ++i)
      entries[i] = {static_cast<uint8_t>(numbers[i] / 65536),
                    static_cast<uint8_t>(numbers[i] / 256 % 256),
                    static_cast<uint8_t>(numbers[i] % 256), 0};
    target_.palette = HPALETTE(entries);
  }

  void MapToNumbers(const std::vector<int>& numbers) {
    SetColors(numbers);
    Map([&](const ReferencePixel& pixel) {
      return static_cast<int>(std::ranges::find(numbers, ColorNumber(pixel)) - numbers.begin());
    });
  }

  void ToBlackAndWhite() {
    SetColors({0, 0xFFFFFF});
    Map([](const ReferencePixel& pixel) { return Gray(pixel) > 127 ? 1 : 0; });
  }

  bool FromIndexed() {
    std::set<int> used;
    std::vector<int> colors;
    for (int y = 0; y < source_.Height(); ++y)
      for (int x = 0; x < source_.Width(); ++x) used.insert(ReadPixel(source_, x, y).index);
    if (*used.rbegin() < Limit()) {
      std::vector<tagPALETTEENTRY> entries;
      for (int i = 0; i < Limit(); ++i) entries.push_back(source_.palette.Entry(i));
      target_.palette = HPALETTE(entries);
      Map([](const ReferencePixel& pixel) { return pixel.index; });
      return true;
    }
    for (const int index : used) {
      const tagPALETTEENTRY entry = source_.palette.Entry(index);
      const int number = (entry.peRed * 256 + entry.peGreen) * 256 + entry.peBlue;
      if (std::ranges::find(colors, number) == colors.end()) colors.push_back(number);
    }
    if (static_cast<int>(colors.size()) > Limit()) {
      if (target_.Format() == pf1bit) ToBlackAndWhite();
      return target_.Format() == pf1bit;
    }
    if (target_.Format() == pf1bit) ArrangeTwo(colors);
    MapToNumbers(colors);
    return true;
  }

  static ReferencePixel FromNumber(int number) {
    return {0, number / 65536, number / 256 % 256, number % 256, 255};
  }

  // Darker first; a single color beside the opposite of black and white.
  static void ArrangeTwo(std::vector<int>& colors) {
    if (colors.size() == 1) colors.push_back(Gray(FromNumber(colors[0])) > 127 ? 0 : 0xFFFFFF);
    const auto weight = [](int number) {
      const ReferencePixel p = FromNumber(number);
      return 297 * p.red + 589 * p.green + 114 * p.blue;
    };
    if (weight(colors[0]) > weight(colors[1])) std::swap(colors[0], colors[1]);
  }

  bool FromColors() {
    std::vector<int> colors;
    std::set<int> known;
    bool allGray = true;
    for (int y = 0; y < source_.Height(); ++y) {
      for (int x = 0; x < source_.Width(); ++x) {
        const ReferencePixel pixel = ReadPixel(source_, x, y);
        if (!known.insert(ColorNumber(pixel)).second) continue;
        colors.push_back(ColorNumber(pixel));
        allGray = allGray && pixel.red == pixel.green && pixel.green == pixel.blue;
      }
    }
    if (static_cast<int>(colors.size()) > Limit()) return false;
    if (allGray && target_.Format() == pf8bit) {
      colors.clear();
      for (int gray = 0; gray < 256; ++gray) colors.push_back(gray * 0x010101);
    }
    MapToNumbers(colors);
    return true;
  }

  const Raster& source_;
  Raster target_;
};

/// `source` (with pixels) in another format; nothing where an adaptive palette is needed.
inline std::optional<Raster> Convert(const Raster& source, TPixelFormat format) {
  return Conversion(source, format).Run();
}

}  // namespace rasterkit::reference
