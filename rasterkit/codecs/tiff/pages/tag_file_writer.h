#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Tags of one directory by number.
using TagMap = std::map<uint16_t, TagValue>;

/// Values that stand in a file already.
struct StoredValue {
  uint16_t type = 0;
  uint64_t count = 0, at = 0;
};
/// Such values by the number of their tag.
using StoredMap = std::map<uint16_t, StoredValue>;

/// Makes values of 16-bit, 32-bit and 64-bit numbers.
TagValue WordsTag(uint16_t tag, std::span<const uint16_t> words);
TagValue WordTag(uint16_t tag, int word);
TagValue LongTag(uint16_t tag, uint32_t number);
TagValue BytesTag(uint16_t tag, uint16_t type, std::span<const uint8_t> bytes);

/// Writes a TIFF or BigTIFF file piece by piece from the stream's position on; the stream must be
/// seekable. Only `Finish` makes the file complete.
class TagFileWriter {
 public:
  TagFileWriter(TStream& stream, bool isBig, bool isBigEndian);

  bool IsBig() const { return isBig_; }
  bool IsBigEndian() const { return isBigEndian_; }
  /// Writes bytes at an even place and returns it, counted from the beginning of the file. Throws
  /// LimitError if the file exceeds 4 GiB and is no BigTIFF file.
  uint64_t Append(std::span<const uint8_t> bytes);
  /// Appends bytes right behind those before. Throws as Append does.
  void Continue(std::span<const uint8_t> bytes);
  /// Throws LimitError if so many bytes more exceed 4 GiB and the file is no BigTIFF file.
  void RequireRoom(uint64_t bytes) const;
  /// Bytes of the file so far.
  uint64_t Size() const { return size_; }
  /// The end of the file so far, made even.
  uint64_t End();
  /// Places of blocks, or their sizes, as a tag in the width of the file.
  TagValue PlacesTag(uint16_t tag, std::span<const uint64_t> places) const;
  /// The same as pointers to directories.
  TagValue PointersTag(uint16_t tag, std::span<const uint64_t> places) const;

  struct Written {
    uint64_t at = 0;
    /// Where the place of the following directory stands.
    uint64_t linkAt = 0;
  };
  /// Writes a directory and its values. In a classic file, 64-bit numbers become 32-bit ones; a tag
  /// whose numbers are too large is skipped and added to `changes`. Throws FormatError if no tag is
  /// left.
  Written WriteDirectory(const TagMap& tags, Changes& changes) {
    return WriteDirectory(tags, {}, changes);
  }
  /// The same with further tags, whose values `AppendValue` has written.
  Written WriteDirectory(const TagMap& tags, const StoredMap& stored, Changes& changes);
  /// Writes values that a tag of a directory will lead to. The type must not be one of 64-bit
  /// integers.
  StoredValue AppendValue(TagValue value);
  /// Makes a directory the next one after another, or the first one of the file.
  void Link(uint64_t linkAt, uint64_t directoryAt);
  uint64_t FirstLinkAt() const { return isBig_ ? 8 : 4; }
  /// The stream is then at the end of the file.
  void Finish();

 private:
  void Put(std::vector<uint8_t>& bytes, uint64_t number, int count) const;
  bool Narrow(TagValue& value) const;
  void Turn(TagValue& value) const;

  TStream& stream_;
  const uint64_t start_;
  const bool isBig_, isBigEndian_;
  uint64_t size_ = 0;
};

}  // namespace rasterkit::detail
