#include <algorithm>
#include <cstring>
#include <vector>

#include <rasterkit/host/kernels/convert_rows.h>
#include <rasterkit/host/kernels/halftone_rows.h>
#include <rasterkit/host/raster/blit.h>
#include <rasterkit/host/raster/blit_axes.h>
#include <rasterkit/host/raster/halftone.h>
#include <rasterkit/host/raster/row_conversion.h>

namespace rasterkit {
namespace {

using namespace detail;
using kernels::HalftoneAxis;
using kernels::HalftoneTap;

int64_t Length(int start, int end) {
  return std::abs(int64_t{end} - start);
}

bool IsTooLong(const PixelRect& place, const Raster& source) {
  return std::max({Length(place.left, place.right), Length(place.top, place.bottom),
                   int64_t{source.Width()}, int64_t{source.Height()}}) >
         kernels::kLongestHalftoneSide;
}

HalftoneAxis MakeAxis(int start, int end, int sourceSize, int first, int last) {
  const int low = std::min(start, end);
  return kernels::MakeHalftoneAxis(Length(start, end), sourceSize, int64_t{first} - low,
                                   int64_t{last} - low, end < start);
}

struct HalftoneAxes {
  HalftoneAxis columns, rows;
};

/// Calls `add(source row, weight)` for the rows that a tap covers.
template <class Add>
void ForEachWeight(const HalftoneTap& tap, uint32_t innerWeight, Add add) {
  const int last = tap.first + tap.count - 1;
  add(tap.first, tap.firstWeight);
  for (int y = tap.first + 1; y < last; ++y) add(y, innerWeight);
  if (tap.count > 1) add(last, tap.lastWeight);
}

/// Means of pixels whose alpha does not count; the result is opaque.
class OpaqueMeans {
 public:
  OpaqueMeans(const Raster& source, const HalftoneAxes& axes)
      : source_(source),
        axes_(axes),
        table_(MakePixelTable(source.palette)),
        row_(static_cast<size_t>(source.Width())),
        sums_(row_.size() * 3),
        means_(axes.columns.taps.size() * 3) {}

  void Make(const HalftoneTap& rows, RGBArec* pixels) {
    std::fill(sums_.begin(), sums_.end(), 0);
    ForEachWeight(rows, axes_.rows.innerWeight, [&](int y, uint32_t weight) {
      RowTo24(source_.Row(y), source_.Format(), source_.Width(), table_, row_.data());
      kernels::AddWeightedBytes(&row_[0].b, sums_.size(), weight, sums_.data());
    });
    kernels::MeanRow24(sums_.data(), axes_.columns, axes_.rows.total, means_.data());
    kernels::Row24To32(means_.data(), axes_.columns.taps.size(),
                       reinterpret_cast<uint8_t*>(pixels));
  }

 private:
  const Raster& source_;
  const HalftoneAxes& axes_;
  const PixelTable table_;
  std::vector<RGBrec> row_;
  std::vector<uint32_t> sums_;
  std::vector<uint8_t> means_;
};

/// Means of 32-bit pixels, weighted by their alpha.
class AlphaMeans {
 public:
  AlphaMeans(const Raster& source, const HalftoneAxes& axes)
      : source_(source),
        axes_(axes),
        sums_(static_cast<size_t>(source.Width()) * kernels::kAlphaSums) {}

  void Make(const HalftoneTap& rows, RGBArec* pixels) {
    std::fill(sums_.begin(), sums_.end(), 0);
    ForEachWeight(rows, axes_.rows.innerWeight, [&](int y, uint32_t weight) {
      kernels::AddWeightedPixels32(source_.Row(y), static_cast<size_t>(source_.Width()), weight,
                                   sums_.data());
    });
    kernels::MeanRow32(sums_.data(), axes_.columns, axes_.rows.total,
                       reinterpret_cast<uint8_t*>(pixels));
  }

 private:
  const Raster& source_;
  const HalftoneAxes& axes_;
  std::vector<uint64_t> sums_;
};

template <class Means>
void DrawMeans(Raster& target, const PixelRect& inside, const HalftoneAxes& axes, Means means,
               const PixelRule& rule) {
  const int width = inside.right - inside.left;
  std::vector<RGBArec> pixels(static_cast<size_t>(width));
  const auto targetRows = MakeTargetRows(target, rule);
  int y = inside.top;
  for (const HalftoneTap& rows : axes.rows.taps) {
    means.Make(rows, pixels.data());
    targetRows->Write(y++, inside.left, width, pixels.data());
  }
}

void Halftone(Raster& target, const PixelRect& place, const Raster& source, const PixelRule& rule,
              bool weightByAlpha) {
  if (source.Width() == 0 || source.Height() == 0) return;
  const PixelRect covered{std::min(place.left, place.right), std::min(place.top, place.bottom),
                          std::max(place.left, place.right), std::max(place.top, place.bottom)};
  const PixelRect inside = ClipRect(covered, target.Width(), target.Height());
  if (inside.left >= inside.right || inside.top >= inside.bottom) return;
  const HalftoneAxes axes{
      MakeAxis(place.left, place.right, source.Width(), inside.left, inside.right),
      MakeAxis(place.top, place.bottom, source.Height(), inside.top, inside.bottom)};
  if (weightByAlpha) {
    DrawMeans(target, inside, axes, AlphaMeans(source, axes), rule);
  } else {
    DrawMeans(target, inside, axes, OpaqueMeans(source, axes), rule);
  }
}

}  // namespace

void BlitHalftone(Raster& target, const PixelRect& place, const Raster& source,
                  std::optional<TColor> key) {
  const PixelRule rule = RuleForDrawing(source, key);
  if (rule.kind == PixelRule::Kind::keyed || IsTooLong(place, source)) {
    BlitStretched(target, place, source, key);
  } else {
    Halftone(target, place, source, rule, rule.kind == PixelRule::Kind::blend);
  }
}

void CopyHalftone(Raster& target, const PixelRect& place, const Raster& source) {
  if (IsTooLong(place, source)) {
    BlitCopied(target, place, source, {0, 0, source.Width(), source.Height()});
    return;
  }
  PixelRule rule;
  rule.kind = PixelRule::Kind::copy;
  Halftone(target, place, source, rule, source.Format() == pf32bit);
}

}  // namespace rasterkit
