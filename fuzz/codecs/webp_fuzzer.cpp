// Any bytes as a WebP file give a picture or an Error, and the same result a second time.

#include <rasterkit/codecs/list_metadata.h>
#include <rasterkit/codecs/webp/webp_decoder.h>

#include "fuzz/codecs/decode_twice.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace rasterkit;
  ReadMetadata({data, size});
  const fuzz::Decoded decoded = fuzz::DecodeTwice({data, size}, DecodeWebp);
  const Raster& raster = decoded.raster;
  Require(!decoded.error.empty() || raster.Format() == pf24bit || raster.alphaFormat == afDefined);
  return 0;
}
