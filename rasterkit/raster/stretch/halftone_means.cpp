#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>
#include <vector>

#include <rasterkit/kernels/halftone/halftone_growth.h>
#include <rasterkit/kernels/halftone/halftone_rows.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/raster/stretch/halftone_means.h>

namespace rasterkit::detail {
namespace {

using kernels::HalftoneAxis;
using kernels::HalftoneTap;
using kernels::kHalftonePadding;
using kernels::WordDivisor;

uint64_t TotalOf(const HalftoneAxes& axes) {
  return uint64_t{axes.columns.total} * axes.rows.total;
}

/// Rows of a source as 24-bit pixels, converted if they have another format.
class PixelBands {
 public:
  explicit PixelBands(const Raster& source)
      : source_(source),
        table_(MakePixelTable(source.palette)),
        stride_(static_cast<size_t>(source.Width()) * 3) {
    if (source.Format() != pf24bit) converted_.resize(stride_ * kBandRows);
  }

  size_t RowBytes() const { return stride_; }

  /// `count` rows from `first` on, at most kBandRows; valid until the next call.
  kernels::WeightedRows Rows(int first, int count) {
    kernels::WeightedRows rows;
    rows.count = count;
    if (source_.Format() == pf24bit) {
      rows.data = source_.Row(first);
      rows.stride = source_.Stride();
      return rows;
    }
    for (int i = 0; i < count; ++i) {
      ConvertRow(first + i, converted_.data() + stride_ * static_cast<size_t>(i));
    }
    rows.data = converted_.data();
    rows.stride = stride_;
    return rows;
  }

  void ConvertRow(int y, uint8_t* target) const {
    RowTo24(source_.Row(y), source_.Format(), source_.Width(), table_,
            reinterpret_cast<RGBrec*>(target));
  }

 private:
  const Raster& source_;
  const PixelTable table_;
  size_t stride_;
  std::vector<uint8_t> converted_;
};

/// Sums rows first, then columns: `Sum` holds the weighted sum of rows.
template <class Sum>
class SummedMeans : public RowMeans {
 public:
  SummedMeans(const Raster& source, const HalftoneAxes& axes)
      : bands_(source),
        axes_(axes),
        total_(TotalOf(axes)),
        columns_(bands_.RowBytes() + kHalftonePadding),
        sums_(axes.columns.taps.size() * 3 + kHalftonePadding) {
    if constexpr (std::is_same_v<Sum, uint16_t>) divisor_ = WordDivisor::For(total_);
  }

  void Make(const HalftoneTap& rows, uint8_t* target) override {
    AddRows(rows);
    const size_t count = axes_.columns.taps.size() * 3;
    if constexpr (std::is_same_v<Sum, uint16_t>) {
      kernels::SumColumns(columns_.data(), axes_.columns, sums_.data());
      kernels::DivideSums(sums_.data(), count, divisor_, target);
    } else if (255 * total_ + total_ / 2 <= std::numeric_limits<uint32_t>::max()) {
      kernels::SumColumns(columns_.data(), axes_.columns, sums_.data());
      kernels::DivideSums(sums_.data(), count, static_cast<uint32_t>(total_), target);
    } else {
      kernels::MeansOfColumns(columns_.data(), axes_.columns, total_, target);
    }
  }

 private:
  void AddRows(const HalftoneTap& tap) {
    for (int done = 0; done < tap.count; done += kBandRows) {
      const int count = std::min(kBandRows, tap.count - done);
      std::array<uint32_t, kBandRows> weights;
      for (int i = 0; i < count; ++i) {
        weights[static_cast<size_t>(i)] = TapWeight(tap, done + i, axes_.rows.innerWeight);
      }
      kernels::WeightedRows rows = bands_.Rows(tap.first + done, count);
      rows.weights = weights.data();
      rows.adds = done > 0;
      kernels::SumRows(rows, bands_.RowBytes(), columns_.data());
    }
  }

  PixelBands bands_;
  const HalftoneAxes& axes_;
  uint64_t total_;
  WordDivisor divisor_;
  std::vector<Sum> columns_, sums_;
};

/// For axes that do not shrink: each source row is stretched once and reused for all target rows
/// between it and its neighbor.
class GrownMeans : public RowMeans {
 public:
  GrownMeans(const Raster& source, const HalftoneAxes& axes)
      : bands_(source),
        axes_(axes),
        plan_(kernels::PlanGrowth(axes.columns)),
        divisor_(WordDivisor::For(TotalOf(axes))),
        pixels_(bands_.RowBytes() + kHalftonePadding) {
    for (StretchedRow& row : rows_) {
      row.sums.resize(axes.columns.taps.size() * 3 + kHalftonePadding);
    }
  }

  void Make(const HalftoneTap& rows, uint8_t* target) override {
    const uint16_t* upper = RowSums(rows.first);
    const uint16_t* lower = rows.count > 1 ? RowSums(rows.first + 1) : upper;
    kernels::MixRows(upper, static_cast<uint16_t>(rows.firstWeight), lower,
                     static_cast<uint16_t>(rows.count > 1 ? rows.lastWeight : 0),
                     axes_.columns.taps.size() * 3, divisor_, target);
  }

 private:
  struct StretchedRow {
    int y = -1;
    std::vector<uint16_t> sums;
  };

  /// Two neighboring rows never use the same slot.
  const uint16_t* RowSums(int y) {
    StretchedRow& row = rows_[static_cast<size_t>(y % 2)];
    if (row.y != y) {
      bands_.ConvertRow(y, pixels_.data());
      kernels::GrowRow(pixels_.data(), plan_, row.sums.data());
      row.y = y;
    }
    return row.sums.data();
  }

  PixelBands bands_;
  const HalftoneAxes& axes_;
  const kernels::GrowthPlan plan_;
  const WordDivisor divisor_;
  std::vector<uint8_t> pixels_;
  std::array<StretchedRow, 2> rows_;
};

}  // namespace

std::unique_ptr<RowMeans> MakeRowMeans(const Raster& source, const HalftoneAxes& axes) {
  if (!WordDivisor::Fits(TotalOf(axes))) {
    return std::make_unique<SummedMeans<uint32_t>>(source, axes);
  }
  if (axes.columns.shrinks || axes.rows.shrinks) {
    return std::make_unique<SummedMeans<uint16_t>>(source, axes);
  }
  return std::make_unique<GrownMeans>(source, axes);
}

}  // namespace rasterkit::detail
