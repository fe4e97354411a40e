#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include <rasterkit/codecs/png/png_reader.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/metadata/resolution.h>

/// Steps of decoding a PNG file that do not depend on what the rows become.
namespace rasterkit::detail {

/// The header of a file that libpng has open.
struct PngFacts {
  uint32_t width = 0, height = 0;
  int bitDepth = 0, colorType = 0;
  bool interlaced = false;

  bool IsPalette() const { return colorType == PNG_COLOR_TYPE_PALETTE; }
  bool IsGray() const { return colorType == PNG_COLOR_TYPE_GRAY; }
  bool HasAlpha() const { return (colorType & PNG_COLOR_MASK_ALPHA) != 0; }
  /// Bits per pixel in the file.
  unsigned SampleBits() const {
    const bool isColor = !IsPalette() && (colorType & PNG_COLOR_MASK_COLOR) != 0;
    return static_cast<unsigned>(bitDepth * ((isColor ? 3 : 1) + (HasAlpha() ? 1 : 0)));
  }
};

/// Reads everything before the pixels. `isTruncated`: see PngMap.
PngFacts ReadPngFacts(PngReader& reader, bool isTruncated);

/// Refuses pictures that are too large before anything of their size is allocated. `need` is their
/// size in memory, `held` the part of it that is there at a time.
void RequirePngSize(const PngFacts& facts, uint64_t need, uint64_t held, uint64_t fileBytes);

Resolution PngResolution(const PngReader& reader);
/// The profile; null if there is none or if it does not describe such pixels.
ColorProfile PngProfile(const PngReader& reader, ProfileSpace space);

/// True if libpng failed because the data of the pixels end early.
bool EndsEarly(const PngReader& reader);

/// Reads the rows of an interlaced picture to the end of the data; returns the first missing row.
/// The passes paint whole blocks, so that a truncated file gives a coarse picture without holes.
int ReadPngPasses(PngReader& reader, const PngFacts& facts,
                  const std::function<uint8_t*(int y)>& rowAt);

/// Checks the rest of the file: a wrong checksum is an error, an early end is not.
void CheckPngEnd(PngReader& reader);

/// Adds to the report what is missing. `rows` are complete.
void NotePngDamage(const PngReader& reader, const PngFacts& facts, int rows, CodecReport& report);

}  // namespace rasterkit::detail
