#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/codecs/g4/g4_decoder.h>
#include <rasterkit/codecs/tiff/rows/tiff_picture.h>
#include <rasterkit/codecs/tiff/tiff_block_reader.h>
#include <rasterkit/codecs/tiff/tiff_row_writer.h>

namespace rasterkit::detail {

/// Reads a large picture in G4 that is one strip, row by row: neither the strip nor its compressed
/// bytes are held. The strip is looked at to its end before the first row is given, because what
/// libtiff makes of a damaged strip is known only at its end.
class G4StripRows {
 public:
  /// True for such pictures.
  static bool Fits(const TiffHandle& handle, const TiffLayout& layout);

  /// The arguments must outlive this object.
  G4StripRows(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
              const TiffBlanks& blanks);

  /// Reads rows in full width; cheap if they follow those of the last call. False, with undefined
  /// rows, if the strip must be read by libtiff. Throws the errors of the stream.
  bool Read(const TiffPart& part, const TiffTarget& target);

 private:
  enum class Strip { unknown, regular, irregular };

  void Begin();
  std::span<const uint8_t> NextBytes();
  bool IsRegular();
  bool Next();

  TiffHandle& handle_;
  const TiffLayout& layout_;
  const uint8_t edge_;
  TiffExtent extent_;
  Strip strip_ = Strip::unknown;
  std::unique_ptr<TiffRowWriter> writer_;
  std::unique_ptr<G4Decoder> decoder_;
  std::vector<uint8_t> piece_, row_;
  /// Compressed bytes that were read.
  uint64_t read_ = 0;
};

}  // namespace rasterkit::detail
