#include <algorithm>
#include <array>
#include <vector>

#include <rasterkit/kernels/halftone/halftone_alpha.h>
#include <rasterkit/raster/stretch/alpha_means.h>

namespace rasterkit::detail {
namespace {

using kernels::HalftoneTap;

/// Means with sums of any size, pixel by pixel.
class LargeMeans : public AlphaMeans {
 public:
  LargeMeans(const Raster& source, const HalftoneAxes& axes)
      : source_(source),
        axes_(axes),
        sums_(static_cast<size_t>(source.Width()) * kernels::kAlphaSums) {}

  void Make(const HalftoneTap& rows, RGBArec* target) override {
    std::fill(sums_.begin(), sums_.end(), 0);
    for (int i = 0; i < rows.count; ++i) {
      kernels::AddWeightedPixels32(source_.Row(rows.first + i),
                                   static_cast<size_t>(source_.Width()),
                                   TapWeight(rows, i, axes_.rows.innerWeight), sums_.data());
    }
    kernels::MeanRow32(sums_.data(), axes_.columns, axes_.rows.total,
                       reinterpret_cast<uint8_t*>(target));
  }

 private:
  const Raster& source_;
  const HalftoneAxes& axes_;
  std::vector<uint64_t> sums_;
};

/// Means with sums that floating point holds exactly. Pixels of alpha 0 come from a row of plain
/// means, which is computed only if there are any.
class SmallMeans : public AlphaMeans {
 public:
  SmallMeans(const Raster& source, const HalftoneAxes& axes)
      : source_(source),
        axes_(axes),
        columns_(axes.columns, axes.rows.total),
        sums_(static_cast<size_t>(source.Width()) * kernels::kOpacitySums),
        transparent_(axes.columns.taps.size()) {}

  void Make(const HalftoneTap& rows, RGBArec* target) override {
    AddRows(rows);
    const size_t count = kernels::MeansByAlpha(
        sums_.data(), columns_, reinterpret_cast<uint8_t*>(target), transparent_.data());
    if (count > 0) TakePlainMeans(rows, count, target);
  }

 private:
  void AddRows(const HalftoneTap& tap) {
    for (int done = 0; done < tap.count; done += kBandRows) {
      const int count = std::min(kBandRows, tap.count - done);
      std::array<uint32_t, kBandRows> weights;
      for (int i = 0; i < count; ++i) {
        weights[static_cast<size_t>(i)] = TapWeight(tap, done + i, axes_.rows.innerWeight);
      }
      kernels::WeightedRows rows;
      rows.data = source_.Row(tap.first + done);
      rows.stride = source_.Stride();
      rows.weights = weights.data();
      rows.count = count;
      rows.adds = done > 0;
      kernels::SumAlphaRows(rows, static_cast<size_t>(source_.Width()), sums_.data());
    }
  }

  /// Fills the first `count` transparent pixels: a few one by one, many from a whole row.
  void TakePlainMeans(const HalftoneTap& rows, size_t count, RGBArec* target) {
    if (count < transparent_.size() / 16) {
      for (size_t i = 0; i < count; ++i) {
        target[transparent_[i]] = PlainMean(rows, axes_.columns.taps[transparent_[i]]);
      }
      return;
    }
    if (plain_ == nullptr) {
      plain_ = MakeRowMeans(source_, axes_);
      colors_.resize(axes_.columns.taps.size() * 3);
    }
    plain_->Make(rows, colors_.data());
    for (size_t i = 0; i < count; ++i) {
      const uint8_t* color = colors_.data() + size_t{transparent_[i]} * 3;
      target[transparent_[i]] = {color[0], color[1], color[2], 0};
    }
  }

  RGBArec PlainMean(const HalftoneTap& rows, const HalftoneTap& columns) const {
    uint64_t sums[3] = {};
    for (int y = 0; y < rows.count; ++y) {
      const auto* pixel =
          reinterpret_cast<const RGBArec*>(source_.Row(rows.first + y)) + columns.first;
      const uint64_t rowWeight = TapWeight(rows, y, axes_.rows.innerWeight);
      for (int x = 0; x < columns.count; ++x, ++pixel) {
        const uint64_t weight = rowWeight * TapWeight(columns, x, axes_.columns.innerWeight);
        sums[0] += weight * pixel->b;
        sums[1] += weight * pixel->g;
        sums[2] += weight * pixel->r;
      }
    }
    const auto mean = [&](uint64_t sum) {
      return static_cast<uint8_t>((sum + columns_.total / 2) / columns_.total);
    };
    return {mean(sums[0]), mean(sums[1]), mean(sums[2]), 0};
  }

  const Raster& source_;
  const HalftoneAxes& axes_;
  const kernels::AlphaColumns columns_;
  std::vector<int32_t> sums_;
  std::vector<uint32_t> transparent_;
  std::unique_ptr<RowMeans> plain_;
  std::vector<uint8_t> colors_;
};

}  // namespace

std::unique_ptr<AlphaMeans> MakeAlphaMeans(const Raster& source, const HalftoneAxes& axes) {
  if (kernels::AlphaColumns::Fit(axes.rows.total, axes.columns.total)) {
    return std::make_unique<SmallMeans>(source, axes);
  }
  return std::make_unique<LargeMeans>(source, axes);
}

}  // namespace rasterkit::detail
