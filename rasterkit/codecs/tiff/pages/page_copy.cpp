#include <algorithm>
#include <numeric>
#include <optional>
#include <unordered_set>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/moved_bytes.h>
#include <rasterkit/codecs/tiff/pages/page_directory.h>
#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/stored_blocks.h>
#include <rasterkit/codecs/tiff/pages/tag_kinds.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using namespace detail;

constexpr uint64_t kQuantizationBytes = 64, kHuffmanCounts = 16;
constexpr uint64_t kMostTableCount = 64;
/// Places of strips are numbers of two bytes or more.
constexpr uint64_t kLeastEntryBytes = 2;
/// Values of smaller copies may share bytes in a forged file.
constexpr uint64_t kSpareBytes = 1 << 20;

bool IsTableList(uint16_t tag) {
  return tag == TIFFTAG_JPEGQTABLES || tag == TIFFTAG_JPEGDCTABLES || tag == TIFFTAG_JPEGACTABLES;
}

/// Metadata that a smaller copy of the page can have of its own.
bool IsMetadataOfCopy(uint16_t tag) {
  return tag == TIFFTAG_EXIFIFD || tag == TIFFTAG_GPSIFD || tag == TIFFTAG_XMLPACKET ||
         tag == TIFFTAG_RICHTIFFIPTC || tag == TIFFTAG_PHOTOSHOP;
}

bool LeadsToDirectory(uint16_t tag) {
  return KindOfTag(tag) == TagKind::pointer;
}

/// Copies a page with its smaller copies and masks.
class PageCopier {
 public:
  PageCopier(const TagReader& reader, TStream& target, const PictureWriting& writing)
      : reader_(reader),
        target_(target),
        writing_(writing),
        left_(2 * reader.Size() + kSpareBytes) {}

  WrittenPicture Copy() {
    const auto first = reader_.Directory(reader_.First());
    if (!first) throw FormatError("TIFF: the first directory cannot be read");
    const PageFacts facts = FactsOfPage(reader_, *first);
    WrittenPicture written;
    written.form = facts.form;
    written.layout = facts.layout;
    const PageFamily family = FamilyOf(reader_, *first);
    Collect(*first);
    for (const uint64_t at : family.following) CollectAt(at);
    const PageTags tags =
        TagsOfMetadata(writing_, {facts.layout.model, true, true}, written.changes);
    const bool isBig = reader_.IsBig() || moved_.Total() + BytesOfTags(tags) > UINT32_MAX;
    if (isBig != reader_.IsBig()) {
      std::get<TiffForm>(written.form).isBigTiff = true;
      written.changes.Note("written as a BigTIFF file, which exceeds 4 GiB");
    }
    file_.emplace(target_, isBig, reader_.IsBigEndian());
    moved_.Copy(reader_, *file_);
    WriteAll(*first, family, tags, written.changes);
    return written;
  }

 private:
  uint64_t BytesOfTags(const PageTags& tags) const {
    uint64_t bytes = kSpareBytes + std::min(reader_.Size(), left_);
    for (const auto* values : {&tags.main, &tags.exif, &tags.gps, &tags.interop}) {
      for (const TagValue& value : *values) bytes += value.bytes.size() + 32;
    }
    return bytes;
  }

  void Collect(const TagDirectory& directory);
  void CollectAt(uint64_t at);
  void CollectOldJpeg(const TagDirectory& directory, const StoredBlocks& blocks);
  void WriteAll(const TagDirectory& first, const PageFamily& family, const PageTags& tags,
                Changes& changes);
  TagMap Structure(const TagDirectory& directory, bool isMain, Changes& changes);
  void MoveBlocks(const TagDirectory& directory, TagMap& tags);
  void MoveOldJpeg(TagMap& tags);
  TagValue Take(const TagPlace& place);
  TagValue CopyBelow(const TagPlace& pointer, Changes& changes);
  std::optional<TagFileWriter::Written> CopyDirectory(uint64_t at, Changes& changes);

  const TagReader& reader_;
  TStream& target_;
  const PictureWriting& writing_;
  /// Bytes of values that may still be copied from the source.
  uint64_t left_;
  MovedBytes moved_;
  std::optional<TagFileWriter> file_;
  /// Bytes that the lists of strips and tiles take at least.
  uint64_t listed_ = 0;
  std::unordered_set<uint64_t> collected_, copied_;
};

