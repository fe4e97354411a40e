// Any bytes as a PNG file give a picture or an Error. A decoded picture is the same after it was
// written and read again.

#include <algorithm>
#include <vector>

#include <zlib.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

// A few bytes can claim a picture of any size. 4 MiB keep a run within milliseconds and take every
// path that larger pictures take.
constexpr uint64_t kPictureLimit = 4 << 20;

void RoundTrip(const Raster& raster) {
  TMemoryStream stream;
  EncodePng(raster, stream);
  const Raster again = DecodePng(stream.Bytes());
  Require(again.Format() == raster.Format() && again.Width() == raster.Width() &&
          again.Height() == raster.Height());
  Require(again.alphaFormat == raster.alphaFormat &&
          again.transparentColor == raster.transparentColor);
  for (int y = 0; y < raster.Height(); y++) {
    Require(std::equal(raster.Row(y), raster.Row(y) + raster.RowBytes(), again.Row(y)));
  }
  for (int i = 0; i < raster.palette.Count(); i++)
    Require(again.palette.Entry(i) == raster.palette.Entry(i));
}

void Decode(std::span<const uint8_t> bytes) {
  try {
    CodecReport report;
    const Raster raster = DecodePng(bytes, &report);
    RoundTrip(raster);
  } catch (const Error&) {
  }
}

uint32_t BigEndian32(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

/// Corrects the checksum of every chunk, so that changed bytes reach the decoder.
void RepairChecksums(std::vector<uint8_t>& file) {
  size_t position = 8;
  while (position + 12 <= file.size()) {
    const size_t length = BigEndian32(file.data() + position);
    if (length > file.size() - position - 12) return;
    uint8_t* body = file.data() + position + 4;
    const auto checksum = static_cast<uint32_t>(crc32(0, body, static_cast<uInt>(length + 4)));
    for (int i = 0; i < 4; i++)
      body[length + 4 + static_cast<size_t>(i)] = static_cast<uint8_t>(checksum >> (24 - 8 * i));
    position += length + 12;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  std::vector<uint8_t> repaired(data, data + size);
  RepairChecksums(repaired);
  Decode(repaired);
  if (!std::equal(repaired.begin(), repaired.end(), data)) Decode({data, size});
  return 0;
}
