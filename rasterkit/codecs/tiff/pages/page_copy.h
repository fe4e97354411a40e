#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/tiff/pages/moved_bytes.h>
#include <rasterkit/codecs/tiff/pages/page_chain.h>
#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/stored_blocks.h>
#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::detail {

/// What is known about a source while pages of it are copied into one file. Pages of a forged file
/// may share bytes: shared strips and large values are copied once, and everything else is counted,
/// so that the copies of all pages do not outgrow a multiple of the source.
struct CopiedSource {
  explicit CopiedSource(const TagReader& reader);

  MovedBytes moved;
  /// Bytes of directories and values that may still be copied.
  uint64_t left = 0;
  /// Bytes that the lists of strips and tiles take at least.
  uint64_t listed = 0;
  /// Places of large values in the new file, by place, size and type.
  std::map<std::tuple<uint64_t, uint64_t, uint16_t>, uint64_t> values;
};

/// Copies one page with its smaller copies and masks: first `Collect`, then `Write`.
class PageCopier {
 public:
  /// Without `writing`, the page keeps all of its tags. Arguments must outlive this object.
  PageCopier(const TagReader& reader, CopiedSource& source, const PictureWriting* writing)
      : reader_(reader), source_(source), writing_(writing) {}

  /// Lists the bytes that move. `following` are the smaller copies and masks after the page. Throws
  /// FormatError if they cannot be found.
  void Collect(const TagDirectory& first, std::span<const uint64_t> following);
  /// Upper bound of the bytes that `Write` adds to the file.
  uint64_t MostBytes();
  /// The chain that the page is one of: a strip without a size must not reach over other pages, and
  /// pictures that belong to no chain are missed.
  void SetChain(const PageChain& chain) { chain_ = &chain; }
  /// Tag 297 of the written page; without it that of the source stays.
  void SetPageNumber(const TagValue& number) { pageNumber_ = number; }
  /// Writes the page and makes it the next directory of the link; returns the link to the page
  /// after it.
  uint64_t Write(TagFileWriter& file, uint64_t linkAt, Changes& changes);

 private:
  struct Structure {
    TagMap tags;
    StoredMap stored;
  };

  void CollectDirectory(const TagDirectory& directory);
  void CollectAt(uint64_t at);
  void CollectJpegFile(const TagDirectory& directory, const StoredBlocks& blocks);
  void CollectJpegTables(const TagDirectory& directory);
  bool IsMain(const TagDirectory& directory) const { return writing_ && directory.at == first_.at; }
  bool IsOldJpeg(const TagDirectory& directory) const;
  bool IsWrittenAnew(const TagPlace& place) const;
  Structure Copy(const TagDirectory& directory, Changes& changes);
  bool IsBoundToOrder(uint16_t tag, Changes& changes) const;
  void CopyValue(const TagPlace& place, Structure& copy);
  void MoveBlocks(const TagDirectory& directory, TagMap& tags);
  TagValue Numbers(const TagDirectory& directory, uint16_t tag,
                   std::span<const uint64_t> numbers) const;
  void MoveJpeg(const TagDirectory& directory, TagMap& tags, Changes& changes);
  TagValue Take(const TagPlace& place);
  void Charge(uint64_t bytes);
  void KeepKind(uint32_t relative, TagMap& tags, Changes& changes) const;
  static void MissDamaged(const TagDirectory& directory, Changes& changes);
  void MissNext(uint64_t at, Changes& changes) const;
  TagValue CopyBelow(const TagPlace& pointer, Changes& changes);
  std::optional<TagFileWriter::Written> CopyDirectory(uint64_t at, Changes& changes);
  void AddMetadata(Structure& main, Changes& changes);

  const TagReader& reader_;
  CopiedSource& source_;
  const PictureWriting* const writing_;
  TagDirectory first_;
  std::vector<uint64_t> following_;
  std::unordered_set<uint64_t> isFollowing_;
  std::optional<TagValue> pageNumber_;
  /// Tags of the metadata of `writing_`, and what they lack.
  PageTags tags_;
  Changes changes_;
  TagFileWriter* file_ = nullptr;
  uint64_t tagBytes_ = 0;
  const PageChain* chain_ = nullptr;
  int depth_ = 0;
  std::unordered_set<uint64_t> collected_;
  /// Directories that were written, and those that are being written, with place 0.
  std::unordered_map<uint64_t, TagFileWriter::Written> copied_;
};

}  // namespace rasterkit::detail
