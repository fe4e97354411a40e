#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/codecs/rows/ink_transform.h>
#include <rasterkit/codecs/tiff/tiff_layout.h>

namespace rasterkit::detail {

/// Converts rows of unpacked samples in the byte order of the processor to rows of the frame.
class TiffRowWriter {
 public:
  virtual ~TiffRowWriter() = default;
  /// `planes` has one row per plane that is read. Writes `width` pixels of the frame to `target`,
  /// which may be the row itself if `WorksInPlace` is true.
  virtual void Write(const uint8_t* const* planes, size_t width, uint8_t* target) = 0;
};

/// The meaning of the pixels; shared by all threads.
struct TiffColors {
  /// One color per index of a palette file; deep files have more than a palette can hold.
  std::vector<tagPALETTEENTRY> entries;
  /// For inks with a profile; without it the simple formula is used.
  std::shared_ptr<const InkTransform> inks;
};

/// True if rows of the file are as long as those of the frame and can be overwritten.
bool WorksInPlace(const TiffLayout& layout);

/// Makes a writer for one thread. Pixels of stretched numbers are doubles.
std::unique_ptr<TiffRowWriter> MakeRowWriter(const TiffLayout& layout, const TiffColors& colors);

/// Make the writers for unusual depths and indirect colors.
std::unique_ptr<TiffRowWriter> MakeNumberWriter(const TiffLayout& layout, const TiffColors& colors);

/// Makes the writer for TiffRowKind::samples.
std::unique_ptr<TiffRowWriter> MakeSampleWriter(const TiffLayout& layout);

/// Rows of separate planes as one row of `pitch` samples per pixel, each `bytes` long.
void JoinSamples(const uint8_t* const* planes, size_t count, size_t bytes, size_t width,
                 uint8_t* target);

}  // namespace rasterkit::detail
