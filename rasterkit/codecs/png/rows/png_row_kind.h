#pragma once

#include <cstdint>

#include <rasterkit/codecs/png/png_decoding.h>
#include <rasterkit/codecs/png/png_map.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// What the rows of a PNG file become.
enum class PngRowKind {
  /// A raster of 1 to 32 bits; see DecodePng.
  colors,
  /// Samples of 16 bits. A transparent color becomes an alpha channel, which says the same.
  words,
  /// A palette with several opacities: 32 bits with defined alpha.
  paletteAlpha
};

/// The kind that loses nothing. Throws FormatError if the header chunk is damaged.
PngRowKind PngRowKindOf(const PngMap& map);

/// A small picture with format and properties of the rows. Doubts go to the report.
Pixels PngRowsLike(const PngReader& reader, const PngFacts& facts, PngRowKind kind,
                   CodecReport& report);

/// Makes libpng deliver rows in this form, except for 2-bit samples: see ExpandTwoBits.
void RequestPngRows(PngReader& reader, const PngFacts& facts, PngRowKind kind);

/// True if the file marks a color as transparent and has no alpha channel.
bool HasPngKeyColor(const PngReader& reader, const PngFacts& facts);

/// Expands a row of 2-bit samples to 4-bit ones in place, from its end so that nothing is
/// overwritten unread. Samples beyond the last pixel go to the padding.
void ExpandTwoBits(uint8_t* row, int width);

}  // namespace rasterkit::detail
