#pragma once

#include <rasterkit/codecs/jp2/jp2_plan.h>
#include <rasterkit/codecs/jp2/jp2_tiles.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// The picture that tiles are written to.
class Jp2Pixels {
 public:
  /// Allocates the pixels.
  Jp2Pixels(const Jp2File& file, const Jp2Plan& plan);

  /// Makes the pixels of a tile: coarser components are repeated, palettes and luminance with
  /// chroma become colors.
  void Put(const Jp2Tile& tile);
  /// Makes the pixels of a tile that the file lacks white, numbers the greatest one.
  void PutMissing(const Jp2Area& tile);

  Pixels Take();

 private:
  /// Numbers of one row of a tile, channel by channel.
  using Row = std::vector<std::vector<int32_t>>;

  Jp2Area PixelsOf(const Jp2Area& tile) const;
  void ReadRow(const Jp2Tile& tile, uint32_t y, const Jp2Area& area);
  void ReadChannel(const Jp2Tile& tile, const Jp2Channel& channel, uint32_t y, const Jp2Area& area,
                   std::vector<int32_t>& numbers) const;
  void FitChannel(const Jp2Channel& channel, bool isNumber, std::vector<int32_t>& numbers) const;
  void MixColors();
  void FillWhite();
  void WriteRow(int x, int y);
  void WriteIndexes(int x, int y);
  void WriteColors(int x, int y);
  void WriteSamples(int x, int y);

  const Jp2File& file_;
  const Jp2Plan& plan_;
  Row row_;
  Raster raster_;
  Samples samples_;
};

}  // namespace rasterkit::detail
