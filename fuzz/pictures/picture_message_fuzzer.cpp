// The host's side of what a worker process says about a picture. The worker may be under the
// control of the file that it reads.

#include <algorithm>
#include <cstdint>
#include <span>

#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/pictures/reading/picture_fields.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

using namespace rasterkit;
using namespace rasterkit::detail;

namespace {

constexpr uint64_t kMostRows = 1 << 20;

/// What is accepted has one form only, and can be shown.
void TakePicture(std::span<const uint8_t> data) {
  FieldReader fields(data);
  LoadedFrame picture;
  const FrameHead head = ReadPictureHead(fields, picture);
  fields.RequireEnd();
  Require(StoredBitsPerPixel(head.rows.format) > 0);
  if (head.rows.RowsBytes() > kMostRows) return;
  picture.frame = NewFrame(head, head.rows.RowsBytes());
  const auto rows = RowsOf(picture.frame.rows);
  std::fill(rows.begin(), rows.end(), 0xFF);
  picture.frame.rows.ClearPadding();
  FieldWriter again;
  WritePicture(again, picture);
  Require(std::equal(data.begin(), data.end(), again.Written().begin(), again.Written().end()));
  const Raster visible = TakeVisibleRows(picture);
  for (int y = 0; y < visible.Height(); ++y) {
    for (int x = 0; x < visible.Width(); ++x) Require(visible.PixelColor(x, y) <= 0xFFFFFF);
  }
}

void TakeOutcome(std::span<const uint8_t> data) {
  FieldReader fields(data);
  if (const auto error = ReadOutcome(fields)) {
    try {
      std::rethrow_exception(error);
    } catch (const std::exception& caught) {
      Require(caught.what() != nullptr);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::span bytes(data + 1, size - 1);
  try {
    if (data[0] == 0) {
      TakePicture(bytes);
    } else {
      TakeOutcome(bytes);
    }
  } catch (const Error&) {
  }
  return 0;
}
