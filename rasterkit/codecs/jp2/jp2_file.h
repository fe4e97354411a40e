#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/jp2/jp2_codestream.h>
#include <rasterkit/metadata/color_profile.h>
#include <rasterkit/metadata/resolution.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Numbers of color spaces in a file.
enum Jp2ColorSpace : uint32_t {
  kJp2Cmyk = 12,
  kJp2Lab = 14,
  kJp2Srgb = 16,
  kJp2Gray = 17,
  kJp2Ycc = 18,
  kJp2WideYcc = 24
};

/// A palette of up to 1024 entries.
struct Jp2Palette {
  size_t entries = 0;
  /// Bits and sign of each column.
  std::vector<Jp2Component> columns;
  /// Entry by entry.
  std::vector<int32_t> numbers;

  int32_t Number(size_t entry, size_t column) const {
    return numbers[entry * columns.size() + column];
  }
};

/// A channel made from a component, through a column of the palette if there is one.
struct Jp2Mapping {
  uint16_t component = 0;
  std::optional<uint8_t> column;
};

/// What a channel means.
struct Jp2Definition {
  /// `type` 0 color, 1 opacity, 2 opacity of multiplied colors; `color` counts from 1, 0 is the
  /// whole picture.
  uint16_t channel = 0, type = 0, color = 0;
};

/// All that a JPEG 2000 file states in front of its compressed pixels and behind them.
struct Jp2File {
  Jp2Codestream codestream;
  /// Pictures in the file.
  int codestreams = 1;
  std::optional<uint32_t> colorSpace;
  ColorProfile profile;
  Jp2Palette palette;
  std::vector<Jp2Mapping> mappings;
  std::vector<Jp2Definition> definitions;
  Resolution resolution;
  /// A TIFF file without pixels that states the position; a TIFF block of EXIF tags.
  std::vector<uint8_t> geoTiff, exif;
  std::string xmp;
  std::vector<uint8_t> iptc;
  /// Boxes that have no place elsewhere.
  std::vector<std::string> others;
  /// Name of a position that is not read.
  std::string unreadPosition;
  std::vector<std::string> warnings;
};

/// Reads a file of boxes or a raw codestream from the stream's position. Throws FormatError if it
/// has no codestream, UnsupportedError for a codestream that is spread over files.
Jp2File ReadJp2File(TStream& stream);

}  // namespace rasterkit::detail
