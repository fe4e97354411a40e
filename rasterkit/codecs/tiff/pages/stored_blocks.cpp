#include <algorithm>

#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/stored_blocks.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// Bytes of an uncompressed strip; 0 if the tags do not say.
uint64_t PlainBytes(const TagReader& reader, const TagDirectory& directory, uint64_t strip,
                    uint64_t strips) {
  const auto number = [&](uint16_t tag, uint64_t otherwise) {
    return reader.Integer(directory, tag, otherwise) & UINT32_MAX;
  };
  const bool isPlanar = number(TIFFTAG_PLANARCONFIG, 1) == PLANARCONFIG_SEPARATE;
  const bool isSubsampled = number(TIFFTAG_PHOTOMETRIC, 1) == PHOTOMETRIC_YCBCR;
  if (number(TIFFTAG_COMPRESSION, 1) != COMPRESSION_NONE || isSubsampled) return 0;
  const uint64_t samples = number(TIFFTAG_SAMPLESPERPIXEL, 1) & 0xFFFF;
  const uint64_t bits = number(TIFFTAG_BITSPERSAMPLE, 1) & 0xFFFF;
  const uint64_t width = number(TIFFTAG_IMAGEWIDTH, 0), height = number(TIFFTAG_IMAGELENGTH, 0);
  const uint64_t most = number(TIFFTAG_ROWSPERSTRIP, height);
  const uint64_t rowsPerStrip = std::min(most == 0 ? height : most, height);
  const uint64_t down = rowsPerStrip == 0 ? 0 : (height + rowsPerStrip - 1) / rowsPerStrip;
  if (down == 0 || strips != down * (isPlanar ? samples : 1)) return 0;
  const uint64_t y = strip % down * rowsPerStrip;
  const uint64_t rowBits = width * (isPlanar ? 1 : samples);
  if (bits == 0 || rowBits > UINT64_MAX / bits / 8) return 0;
  const uint64_t rowBytes = (rowBits * bits + 7) / 8;
  const uint64_t rows = std::min(rowsPerStrip, height - y);
  return rowBytes > UINT64_MAX / rows ? 0 : rowBytes * rows;
}

void FindCounts(const TagReader& reader, const TagDirectory& directory, StoredBlocks& blocks) {
  const size_t count = blocks.places.size();
  blocks.counts.assign(count, 0);
  for (size_t i = 0; i < count; i++) {
    if (blocks.places[i] == 0 || blocks.places[i] >= reader.Size()) continue;
    const uint64_t left = reader.Size() - blocks.places[i];
    const uint64_t plain =
        blocks.isTiled ? 0 : PlainBytes(reader, directory, i, blocks.places.size());
    if (plain == 0 && count > 1) {
      throw FormatError("TIFF: the sizes of the strips or tiles are missing");
    }
    // A codec stops by itself at the end of its data.
    blocks.counts[i] = plain > 0 ? plain : left;
  }
}

}  // namespace

StoredBlocks BlocksOf(const TagReader& reader, const TagDirectory& directory) {
  StoredBlocks blocks;
  blocks.isTiled = directory.Has(TIFFTAG_TILEOFFSETS);
  blocks.places =
      reader.Integers(directory, blocks.isTiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS);
  blocks.counts =
      reader.Integers(directory, blocks.isTiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS);
  const bool isOneWithoutSize = blocks.places.size() == 1 && !blocks.counts.empty() &&
                                blocks.counts[0] == 0 && blocks.places[0] != 0;
  if (blocks.counts.size() < blocks.places.size() || isOneWithoutSize) {
    FindCounts(reader, directory, blocks);
  }
  blocks.counts.resize(blocks.places.size());
  return blocks;
}

}  // namespace rasterkit::detail
