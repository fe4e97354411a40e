#include <algorithm>

#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/stored_blocks.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

/// Bytes of uncompressed blocks; 0 if the tags do not say.
class PlainSizes {
 public:
  PlainSizes(const TagReader& reader, const TagDirectory& directory, bool isTiled,
             uint64_t blocks) {
    const auto number = [&](uint16_t tag, uint64_t otherwise) {
      return reader.Integer(directory, tag, otherwise) & UINT32_MAX;
    };
    const bool isSubsampled = number(TIFFTAG_PHOTOMETRIC, 1) == PHOTOMETRIC_YCBCR;
    if (number(TIFFTAG_COMPRESSION, 1) != COMPRESSION_NONE || isSubsampled) return;
    const bool isPlanar = number(TIFFTAG_PLANARCONFIG, 1) == PLANARCONFIG_SEPARATE;
    const uint64_t samples = number(TIFFTAG_SAMPLESPERPIXEL, 1) & 0xFFFF;
    const uint64_t bits = number(TIFFTAG_BITSPERSAMPLE, 1) & 0xFFFF;
    const uint64_t width = number(isTiled ? TIFFTAG_TILEWIDTH : TIFFTAG_IMAGEWIDTH, 0);
    height_ = number(isTiled ? TIFFTAG_TILELENGTH : TIFFTAG_IMAGELENGTH, 0);
    const uint64_t most = isTiled ? height_ : number(TIFFTAG_ROWSPERSTRIP, height_);
    rows_ = std::min(most == 0 ? height_ : most, height_);
    down_ = rows_ == 0 ? 0 : (height_ + rows_ - 1) / rows_;
    const uint64_t rowSamples = width * (isPlanar ? 1 : samples);
    const bool isKnown = bits > 0 && down_ > 0 && rowSamples <= UINT64_MAX / bits / 8 &&
                         (isTiled || blocks == down_ * (isPlanar ? samples : 1));
    if (isKnown) rowBytes_ = (rowSamples * bits + 7) / 8;
  }

  uint64_t OfBlock(uint64_t block) const {
    if (rowBytes_ == 0) return 0;
    const uint64_t rows = std::min(rows_, height_ - block % down_ * rows_);
    return rowBytes_ > UINT64_MAX / rows ? 0 : rowBytes_ * rows;
  }

 private:
  uint64_t rowBytes_ = 0, rows_ = 0, height_ = 0, down_ = 1;
};

/// A codec stops by itself at the end of its data: a single block may reach to the end of the file.
void FindCounts(const TagReader& reader, const PlainSizes& sizes, StoredBlocks& blocks) {
  const size_t count = blocks.places.size();
  blocks.counts.assign(count, 0);
  for (size_t i = 0; i < count; i++) {
    if (blocks.places[i] == 0 || blocks.places[i] >= reader.Size()) continue;
    const uint64_t plain = sizes.OfBlock(i);
    if (plain == 0 && count > 1) {
      throw FormatError("TIFF: the sizes of the strips or tiles are missing");
    }
    blocks.isSizeUnknown = plain == 0;
    blocks.counts[i] = plain > 0 ? plain : reader.Size() - blocks.places[i];
  }
}

/// Some writers state more bytes than rows need, even beyond the end of the file.
void TrimCounts(const TagReader& reader, const PlainSizes& sizes, StoredBlocks& blocks) {
  for (size_t i = 0; i < blocks.places.size(); i++) {
    const uint64_t plain = sizes.OfBlock(i);
    const bool isBeyond =
        blocks.places[i] > reader.Size() || blocks.counts[i] > reader.Size() - blocks.places[i];
    if (isBeyond && plain > 0) blocks.counts[i] = std::min(blocks.counts[i], plain);
  }
}

}  // namespace

StoredBlocks BlocksOf(const TagReader& reader, const TagDirectory& directory) {
  StoredBlocks blocks;
  blocks.isTiled = directory.Has(TIFFTAG_TILEOFFSETS);
  for (const uint16_t tag : {TIFFTAG_TILEOFFSETS, TIFFTAG_TILEBYTECOUNTS, TIFFTAG_STRIPOFFSETS,
                             TIFFTAG_STRIPBYTECOUNTS}) {
    const TagPlace* place = directory.Find(tag);
    if (!place) continue;
    RequirePictureMemory(2 * sizeof(uint64_t) * place->count, "TIFF: the list of strips and tiles");
  }
  blocks.places =
      reader.Integers(directory, blocks.isTiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS);
  blocks.counts =
      reader.Integers(directory, blocks.isTiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS);
  const PlainSizes sizes(reader, directory, blocks.isTiled, blocks.places.size());
  const bool isOneWithoutSize = blocks.places.size() == 1 && !blocks.counts.empty() &&
                                blocks.counts[0] == 0 && blocks.places[0] != 0;
  if (blocks.counts.size() < blocks.places.size() || isOneWithoutSize) {
    FindCounts(reader, sizes, blocks);
  }
  blocks.counts.resize(blocks.places.size());
  TrimCounts(reader, sizes, blocks);
  return blocks;
}

}  // namespace rasterkit::detail
