#pragma once

#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Width and height of a picture in pixels.
struct WrittenSize {
  int width = 0, height = 0;
};

/// Encodes a picture row by row. Used by one thread at a time. The bytes of the file do not depend
/// on how the rows are divided.
class RASTERKIT_EXPORT RowWriter {
 public:
  /// Without Finish the target is incomplete.
  virtual ~RowWriter() = default;
  /// Writes the next rows, which are of the kind and width that the writer was opened for. The
  /// content of `rows` may be changed.
  virtual void Write(Pixels& rows) = 0;
  /// Completes the file. Throws RangeError if rows are missing.
  virtual WrittenPicture Finish() = 0;
};

}  // namespace rasterkit
