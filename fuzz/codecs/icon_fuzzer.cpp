// Any bytes as an icon file: a picture or one of our errors, and what was decoded survives writing
// and reading unchanged.

#include <algorithm>
#include <cstdlib>

#include <rasterkit/codecs/ico/ico_decoder.h>
#include <rasterkit/codecs/ico/ico_encoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace {

using namespace rasterkit;

// A few bytes may claim any size; this is room for the largest icon that can be written.
constexpr uint64_t pictureLimit = 256 * 256 * 4;

void Require(bool condition) {
  if (!condition) std::abort();
}

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
  SetPictureMemoryLimit(pictureLimit);
  try {
    const Raster raster = DecodeIco({data, size});
    Require(raster.Format() == pf32bit && raster.alphaFormat == afDefined);
    if (raster.Width() <= 256 && raster.Height() <= 256) RoundTrip(raster);
  } catch (const Error&) {
  }
  return 0;
}
