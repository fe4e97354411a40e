#include <cstring>
#include <limits>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/pictures/reading/grid.h>
#include <rasterkit/pictures/reading/visible_rows.h>

namespace rasterkit {
namespace {

/// Converts the numbers to floats, which hold all of them exactly, with NaN for "no data": the
/// library's stretch ignores NaN.
ImagingFrame WithoutNoData(ImagingFrame frame, GridType type, const NoData& noData) {
  Raster floats(pf32bit, frame.rows.Width(), frame.rows.Height());
  floats.CopyProperties(frame.rows);
  const Grid grid(std::move(frame.rows), type);
  for (int y = 0; y < grid.Height(); ++y) {
    for (int x = 0; x < grid.Width(); ++x) {
      const double value = grid.At(x, y);
      const float kept =
          noData.Is(value) ? std::numeric_limits<float>::quiet_NaN() : static_cast<float>(value);
      std::memcpy(floats.Row(y) + static_cast<size_t>(x) * sizeof kept, &kept, sizeof kept);
    }
  }
  ImagingFrame result;
  result.format = GUID_WICPixelFormat32bppGrayFloat;
  result.rows = std::move(floats);
  return result;
}

}  // namespace

Raster VisibleRows(ImagingFrame frame, const std::string& noData, CodecReport& report) {
  const auto type = GridTypeOf(frame.format);
  if (type == GridType::uint16) {
    report.warnings.emplace_back("numbers from 0 to 65535 are shown as black to white");
  } else if (type && !noData.empty()) {
    frame = WithoutNoData(std::move(frame), *type, NoData(noData, *type));
  }
  return PictureOfFrame(std::move(frame), &report);
}

}  // namespace rasterkit
