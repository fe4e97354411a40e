#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// A lower-case first letter: readers may skip the chunk.
constexpr bool IsAncillaryPng(uint32_t kind) {
  return (kind >> 29 & 1) != 0;
}
/// A lower-case last letter: the chunk stays true whatever happens to the pixels.
constexpr bool IsSafeToCopyPng(uint32_t kind) {
  return (kind >> 5 & 1) != 0;
}

/// One chunk of a PNG file.
struct PngChunk {
  uint32_t kind = 0;
  std::span<const uint8_t> data;
  /// Length, name, data and checksum, as in the file.
  std::span<const uint8_t> whole;

  /// True if the checksum is right.
  RASTERKIT_EXPORT bool Holds() const;
};

/// The chunks of a PNG file up to its end chunk, one after another.
class RASTERKIT_EXPORT PngChunks {
 public:
  explicit PngChunks(std::span<const uint8_t> file);

  /// Goes to the next chunk; false after the end chunk or where the file is cut off.
  bool Next();
  const PngChunk& Chunk() const { return chunk_; }
  /// True if the walk ended before an end chunk.
  bool IsCutOff() const { return isCutOff_; }
  /// What the walk has not read: bytes after the end chunk, or of a chunk that is not whole.
  std::span<const uint8_t> Rest() const { return rest_; }

 private:
  std::span<const uint8_t> rest_;
  PngChunk chunk_;
  bool isAtEnd_ = false, isCutOff_ = false;
};

}  // namespace rasterkit::detail
