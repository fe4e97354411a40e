#include <algorithm>

#include <rasterkit/bands/gray_of_bits.h>
#include <rasterkit/kernels/bits/bit_means.h>

namespace rasterkit::detail {

bool AreBitsOfGray(const Pixels& pixels, AveragedForm form) {
  const auto* raster = std::get_if<Raster>(&pixels);
  return raster != nullptr && raster->Format() == pf1bit && form == AveragedForm::gray;
}

void MakeGrayOfBits(const Band& source, const BitAxes& axes, Band& target, RowRange rows) {
  const auto& from = std::get<Raster>(source.pixels);
  auto& to = std::get<Raster>(target.pixels);
  kernels::BitMeans means(axes.columns, from.Width(), axes.rows.total, from.palette.Entry(0).peRed,
                          from.palette.Entry(1).peRed);
  for (int y = rows.first; y < rows.first + rows.count; ++y) {
    const kernels::HalftoneTap& tap = axes.rows.taps[static_cast<size_t>(y)];
    for (int i = 0; i < tap.count; ++i) {
      const uint32_t between = i + 1 < tap.count ? axes.rows.innerWeight : tap.lastWeight;
      means.Add(from.Row(tap.first + i - source.top), i == 0 ? tap.firstWeight : between);
    }
    uint8_t* row = to.Row(y - target.top);
    means.Finish(row);
    std::fill(row + to.RowBytes(), row + to.Stride(), uint8_t{0});
  }
}

}  // namespace rasterkit::detail
