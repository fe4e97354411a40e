#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/codecs/jpeg/jpeg_reader.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit::detail {

/// The blocks of one component by rows. The library keeps all of them in memory.
using BlockRows = std::vector<JBLOCKROW>;

/// Collects the rows of an array of the library. `Codec` is its decoder or encoder.
template <class Codec>
void CollectRows(Codec& codec, jvirt_barray_ptr array, const jpeg_component_info& component,
                 bool isWritable, BlockRows& rows) {
  const auto step = static_cast<JDIMENSION>(component.v_samp_factor);
  for (JDIMENSION y = 0; y < component.height_in_blocks; y += step) {
    JBLOCKARRAY group = (*codec.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&codec),
                                                         array, y, step, isWritable ? TRUE : FALSE);
    for (JDIMENSION i = 0; i < step && y + i < component.height_in_blocks; i++) {
      rows[y + i] = group[i];
    }
  }
}

/// The coefficients of a whole, undamaged JPEG file.
class JpegCoefficients {
 public:
  /// Reads all scans. `bytesBeside` is memory that the caller needs besides the coefficients.
  /// Throws FormatError for anything damaged, cut off or missing, UnsupportedError for 12 bits,
  /// lossless and hierarchical coding, LimitError for too much memory or too many scans.
  JpegCoefficients(std::span<const uint8_t> file, const JpegLayout& layout, uint64_t bytesBeside);

  jpeg_decompress_struct& Codec() { return reader_.Codec(); }
  const jpeg_decompress_struct& Codec() const { return reader_.Codec(); }
  const BlockRows& Rows(int component) const { return rows_[static_cast<size_t>(component)]; }

 private:
  void RequireMemory(const JpegLayout& layout, size_t fileBytes, uint64_t bytesBeside);
  void RequireWhole(long headerWarnings) const;

  JpegReader reader_;
  MemoryShare memory_;
  std::vector<BlockRows> rows_;
};

}  // namespace rasterkit::detail
