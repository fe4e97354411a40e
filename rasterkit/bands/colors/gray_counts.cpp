#include <vector>

#include <rasterkit/bands/colors/gray_counts.h>
#include <rasterkit/kernels/gray/gray.h>

namespace rasterkit {
namespace detail {
namespace {

constexpr size_t kColorBytes = 3;

void ReadGrays(const ColorReader& reader, const uint8_t* row, uint8_t* colors, uint8_t* grays) {
  const size_t width = reader.Width();
  if (reader.HasOpacity()) {
    reader.Painted(row, clWhite, colors);
    return kernels::GrayOfRow24(colors, width, grays);
  }
  if (reader.Format() == pf32bit) return kernels::GrayOfRow32(row, width, grays);
  kernels::GrayOfRow24(reader.Colors(row, colors), width, grays);
}

}  // namespace

GrayCounts CountGrays(const ColorReader& reader, const Raster& raster, int first, int last) {
  const size_t width = reader.Width();
  std::vector<uint8_t> colors(kColorBytes * width), grays(width);
  // Equal neighbors are counted in different tables: one waits for the other else.
  std::array<GrayCounts, 2> counts{};
  for (int y = first; y < last; ++y) {
    ReadGrays(reader, raster.Row(y), colors.data(), grays.data());
    for (size_t x = 0; x + 1 < width; x += 2) {
      ++counts[0][grays[x]];
      ++counts[1][grays[x + 1]];
    }
    if (width % 2 != 0) ++counts[0][grays[width - 1]];
  }
  for (size_t i = 0; i < counts[0].size(); ++i) counts[0][i] += counts[1][i];
  return counts[0];
}

}  // namespace detail

GrayCounts CountGrays(const Raster& raster, std::optional<TColor> key, int first, int last) {
  Raster like(raster.Format(), 1, 1);
  like.CopyProperties(raster);
  if (!like.transparentColor) like.transparentColor = key;
  return detail::CountGrays(detail::ColorReader(like, raster.Width()), raster, first, last);
}

}  // namespace rasterkit
