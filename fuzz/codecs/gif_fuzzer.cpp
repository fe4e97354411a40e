// Any bytes as a GIF file give a picture or an Error, and the same result a second time.

#include <rasterkit/codecs/gif/gif_decoder.h>

#include "fuzz/codecs/decode_twice.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace rasterkit;
  const fuzz::Decoded decoded = fuzz::DecodeTwice({data, size}, DecodeGif);
  const Raster& raster = decoded.raster;
  Require(!decoded.error.empty() || (raster.Format() == pf8bit && raster.palette.Count() >= 2));
  return 0;
}
