#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// One component of a codestream.
struct Jp2Component {
  /// Bits per sample, 1 to 38.
  int bits = 8;
  bool isSigned = false;
  /// Pixels of the reference grid from one sample to the next, 1 to 255.
  uint32_t stepX = 1, stepY = 1;
};

/// Exponents of the size of a precinct: blocks that are coded together.
struct Jp2Precinct {
  int width = 15, height = 15;
};

/// The main header of a codestream.
struct Jp2Codestream {
  /// Place in the file and bytes that are there.
  uint64_t at = 0, bytes = 0;
  /// Bytes in front of the first part of a tile.
  uint64_t headerBytes = 0;
  /// Picture and tiles on the reference grid.
  uint32_t left = 0, top = 0, right = 0, bottom = 0;
  uint32_t tileLeft = 0, tileTop = 0, tileWidth = 0, tileHeight = 0;
  std::vector<Jp2Component> components;
  /// The first three components are mixed.
  bool mixesColors = false;
  int layers = 1;
  /// Resolutions below the full one, 0 to 32.
  int levels = 0;
  /// Exponents of the sides of a code block.
  int blockWidth = 6, blockHeight = 6;
  /// For each resolution, the smallest one first; empty for the largest precincts.
  std::vector<Jp2Precinct> precincts;
  /// Texts, without those in which programs name themselves.
  std::vector<std::string> comments;

  uint64_t TilesAcross() const;
  uint64_t TilesDown() const;
  uint64_t Tiles() const { return TilesAcross() * TilesDown(); }
};

/// The bytes of a codestream without a header of a part of a tile that is cut off at its end: the
/// library would refuse the whole file for it.
uint64_t BytesOfWholeParts(TStream& stream, const Jp2Codestream& codestream);

/// Reads the main header of a codestream. Throws FormatError if it is damaged.
Jp2Codestream ReadJp2Codestream(TStream& stream, uint64_t at, uint64_t bytes);

}  // namespace rasterkit::detail
