// Any bytes as a TIFF file give a picture or an Error, the same on one thread and on three.

#include <algorithm>
#include <optional>
#include <string>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

// A few bytes can claim a picture of any size. 4 MiB keep a run within milliseconds and take every
// path that larger pictures take.
constexpr uint64_t kPictureLimit = 4 << 20;

struct Result {
  std::optional<ImagingFrame> frame;
  std::string error;
  CodecReport report;
};

Result Decode(std::span<const uint8_t> bytes, int threads) {
  Result result;
  TSpanStream stream(bytes);
  try {
    FrameOptions options;
    options.threads = threads;
    result.frame = DecodeTiff(stream, options, &result.report);
  } catch (const Error& error) {
    result.error = error.what();
  }
  return result;
}

void RequireSame(const Result& a, const Result& b) {
  Require(a.error == b.error && a.frame.has_value() == b.frame.has_value());
  Require(a.report.warnings == b.report.warnings);
  if (!a.frame) return;
  Require(a.frame->format == b.frame->format && a.frame->isConverted == b.frame->isConverted);
  const Raster &left = a.frame->rows, &right = b.frame->rows;
  Require(left.Width() == right.Width() && left.Height() == right.Height() &&
          left.Stride() == right.Stride());
  for (int y = 0; y < left.Height(); y++)
    Require(std::equal(left.Row(y), left.Row(y) + left.Stride(), right.Row(y)));
}

void ReadFacts(std::span<const uint8_t> bytes) {
  TSpanStream stream(bytes);
  try {
    const TiffFacts facts = ReadTiffFacts(stream);
    Require(facts.width > 0 && facts.pages >= 1 && facts.pages <= 65535);
  } catch (const FormatError&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  ReadFacts({data, size});
  const Result one = Decode({data, size}, 1);
  RequireSame(one, Decode({data, size}, 3));
  return 0;
}
