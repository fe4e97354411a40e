#pragma once

#include <functional>
#include <string_view>

#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// How a row of the file is converted to a row of the raster.
struct BmpRowRules {
  /// False if rows of the file can be read straight into the raster.
  bool isConverted = false;
  /// Finishes row `target`. `source` is the row of the file if it is converted, else equal to
  /// `target`. Pixels only: the caller clears the padding.
  std::function<void(const uint8_t* source, uint8_t* target)> finish;
  /// True if a missing row, which is 0 in the file, is not 0 in the raster.
  bool changesZeros = false;
};

/// Reads uncompressed rows from the stream's position into `raster`. Missing rows become 0, with a
/// warning. Throws FormatError if not one row is there.
void ReadBmpRows(TStream& stream, const BmpHeader& header, const BmpRowRules& rules, Raster& raster,
                 CodecReport& report);

/// Throws FormatError if the picture is large and the file cannot hold it. `pictureBytes` is the
/// size of the raster; `what` names the picture.
void RequirePlausibleBmpRows(const BmpHeader& header, uint64_t pictureBytes, std::string_view what);

/// Does the check of `ReadBmpRows` alone, before the raster is made: a short file that claims a
/// huge picture must not allocate its memory.
void RequireOneBmpRow(const BmpHeader& header);

}  // namespace rasterkit::detail
