#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// How pixels become a page of a TIFF file, with the numbers of the tags.
struct PagePlan {
  uint32_t width = 0, height = 0;
  PixelLayout layout;
  TiffForm form;
  uint16_t bits = 8, samples = 1, sampleFormat = 1;
  /// True if the bits of a raster are inverted: its black is 0, that of the page is 1.
  bool isInverted = false;
  /// Level of Deflate, 1 to 9; nothing for other compressions.
  std::optional<int> level;
  /// One for each sample that is no color.
  std::vector<uint16_t> extraSamples;
  /// All reds, then greens, then blues of a palette page, 16 bits each.
  std::vector<uint16_t> colorMap;

  bool IsTiled() const { return form.tileWidth > 0; }
  bool IsJpegOfColor() const;
  uint32_t BlockWidth() const { return IsTiled() ? form.tileWidth : width; }
  uint32_t BlockHeight() const { return IsTiled() ? form.tileHeight : form.rowsPerStrip; }
  uint32_t Across() const { return (width - 1) / BlockWidth() + 1; }
  uint32_t Down() const { return (height - 1) / BlockHeight() + 1; }
  uint32_t BlocksOfPlane() const { return Across() * Down(); }
  uint32_t Planes() const { return form.isPlanar ? samples : 1u; }
  uint32_t Blocks() const { return BlocksOfPlane() * Planes(); }
  /// Samples of a pixel within a block.
  uint32_t BlockSamples() const { return form.isPlanar ? 1u : samples; }
  /// Bytes of a row of a block as it is handed to the codec.
  uint64_t BlockRowBytes() const {
    return (uint64_t{BlockWidth()} * BlockSamples() * bits + 7) / 8;
  }
  /// Most bytes that the encoded blocks can take.
  uint64_t MostBytes() const;
};

/// Finds the form nearest to the wanted one that the pixels and the library allow; what differs
/// becomes a note. An empty form becomes the usual one. Throws UnsupportedError for pixels that
/// cannot be written.
PagePlan PlanPage(const Pixels& pixels, const Form& wanted, Changes& changes);
/// The same for pixels of the kind of `like`, whose rows have no meaning.
PagePlan PlanPage(const Pixels& like, WrittenSize size, const Form& wanted, Changes& changes);

}  // namespace rasterkit::detail
