#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::detail {

/// Ranges of a file that move to a new one. What overlaps or touches stays together, and every byte
/// is copied once, so that the new file cannot outgrow the old one.
class MovedBytes {
 public:
  /// Throws FormatError if the range reaches beyond the end of the file.
  void Add(const TagReader& reader, uint64_t at, uint64_t count);
  /// Bytes that `Copy` writes.
  uint64_t Total();
  void Copy(const TagReader& reader, TagFileWriter& file);
  /// The new place of a byte of an added range; 0 for 0.
  uint64_t PlaceOf(uint64_t at) const;

 private:
  struct Range {
    uint64_t at = 0, end = 0, newAt = 0;
  };
  void Merge();

  std::vector<Range> ranges_;
};

}  // namespace rasterkit::detail