void PageCopier::Collect(const TagDirectory& directory) {
  if (!collected_.insert(directory.at).second) return;
  RequireTime();
  const StoredBlocks blocks = BlocksOf(reader_, directory);
  // Directories with lists of their own cannot exceed this.
  listed_ += blocks.places.size() * kLeastEntryBytes;
  if (listed_ > reader_.Size()) {
    throw FormatError("TIFF: directories of the file share their lists of strips");
  }
  for (size_t i = 0; i < blocks.places.size(); i++) {
    if (blocks.places[i] != 0) moved_.Add(reader_, blocks.places[i], blocks.counts[i]);
  }
  CollectOldJpeg(directory, blocks);
  for (const TagPlace& place : directory.tags) {
    if (!LeadsToDirectory(place.tag)) continue;
    // Directories of the page's own metadata are written anew.
    const bool isOfMain = directory.at == reader_.First();
    if (isOfMain && place.tag != TIFFTAG_SUBIFD) continue;
    constexpr uint64_t kMostDirectories = 256;
    for (const uint64_t at : reader_.Integers(place, kMostDirectories)) CollectAt(at);
  }
}

void PageCopier::CollectAt(uint64_t at) {
  constexpr size_t kMostDirectories = 1024;
  if (collected_.size() >= kMostDirectories) return;
  if (const auto directory = reader_.Directory(at)) Collect(*directory);
}

/// Old-style JPEG has a whole JPEG file, or tables, beside its strips.
void PageCopier::CollectOldJpeg(const TagDirectory& directory, const StoredBlocks& blocks) {
  if (reader_.Integer(directory, TIFFTAG_COMPRESSION, 1) != COMPRESSION_OJPEG) return;
  const uint64_t at = reader_.Integer(directory, TIFFTAG_JPEGIFOFFSET, 0);
  if (at != 0 && at < reader_.Size()) {
    const uint64_t left = reader_.Size() - at;
    const uint64_t count = reader_.Integer(directory, TIFFTAG_JPEGIFBYTECOUNT, 0);
    // Without a size, the JPEG file ends with the strips that lie in it.
    uint64_t end = at;
    for (size_t i = 0; i < blocks.places.size(); i++) {
      end = std::max(end, blocks.places[i] + blocks.counts[i]);
    }
    const uint64_t stripsEnd = end > at ? end - at : left;
    moved_.Add(reader_, at, std::min(count == 0 ? stripsEnd : count, left));
  }
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
        moved_.Add(reader_, table, std::min(bytes, reader_.Size() - table));
      }
    }
  }
}

TagValue PageCopier::Take(const TagPlace& place) {
  if (place.Bytes() > left_) throw FormatError("TIFF: directories of the file share their values");
  left_ -= place.Bytes();
  return reader_.Value(place);
}

void PageCopier::MoveBlocks(const TagDirectory& directory, TagMap& tags) {
  StoredBlocks blocks = BlocksOf(reader_, directory);
  if (blocks.places.empty()) return;
  for (uint64_t& place : blocks.places) place = moved_.PlaceOf(place);
  const uint16_t places = blocks.isTiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS;
  const uint16_t counts = blocks.isTiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS;
  tags[places] = file_->PlacesTag(places, blocks.places);
  tags[counts] = file_->PlacesTag(counts, blocks.counts);
}

void PageCopier::MoveOldJpeg(TagMap& tags) {
  for (auto& [tag, value] : tags) {
    if (tag != TIFFTAG_JPEGIFOFFSET && !IsTableList(tag)) continue;
    std::vector<uint64_t> places;
    const auto unit = static_cast<size_t>(TagUnitBytes(value.type));
    for (size_t at = 0; at + unit <= value.bytes.size(); at += unit) {
      uint64_t place = 0;
      for (size_t i = unit; i-- > 0;) place = place << 8 | value.bytes[at + i];
      places.push_back(moved_.PlaceOf(place));
    }
    value = file_->PlacesTag(tag, places);
  }
}

