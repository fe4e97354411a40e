// Any bytes as a JPEG file give a picture or an Error. A decoded picture can be written and read
// again. Rows, warnings and errors do not depend on the bands in which the rows are read, at full
// size or smaller.

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_reader.h>
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

struct Reading {
  std::vector<uint8_t> rows;
  std::vector<std::string> words;
  bool operator==(const Reading&) const = default;
};

/// Reads all rows, in bands of random heights or at once.
Reading Read(std::span<const uint8_t> file, int denominator, std::mt19937* heights) {
  Reading reading;
  try {
    TSpanStream stream(file);
    const std::unique_ptr<RowReader> reader = OpenSmallerJpegRows(stream, denominator);
    for (int top = 0; top < reader->Height();) {
      const int rest = reader->Height() - top;
      const int wanted = heights != nullptr ? 1 + static_cast<int>((*heights)() % 40) : rest;
      Pixels band = NewPixels(reader->Like(), reader->Width(), std::min(wanted, rest));
      reader->Read(0, top, band);
      std::visit(
          [&](const auto& rows) {
            const size_t bytes = rows.Stride() * static_cast<size_t>(rows.Height());
            reading.rows.insert(reading.rows.end(), rows.Row(0), rows.Row(0) + bytes);
            top += rows.Height();
          },
          band);
    }
    CodecReport report;
    reader->Finish(report);
    reading.words = std::move(report.warnings);
  } catch (const LimitError&) {
    // More rows at once can exceed the limit.
    return {};
  } catch (const Error& error) {
    reading = {{}, {error.Reason()}};
  }
  return reading;
}

void CompareBands(std::span<const uint8_t> file) {
  std::mt19937 heights(file.empty() ? 0 : file[file.size() / 2] + 256u * file.back());
  const int denominator = 1 << heights() % 4;
  const Reading whole = Read(file, denominator, nullptr);
  if (whole == Reading{}) return;
  if (Read(file, denominator, &heights) != whole) std::abort();
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
  CompareBands({data, size});
  try {
    ReadJpegFrame({data, size});
  } catch (const Error&) {
  }
  return 0;
}
