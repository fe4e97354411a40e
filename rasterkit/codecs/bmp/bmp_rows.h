#pragma once

#include <functional>

#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// What a row of the file goes through on its way into the raster.
struct BmpRowRules {
  /// False when the file's rows can be read straight into the raster's.
  bool isConverted = false;
  /// Finishes row `target`; `source` is the file's row when it is converted, else equal to
  /// `target`. Pixels only: padding is cleared by the caller.
  std::function<void(const uint8_t* source, uint8_t* target)> finish;
};

/// Reads uncompressed rows from the stream's position into `raster`; rows that are not there become
/// 0, with a warning. Throws FormatError when not even one row is there.
void ReadBmpRows(TStream& stream, const BmpHeader& header, const BmpRowRules& rules, Raster& raster,
                 CodecReport& report);

/// The check of `ReadBmpRows` by itself, for use before the raster is made: a short file that
/// claims a huge picture must not cost its memory.
void RequireOneBmpRow(const BmpHeader& header);

}  // namespace rasterkit::detail