TagMap PageCopier::Structure(const TagDirectory& directory, bool isMain, Changes& changes) {
  TagMap tags;
  for (const TagPlace& place : directory.tags) {
    if (place.tag == TIFFTAG_FREEOFFSETS || place.tag == TIFFTAG_FREEBYTECOUNTS) continue;
    // It could state what was to be removed.
    if (!isMain && writing_.dropsHidden && IsMetadataOfCopy(place.tag)) continue;
    if (LeadsToDirectory(place.tag)) {
      if (isMain && place.tag != TIFFTAG_SUBIFD) continue;
      TagValue pointers = CopyBelow(place, changes);
      if (pointers.count > 0) tags[place.tag] = std::move(pointers);
      continue;
    }
    const bool isBlockTag = place.tag == TIFFTAG_STRIPOFFSETS ||
                            place.tag == TIFFTAG_STRIPBYTECOUNTS ||
                            place.tag == TIFFTAG_TILEOFFSETS || place.tag == TIFFTAG_TILEBYTECOUNTS;
    if (isBlockTag || (isMain && KindOfTag(place.tag) != TagKind::structure)) continue;
    tags[place.tag] = Take(place);
  }
  MoveBlocks(directory, tags);
  if (reader_.Integer(directory, TIFFTAG_COMPRESSION, 1) == COMPRESSION_OJPEG) MoveOldJpeg(tags);
  return tags;
}

TagValue PageCopier::CopyBelow(const TagPlace& pointer, Changes& changes) {
  std::vector<uint64_t> places;
  constexpr uint64_t kMostDirectories = 256;
  for (const uint64_t at : reader_.Integers(pointer, kMostDirectories)) {
    if (const auto written = CopyDirectory(at, changes)) places.push_back(written->at);
  }
  return file_->PointersTag(pointer.tag, places);
}

/// Each directory is copied once, so that circles end.
std::optional<TagFileWriter::Written> PageCopier::CopyDirectory(uint64_t at, Changes& changes) {
  if (!collected_.contains(at) || !copied_.insert(at).second) return std::nullopt;
  RequireTime();
  const auto directory = reader_.Directory(at);
  if (!directory) return std::nullopt;
  const TagMap tags = Structure(*directory, false, changes);
  return file_->WriteDirectory(tags, changes);
}

void PageCopier::WriteAll(const TagDirectory& first, const PageFamily& family, const PageTags& tags,
                          Changes& changes) {
  copied_.insert(first.at);
  TagMap main = Structure(first, true, changes);
  const Resolution& wanted = writing_.metadata.resolution;
  if (!wanted.IsKnown() || wanted == ResolutionOfPage(reader_, first)) {
    // Whatever the unit is; without one the numbers are the aspect ratio of a pixel.
    for (const uint16_t tag : {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION, TIFFTAG_RESOLUTIONUNIT}) {
      const TagPlace* place = first.Find(tag);
      if (place) main[tag] = Take(*place);
    }
  }
  AddPageTags(tags, *file_, main, changes);
  // Inches are the unit of a file that states none.
  const bool hasNoUnit = first.Has(TIFFTAG_XRESOLUTION) && !first.Has(TIFFTAG_RESOLUTIONUNIT);
  if (hasNoUnit && wanted == ResolutionOfPage(reader_, first)) main.erase(TIFFTAG_RESOLUTIONUNIT);
  const TagFileWriter::Written page = file_->WriteDirectory(main, changes);
  file_->Link(file_->FirstLinkAt(), page.at);
  uint64_t linkAt = page.linkAt;
  for (const uint64_t at : family.following) {
    if (const auto written = CopyDirectory(at, changes)) {
      file_->Link(linkAt, written->at);
      linkAt = written->linkAt;
    }
  }
  file_->Finish();
}

}  // namespace

WrittenPicture CopyTiff(TStream& source, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  std::optional<TMemoryStream> memory;
  if (source.Size() <= source.Position()) memory.emplace(source.ReadToEnd());
  const TagReader reader(memory ? *memory : source);
  if (IsSeekable(stream)) return PageCopier(reader, stream, writing).Copy();
  // The header is completed last.
  TMemoryStream whole;
  WrittenPicture written = PageCopier(reader, whole, writing).Copy();
  stream.Write(whole.Bytes());
  return written;
}

}  // namespace rasterkit
