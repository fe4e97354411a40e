#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/filters/unfilter_row.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/filters/unfilter_row.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/filters/paeth-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

/// Bytes from `first` on, one after the other.
void UnfilterBytes(uint8_t filter, const uint8_t* above, size_t first, size_t bytes, size_t step,
                   uint8_t* row) {
  const auto add = [&](size_t i, uint8_t guess) { row[i] = static_cast<uint8_t>(row[i] + guess); };
  const size_t edge = std::clamp(step, first, std::max(first, bytes));
  const size_t inEdge = std::min(edge, bytes);
  switch (filter) {
    case kFilterSub:
      for (size_t i = edge; i < bytes; ++i) add(i, row[i - step]);
      break;
    case kFilterUp:
      for (size_t i = first; i < bytes; ++i) add(i, above[i]);
      break;
    case kFilterAverage:
      for (size_t i = first; i < inEdge; ++i) add(i, static_cast<uint8_t>(above[i] >> 1));
      for (size_t i = edge; i < bytes; ++i) add(i, MeanOf(row[i - step], above[i]));
      break;
    case kFilterPaeth:
      for (size_t i = first; i < inEdge; ++i) add(i, above[i]);
      for (size_t i = edge; i < bytes; ++i) {
        add(i, PaethOf(row[i - step], above[i], above[i - step]));
      }
      break;
    default:
      break;
  }
}

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

size_t UnfilterPixels(uint8_t, const uint8_t*, size_t, size_t, uint8_t*) {
  return 0;
}
size_t AddAbove(const uint8_t*, size_t, uint8_t*) {
  return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

size_t AddAbove(const uint8_t* above, size_t bytes, uint8_t* row) {
  const hn::ScalableTag<uint8_t> d;
  const size_t step = hn::Lanes(d);
  size_t i = 0;
  for (; i + step <= bytes; i += step) {
    hn::StoreU(hn::Add(hn::LoadU(d, row + i), hn::LoadU(d, above + i)), d, row + i);
  }
  return i;
}

struct SubGuess {
  template <class V>
  HWY_INLINE V operator()(V left, V, V) const {
    return left;
  }
};
struct AverageGuess {
  template <class V>
  HWY_INLINE V operator()(V left, V above, V) const {
    return MeanLanes(left, above);
  }
};
struct PaethGuess {
  template <class V>
  HWY_INLINE V operator()(V left, V above, V corner) const {
    return PaethLanes(left, above, corner);
  }
};

/// All pixels but the last: lanes can reach beyond a pixel, but not beyond the row.
template <size_t kPixelBytes, class Guess>
HWY_INLINE size_t UnfilterLanes(const uint8_t* above, size_t bytes, uint8_t* row, Guess guess) {
  const hn::FixedTag<uint8_t, kPixelBytes <= 4 ? 4 : 8> d;
  auto left = hn::Zero(d), corner = hn::Zero(d);
  size_t i = 0;
  for (; i + 2 * kPixelBytes <= bytes; i += kPixelBytes) {
    const auto up = hn::LoadU(d, above + i);
    left = hn::Add(hn::LoadU(d, row + i), guess(left, up, corner));
    corner = up;
    if constexpr (kPixelBytes == 4 || kPixelBytes == 8) {
      hn::StoreU(left, d, row + i);
    } else {
      alignas(8) uint8_t pixel[8];
      hn::Store(left, d, pixel);
      std::memcpy(row + i, pixel, kPixelBytes);
    }
  }
  return i;
}

template <class Guess>
HWY_INLINE size_t UnfilterBySize(const uint8_t* above, size_t bytes, size_t pixelBytes,
                                 uint8_t* row, Guess guess) {
  switch (pixelBytes) {
    case 3:
      return UnfilterLanes<3>(above, bytes, row, guess);
    case 4:
      return UnfilterLanes<4>(above, bytes, row, guess);
    case 6:
      return UnfilterLanes<6>(above, bytes, row, guess);
    case 8:
      return UnfilterLanes<8>(above, bytes, row, guess);
    default:
      return 0;
  }
}

/// Bytes done.
size_t UnfilterPixels(uint8_t filter, const uint8_t* above, size_t bytes, size_t pixelBytes,
                      uint8_t* row) {
  switch (filter) {
    case kFilterSub:
      return UnfilterBySize(above, bytes, pixelBytes, row, SubGuess());
    case kFilterAverage:
      return UnfilterBySize(above, bytes, pixelBytes, row, AverageGuess());
    case kFilterPaeth:
      return UnfilterBySize(above, bytes, pixelBytes, row, PaethGuess());
    default:
      return 0;
  }
}

#endif

void Unfilter(uint8_t filter, const uint8_t* above, size_t bytes, size_t pixelBytes, uint8_t* row) {
  const size_t done = filter == kFilterUp ? AddAbove(above, bytes, row)
                                          : UnfilterPixels(filter, above, bytes, pixelBytes, row);
  UnfilterBytes(filter, above, done, bytes, pixelBytes, row);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Unfilter);

}  // namespace

void UnfilterRow(uint8_t filter, const uint8_t* above, size_t bytes, size_t pixelBytes,
                 uint8_t* row) {
  if (filter == kFilterNone || filter > kFilterPaeth) return;
  HWY_DYNAMIC_DISPATCH(Unfilter)(filter, above, bytes, pixelBytes, row);
}

}  // namespace rasterkit::kernels
#endif
