#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/codecs/tiff/ink_transform.h>
#include <rasterkit/codecs/tiff/tiff_layout.h>

namespace rasterkit::detail {

/// Turns rows of samples, unpacked and in the processor's byte order, into rows of the frame.
class TiffRowWriter {
 public:
  virtual ~TiffRowWriter() = default;
  /// `planes` has a row for each plane that is read; `width` pixels of the frame are written to
  /// `target`, which may be the row itself where `WorksInPlace` says so.
  virtual void Write(const uint8_t* const* planes, size_t width, uint8_t* target) = 0;
};

/// What the pixels mean beside their layout; shared by all threads.
struct TiffColors {
  /// Of a palette file, one for each index: deep ones have more than a palette holds.
  std::vector<tagPALETTEENTRY> entries;
  /// For inks with a profile; else the plain formula.
  std::shared_ptr<const InkTransform> inks;
};

/// Rows of the file are as long as those of the frame and can be written over by them.
bool WorksInPlace(const TiffLayout& layout);

/// A writer for one thread. For stretched numbers the frame's pixel is a double.
std::unique_ptr<TiffRowWriter> MakeRowWriter(const TiffLayout& layout, const TiffColors& colors);

/// The writers for pixels of unusual depth and of indirect colours.
std::unique_ptr<TiffRowWriter> MakeNumberWriter(const TiffLayout& layout, const TiffColors& colors);

/// Rows of separate planes as one row of `pitch` samples a pixel, each `bytes` long.
void JoinSamples(const uint8_t* const* planes, size_t count, size_t bytes, size_t width,
                 uint8_t* target);

}  // namespace rasterkit::detail
