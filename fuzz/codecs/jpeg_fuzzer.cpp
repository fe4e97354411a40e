// Any bytes as a JPEG file give a picture or an Error. A decoded picture can be written and read
// again.

#include <cstdlib>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace {

using namespace rasterkit;

// A few bytes can claim a picture of any size and a dozen scans over it. 4 MiB keep a run within
// milliseconds and take every path that larger pictures take.
constexpr uint64_t kPictureLimit = 4 << 20;

void RoundTrip(const Raster& raster) {
  if (raster.Width() > 65500 || raster.Height() > 65500) return;
  const Raster again = DecodeJpeg(EncodeJpeg(raster, 75));
  if (again.Format() != raster.Format() || again.Width() != raster.Width() ||
      again.Height() != raster.Height()) {
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  try {
    CodecReport report;
    const Raster raster = DecodeJpeg({data, size}, &report);
    if (raster.Width() * raster.Height() <= 1 << 16) RoundTrip(raster);
  } catch (const Error&) {
  }
  try {
    ReadJpegFrame({data, size});
  } catch (const Error&) {
  }
  return 0;
}
