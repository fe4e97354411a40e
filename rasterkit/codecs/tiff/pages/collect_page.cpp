#include <algorithm>
#include <array>
#include <numeric>

#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/jpeg_end.h>
#include <rasterkit/codecs/tiff/pages/page_copy.h>
#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/pages/tag_kinds.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

constexpr uint64_t kQuantizationBytes = 64, kHuffmanCounts = 16;
constexpr uint64_t kMostTableCount = 64;
/// Places of strips are numbers of two bytes or more.
constexpr uint64_t kLeastEntryBytes = 2;
/// Values of smaller copies may share bytes in a forged file.
constexpr uint64_t kSpareBytes = 1 << 20;
/// Directories that lead to each other.
constexpr int kMostDepth = 64;
/// Of a BigTIFF file: an entry, the count and the link of a directory with the bytes that make
/// places even.
constexpr uint64_t kEntryBytes = 20, kDirectoryBytes = 24;

bool IsTableList(uint16_t tag) {
  return tag == TIFFTAG_JPEGQTABLES || tag == TIFFTAG_JPEGDCTABLES || tag == TIFFTAG_JPEGACTABLES;
}

/// Of the metadata that is written anew.
bool IsOfMetadata(uint16_t tag) {
  return tag == TIFFTAG_EXIFIFD || tag == TIFFTAG_GPSIFD || tag == kInteropPointer;
}

}  // namespace

CopiedSource::CopiedSource(const TagReader& reader) : left(2 * reader.Size() + kSpareBytes) {}

void PageCopier::Charge(uint64_t bytes) {
  if (bytes > source_.left) throw FormatError("TIFF: directories of the file share their values");
  source_.left -= bytes;
}

bool PageCopier::IsWrittenAnew(const TagPlace& place) const {
  if (LeadsToDirectory(place.tag, place.type)) return IsOfMetadata(place.tag);
  return KindOfTag(place.tag) != TagKind::structure;
}

bool PageCopier::IsOldJpeg(const TagDirectory& directory) const {
  return reader_.Integer(directory, TIFFTAG_COMPRESSION, 1) == COMPRESSION_OJPEG;
}

void PageCopier::Collect(const TagDirectory& first, std::span<const uint64_t> following) {
  source_.moved.Begin();
  first_ = first;
  following_.assign(following.begin(), following.end());
  isFollowing_ = {following.begin(), following.end()};
  CollectDirectory(first_);
  for (const uint64_t at : following_) CollectAt(at);
  if (writing_) {
    tags_ = TagsOfMetadata(*writing_, {FactsOfPage(reader_, first_).layout.model, true, true},
                           changes_);
  }
}

void PageCopier::CollectDirectory(const TagDirectory& directory) {
  if (!collected_.insert(directory.at).second) return;
  RequireTime();
  Charge(directory.entryBytes);
  const StoredBlocks blocks = BlocksOf(reader_, directory);
  if (blocks.isSizeUnknown && chain_ && chain_->Pages() > 1) {
    throw FormatError("TIFF: the size of a strip or tile is missing");
  }
  // Directories with lists of their own cannot exceed this.
  source_.listed += blocks.places.size() * kLeastEntryBytes;
  if (source_.listed > reader_.Size()) {
    throw FormatError("TIFF: directories of the file share their lists of strips");
  }
  tagBytes_ += kDirectoryBytes + blocks.places.size() * 2 * sizeof(uint64_t);
  for (size_t i = 0; i < blocks.places.size(); i++) {
    if (blocks.places[i] != 0) {
      source_.moved.Add(reader_, blocks.places[i], blocks.counts[i]);
    }
  }
  CollectJpegFile(directory, blocks);
  if (IsOldJpeg(directory)) CollectJpegTables(directory);
  const bool isMain = IsMain(directory);
  for (const TagPlace& place : directory.tags) {
    // Values become even, and pointers become wide.
    tagBytes_ +=
        kEntryBytes + (LeadsToDirectory(place.tag, place.type) ? 2 : 1) * place.Bytes() + 1;
    if (!LeadsToDirectory(place.tag, place.type) || (isMain && IsWrittenAnew(place))) continue;
    Charge(place.Bytes());
    for (const uint64_t at : reader_.Integers(place)) CollectAt(at);
  }
}

void PageCopier::CollectAt(uint64_t at) {
  if (collected_.contains(at)) return;
  if (depth_ >= kMostDepth) throw FormatError("TIFF: directories lead to each other too often");
  depth_++;
  if (const auto directory = reader_.Directory(at)) CollectDirectory(*directory);
  depth_--;
}

/// A directory can lead to a whole JPEG file.
void PageCopier::CollectJpegFile(const TagDirectory& directory, const StoredBlocks& blocks) {
  const uint64_t at = reader_.Integer(directory, TIFFTAG_JPEGIFOFFSET, 0);
  if (at == 0 || at >= reader_.Size()) return;
  const uint64_t stated = reader_.Integer(directory, TIFFTAG_JPEGIFBYTECOUNT, 0);
  const uint64_t end = JpegEnd(reader_, at, !blocks.places.empty());
  const uint64_t count = stated != 0 ? stated : end > at ? end - at : 0;
  source_.moved.Add(reader_, at, std::min(count, reader_.Size() - at));
}

/// Old-style JPEG can have its tables beside its strips.
void PageCopier::CollectJpegTables(const TagDirectory& directory) {
  for (const TagPlace& place : directory.tags) {
    if (!IsTableList(place.tag)) continue;
    for (const uint64_t table : reader_.Integers(place, kMostTableCount)) {
      if (table == 0) continue;
      uint64_t bytes = kQuantizationBytes;
      if (place.tag != TIFFTAG_JPEGQTABLES) {
        std::array<uint8_t, kHuffmanCounts> counts{};
        if (!reader_.ReadAt(table, counts)) continue;
        bytes = std::accumulate(counts.begin(), counts.end(), kHuffmanCounts);
      }
      if (table < reader_.Size()) {
        source_.moved.Add(reader_, table, std::min(bytes, reader_.Size() - table));
      }
    }
  }
}

uint64_t PageCopier::MostBytes() {
  uint64_t bytes = tagBytes_ + source_.moved.Total();
  for (const auto* values : {&tags_.main, &tags_.exif, &tags_.gps, &tags_.interop}) {
    bytes += kDirectoryBytes;
    for (const TagValue& value : *values) bytes += value.bytes.size() + kEntryBytes + 1;
  }
  return bytes + kEntryBytes * 3;
}

}  // namespace rasterkit::detail
