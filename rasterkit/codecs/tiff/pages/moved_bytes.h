#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::detail {

/// Ranges of a file that move to a new one, page by page. What overlaps or touches within a page
/// stays together, and bytes that an earlier page has moved are shared, so that the new file cannot
/// outgrow the old one.
class MovedBytes {
 public:
  /// Forgets ranges that were added and not copied: those of a page that failed.
  void Begin() { ranges_.clear(); }
  /// Throws FormatError if the range reaches beyond the end of the file.
  void Add(const TagReader& reader, uint64_t at, uint64_t count);
  /// Bytes that `Copy` writes.
  uint64_t Total();
  /// Writes what was added since `Begin`. Throws FormatError if pages share so many bytes in
  /// part that the new file would have more of them than the old one.
  void Copy(const TagReader& reader, TagFileWriter& file);
  /// The new place of a byte of a range that `Copy` has written; 0 for 0.
  uint64_t PlaceOf(uint64_t at) const;

 private:
  struct Range {
    uint64_t at = 0, end = 0, newAt = 0;
  };
  void Merge();
  /// The range of an earlier page that holds all of this one; null if there is none.
  const Range* Earlier(const Range& range) const;

  std::vector<Range> ranges_;
  std::map<uint64_t, Range> earlier_;
  uint64_t copied_ = 0;
};

}  // namespace rasterkit::detail
