#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace rasterkit::fuzz {

/// A few bytes can claim a picture of any size. 4 MiB keep a run within milliseconds and take every
/// path that larger pictures take.
inline constexpr uint64_t kPictureLimit = 4 << 20;

/// What a decoder made of some bytes: a raster, or an error's text.
struct Decoded {
  Raster raster;
  std::string error;
  CodecReport report;
};

/// `decode(bytes, &report)` gives a raster or throws an Error; every other exception is a fault.
template <class Decoder>
Decoded Decode(std::span<const uint8_t> bytes, Decoder decode) {
  Decoded decoded;
  try {
    decoded.raster = decode(bytes, &decoded.report);
  } catch (const Error& error) {
    decoded.error = error.what();
  }
  return decoded;
}

/// Decodes the bytes twice and requires the same result.
template <class Decoder>
Decoded DecodeTwice(std::span<const uint8_t> bytes, Decoder decode) {
  SetPictureMemoryLimit(kPictureLimit);
  Decoded first = Decode(bytes, decode);
  const Decoded again = Decode(bytes, decode);
  Require(first.error == again.error && first.report.warnings == again.report.warnings);
  Require(first.raster.Height() == again.raster.Height() &&
          first.raster.Stride() == again.raster.Stride());
  for (int y = 0; y < first.raster.Height(); y++) {
    const uint8_t* row = first.raster.Row(y);
    Require(std::equal(row, row + first.raster.Stride(), again.raster.Row(y)));
  }
  return first;
}

}  // namespace rasterkit::fuzz
