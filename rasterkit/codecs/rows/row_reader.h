#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Which rows a reader gives.
enum class RowAccess {
  /// Each row once, from top to bottom; rows that are skipped cost as much as those that are read.
  rising,
  /// Any rows, at the cost of the strips or tiles that hold them.
  anyRows,
  /// Any parts of rows, at the cost of their bytes.
  anyParts
};

/// Decodes a picture row by row. Used by one thread at a time; works under the limits of the
/// calling thread, which it may hand to threads of its own.
class RASTERKIT_EXPORT RowReader {
 public:
  virtual ~RowReader() = default;

  virtual int Width() const = 0;
  virtual int Height() const = 0;
  virtual RowAccess Access() const = 0;
  /// Rows of a strip or a row of tiles: reading starts and ends best at multiples of it.
  virtual int BlockRows() const { return 1; }
  /// A picture of any size with the kind of pixels that are read: format or layout, palette,
  /// transparency, resolution, profile. Its rows have no meaning.
  virtual const Pixels& Like() const = 0;

  /// Fills `target`, which is of the kind of `Like`, with the pixels from (`left`, `top`) on. With
  /// less than RowAccess::anyParts, `left` is 0 and the target has the full width; with
  /// RowAccess::rising, `top` is not above the end of the rows that were read. Rows that the file
  /// lacks are filled as DecodePixels fills them. Throws what DecodePixels throws, also in the
  /// middle of a file.
  virtual void Read(int left, int top, Pixels& target) = 0;

  /// Adds what was noticed so far, in the words of DecodePixels, and forgets it. After all rows
  /// were read, what follows them is read and judged, too.
  virtual void Finish(CodecReport& report) = 0;
};

}  // namespace rasterkit
