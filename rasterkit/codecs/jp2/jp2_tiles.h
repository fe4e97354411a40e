#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <rasterkit/codecs/jp2/jp2_codestream.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A rectangle of a grid, without its right column and bottom row.
struct Jp2Area {
  uint32_t left = 0, top = 0, right = 0, bottom = 0;

  uint32_t Width() const { return right - left; }
  uint32_t Height() const { return bottom - top; }
  /// The samples of a component, or the pixels, within this part of the reference grid.
  Jp2Area Every(uint32_t stepX, uint32_t stepY) const;
};

/// The samples of one component within a tile.
struct Jp2TilePlane {
  Jp2Area area;
  /// 1, 2 or 4 bytes per sample in the byte order of the processor.
  int sampleBytes = 1;
  bool isSigned = false;
  std::span<const uint8_t> samples;

  int32_t At(uint32_t x, uint32_t y) const;
};

/// A decoded tile.
struct Jp2Tile {
  uint64_t index = 0;
  /// On the reference grid.
  Jp2Area area;
  std::vector<Jp2TilePlane> planes;
};

/// Part of the reference grid that a tile covers, without what lies outside of the picture.
Jp2Area TileArea(const Jp2Codestream& codestream, uint64_t index);

/// Bytes that the decoder takes at most besides the picture.
uint64_t TileReaderBytes(const Jp2Codestream& codestream);

/// Decodes the tiles of a codestream, in the order in which the file has them. Missing data are
/// reported as damage.
class Jp2TileReader {
 public:
  Jp2TileReader(TStream& stream, const Jp2Codestream& codestream, int threads, CodecReport& report);
  ~Jp2TileReader();
  Jp2TileReader(const Jp2TileReader&) = delete;
  Jp2TileReader& operator=(const Jp2TileReader&) = delete;

  /// Reads the next tile; the last one is lost. False after the last one. Throws FormatError if the
  /// header is damaged.
  bool Next(Jp2Tile& tile);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit::detail
