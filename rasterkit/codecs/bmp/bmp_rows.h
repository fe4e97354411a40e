#pragma once

#include <functional>
#include <string_view>

#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// How a row of the file is converted to a row of the raster.
struct BmpRowRules {
  /// False if rows of the file can be read straight into the raster.
  bool isConverted = false;
  /// Finishes row `target`. `source` is the row of the file if it is converted, else equal to
  /// `target`. Pixels only: the caller clears the padding.
  std::function<void(const uint8_t* source, uint8_t* target, size_t width)> finish;
  /// True if a missing row, which is 0 in the file, is not 0 in the raster.
  bool changesZeros = false;
};

/// A pixel of the picture.
struct BmpPlace {
  int left = 0, top = 0;
};

/// Fills `raster`, whose first pixel is that at `place`, with uncompressed pixels; `start` is the
/// place of the first row in the stream. Rows that the file lacks become 0. Parts of rows need
/// pixels of whole bytes.
void ReadBmpRows(TStream& stream, uint64_t start, const BmpHeader& header, const BmpRowRules& rules,
                 const BmpPlace& place, Raster& raster);

/// Rows of which the file has all pixels.
int CompleteBmpRows(const BmpHeader& header);

/// Throws FormatError if the picture is large and the file cannot hold it. `pictureBytes` is the
/// size of the raster; `what` names the picture.
void RequirePlausibleBmpRows(const BmpHeader& header, uint64_t pictureBytes, std::string_view what);

/// Throws FormatError if not one row is there, before the raster is made: a short file that claims
/// a huge picture must not allocate its memory.
void RequireOneBmpRow(const BmpHeader& header);

}  // namespace rasterkit::detail
