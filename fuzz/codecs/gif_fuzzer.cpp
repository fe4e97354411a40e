// Any bytes as a GIF file: a picture or one of our errors, and the same one again.

#include <algorithm>
#include <cstdlib>
#include <string>

#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace {

using namespace rasterkit;

// A few bytes may ask for a picture as large as the budget. 4 MiB keep a run within milliseconds
// and take every path that larger pictures take.
constexpr uint64_t pictureLimit = 4 << 20;

void Require(bool condition) {
  if (!condition) std::abort();
}

struct Result {
  Raster raster;
  std::string error;
  CodecReport report;
};

Result Decode(std::span<const uint8_t> bytes) {
  Result result;
  try {
    result.raster = DecodeGif(bytes, &result.report);
    Require(result.raster.Format() == pf8bit && result.raster.palette.Count() >= 2);
  } catch (const Error& error) {
    result.error = error.what();
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(pictureLimit);
  const Result first = Decode({data, size}), again = Decode({data, size});
  Require(first.error == again.error && first.report.warnings == again.report.warnings);
  Require(first.raster.Height() == again.raster.Height() &&
          first.raster.Stride() == again.raster.Stride());
  for (int y = 0; y < first.raster.Height(); y++) {
    const uint8_t* row = first.raster.Row(y);
    Require(std::equal(row, row + first.raster.Stride(), again.raster.Row(y)));
  }
  return 0;
}
