// Any bytes as an icon file give a picture or an Error. A decoded picture is the same after it was
// written and read again.

#include <algorithm>

#include <rasterkit/codecs/ico/ico_decoder.h>
#include <rasterkit/codecs/ico/ico_encoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

// A few bytes can claim any size; this is enough for the largest icon that can be written.
constexpr uint64_t kPictureLimit = 256 * 256 * 4;

void RoundTrip(const Raster& raster) {
  TMemoryStream stream;
  EncodeIco(raster, stream);
  const Raster again = DecodeIco(stream.Bytes());
  Require(again.Width() == raster.Width() && again.Height() == raster.Height());
  for (int y = 0; y < raster.Height(); y++)
    Require(std::equal(raster.Row(y), raster.Row(y) + raster.RowBytes(), again.Row(y)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  try {
    const Raster raster = DecodeIco({data, size});
    Require(raster.Format() == pf32bit && raster.alphaFormat == afDefined);
    if (raster.Width() <= 256 && raster.Height() <= 256) RoundTrip(raster);
  } catch (const Error&) {
  }
  return 0;
}
