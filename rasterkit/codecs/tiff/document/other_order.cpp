#include <algorithm>
#include <unordered_set>

#include <tiff.h>

#include <rasterkit/codecs/tiff/document/other_order.h>
#include <rasterkit/codecs/tiff/pages/tag_kinds.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

constexpr size_t kMostDirectories = 1024;
constexpr uint64_t kMostSamples = 65535;

bool IsByteStream(uint64_t compression) {
  switch (compression) {
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
    case COMPRESSION_CCITTFAX3:
    case COMPRESSION_CCITTFAX4:
    case COMPRESSION_OJPEG:
    case COMPRESSION_JPEG:
    case COMPRESSION_JBIG:
    case COMPRESSION_JP2000:
    case COMPRESSION_WEBP:
      return true;
    default:
      return false;
  }
}

/// Those of plain samples, packed by bytes.
bool KeepsSamples(uint64_t compression) {
  switch (compression) {
    case COMPRESSION_NONE:
    case COMPRESSION_LZW:
    case COMPRESSION_PACKBITS:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_LZMA:
    case COMPRESSION_ZSTD:
      return true;
    default:
      return false;
  }
}

bool FitsAlone(const TagReader& reader, const TagDirectory& directory) {
  if (!directory.Has(TIFFTAG_STRIPOFFSETS) && !directory.Has(TIFFTAG_TILEOFFSETS)) return true;
  const uint64_t compression =
      reader.Integer(directory, TIFFTAG_COMPRESSION, COMPRESSION_NONE) & UINT16_MAX;
  if (IsByteStream(compression)) return true;
  if (!KeepsSamples(compression)) return false;
  const auto bits = reader.Integers(directory, TIFFTAG_BITSPERSAMPLE, kMostSamples);
  return std::all_of(bits.begin(), bits.end(), [](uint64_t count) { return count <= 8; });
}

}  // namespace

bool FitsOtherOrder(const TagReader& reader, const TagDirectory& first,
                    std::span<const uint64_t> following) {
  std::vector<uint64_t> waiting(following.begin(), following.end());
  waiting.push_back(first.at);
  std::unordered_set<uint64_t> seen;
  while (!waiting.empty()) {
    const uint64_t at = waiting.back();
    waiting.pop_back();
    if (!seen.insert(at).second) continue;
    RequireTime();
    if (seen.size() > kMostDirectories) return false;
    const auto directory = reader.Directory(at);
    if (!directory) continue;
    if (!FitsAlone(reader, *directory)) return false;
    for (const TagPlace& place : directory->tags) {
      if (!LeadsToDirectory(place.tag, place.type)) continue;
      const auto below = reader.Integers(place, kMostDirectories);
      waiting.insert(waiting.end(), below.begin(), below.end());
    }
  }
  return true;
}

}  // namespace rasterkit::detail
