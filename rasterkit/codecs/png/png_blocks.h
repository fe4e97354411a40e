#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// The chunks of a PNG file that hold metadata, by their place.
struct PngBlocks {
  std::vector<OtherBlock> beforePalette, beforePixels, behindPixels;
};

/// What the pixels of the file must agree with.
struct PngBlockRules {
  PngForm form;
  /// Entries of the palette; 0 without one.
  int paletteEntries = 0;
  /// True if the pixels are those of the source: everything that it stated about them holds.
  bool isCopy = false;
  /// The chunk iCCP of the source, which is kept if it holds the same profile.
  std::span<const uint8_t> sourceProfile;
};

/// Makes the chunks. What has no place in a PNG file is added to `changes`.
PngBlocks MakePngBlocks(const Metadata& metadata, const PngBlockRules& rules, Changes& changes);

/// Writes a chunk with its length and checksum.
void WritePngChunk(TStream& stream, uint32_t kind, std::span<const uint8_t> data);

/// The profile in a chunk iCCP; empty if it is damaged.
std::vector<uint8_t> ProfileOfPngChunk(std::span<const uint8_t> data);

}  // namespace rasterkit::detail
