#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/filters/unfilter_row.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/filters/filter_row.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/filters/paeth-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

struct Rows {
  const uint8_t* row;
  const uint8_t* above;
  size_t bytes, step;
  uint8_t* target;
};

uint8_t GuessOf(PngFilter filter, const Rows& rows, size_t i) {
  const bool isEdge = i < rows.step;
  const uint8_t left = isEdge ? 0 : rows.row[i - rows.step], above = rows.above[i];
  switch (filter) {
    case kFilterSub:
      return left;
    case kFilterUp:
      return above;
    case kFilterAverage:
      return MeanOf(left, above);
    case kFilterPaeth:
      return PaethOf(left, above, isEdge ? 0 : rows.above[i - rows.step]);
    default:
      return 0;
  }
}

uint64_t FilterBytes(PngFilter filter, const Rows& rows, size_t first, size_t end) {
  uint64_t sum = 0;
  for (size_t i = first; i < end; ++i) {
    const auto value = static_cast<uint8_t>(rows.row[i] - GuessOf(filter, rows, i));
    rows.target[i] = value;
    sum += value < 128 ? value : 256u - value;
  }
  return sum;
}

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

uint64_t Filter(PngFilter filter, const uint8_t* row, const uint8_t* above, size_t bytes,
                size_t step, uint8_t* target) {
  return FilterBytes(filter, {row, above, bytes, step, target}, 0, bytes);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::ScalableTag<uint8_t>;
using Lanes = hn::Vec<Tag>;

template <PngFilter kFilter>
HWY_INLINE Lanes GuessLanes(const Rows& rows, size_t i) {
  const Tag d;
  if constexpr (kFilter == kFilterSub) {
    return hn::LoadU(d, rows.row + i - rows.step);
  } else if constexpr (kFilter == kFilterUp) {
    return hn::LoadU(d, rows.above + i);
  } else if constexpr (kFilter == kFilterAverage) {
    return MeanLanes(hn::LoadU(d, rows.row + i - rows.step), hn::LoadU(d, rows.above + i));
  } else if constexpr (kFilter == kFilterPaeth) {
    return PaethLanes(hn::LoadU(d, rows.row + i - rows.step), hn::LoadU(d, rows.above + i),
                      hn::LoadU(d, rows.above + i - rows.step));
  } else {
    return hn::Zero(d);
  }
}

template <PngFilter kFilter>
HWY_INLINE uint64_t FilterLanes(const Rows& rows) {
  const Tag d;
  const hn::Repartition<uint64_t, Tag> d64;
  const size_t lanes = hn::Lanes(d);
  size_t i = std::min(rows.bytes, rows.step);
  uint64_t sum = FilterBytes(kFilter, rows, 0, i);
  auto sums = hn::Zero(d64);
  const auto zero = hn::Zero(d);
  for (; i + lanes <= rows.bytes; i += lanes) {
    const auto value = hn::Sub(hn::LoadU(d, rows.row + i), GuessLanes<kFilter>(rows, i));
    hn::StoreU(value, d, rows.target + i);
    // The lesser of a byte and its negative, as unsigned numbers, is the absolute value.
    sums = hn::Add(sums, hn::SumsOf8(hn::Min(value, hn::Sub(zero, value))));
  }
  sum += hn::GetLane(hn::SumOfLanes(d64, sums));
  return sum + FilterBytes(kFilter, rows, i, rows.bytes);
}

uint64_t Filter(PngFilter filter, const uint8_t* row, const uint8_t* above, size_t bytes,
                size_t step, uint8_t* target) {
  const Rows rows{row, above, bytes, step, target};
  switch (filter) {
    case kFilterSub:
      return FilterLanes<kFilterSub>(rows);
    case kFilterUp:
      return FilterLanes<kFilterUp>(rows);
    case kFilterAverage:
      return FilterLanes<kFilterAverage>(rows);
    case kFilterPaeth:
      return FilterLanes<kFilterPaeth>(rows);
    default:
      return FilterLanes<kFilterNone>(rows);
  }
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Filter);

}  // namespace

uint64_t FilterRow(PngFilter filter, const uint8_t* row, const uint8_t* above, size_t bytes,
                   size_t pixelBytes, uint8_t* target) {
  return HWY_DYNAMIC_DISPATCH(Filter)(filter, row, above, bytes, pixelBytes, target);
}

}  // namespace rasterkit::kernels
#endif
