#include <rasterkit/bands/gray_of_bits.h>
#include <rasterkit/kernels/bits/bit_means.h>

namespace rasterkit::detail {

bool AreBitsOfGray(const Pixels& pixels, AveragedForm form) {
  const auto* raster = std::get_if<Raster>(&pixels);
  return raster != nullptr && raster->Format() == pf1bit && form == AveragedForm::gray;
}

void MakeGrayOfBits(const Raster& source, int sourceTop, const MeanAxes& axes, Raster& target,
                    int targetTop, RowRange rows) {
  kernels::BitMeans means(axes.columns, source.Width(), axes.rows.total,
                          source.palette.Entry(0).peRed, source.palette.Entry(1).peRed);
  for (int y = rows.first; y < rows.first + rows.count; ++y) {
    const kernels::HalftoneTap& tap = axes.rows.taps[static_cast<size_t>(y)];
    for (int i = 0; i < tap.count; ++i) {
      const uint32_t weight = i == 0              ? tap.firstWeight
                              : i + 1 < tap.count ? axes.rows.innerWeight
                                                  : tap.lastWeight;
      means.Add(source.Row(tap.first + i - sourceTop), weight);
    }
    means.Finish(target.Row(y - targetTop));
  }
}

}  // namespace rasterkit::detail
