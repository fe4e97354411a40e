#include <array>

#include <rasterkit/host/kernels/halftone_alpha.h>

namespace rasterkit::kernels {
namespace {

using Sums = std::array<uint64_t, kAlphaSums>;

uint8_t RoundedQuotient(uint64_t sum, uint64_t divisor) {
  return static_cast<uint8_t>((sum + divisor / 2) / divisor);
}

/// The sums that a tap covers, each times its weight.
Sums AddTap(const uint64_t* sums, const HalftoneTap& tap, uint32_t innerWeight) {
  Sums result{};
  const auto add = [&](int32_t column, uint64_t weight) {
    for (size_t i = 0; i < kAlphaSums; ++i)
      result[i] += weight * sums[static_cast<size_t>(column) * kAlphaSums + i];
  };
  const int32_t last = tap.first + tap.count - 1;
  add(tap.first, tap.firstWeight);
  for (int32_t column = tap.first + 1; column < last; ++column) add(column, innerWeight);
  if (tap.count > 1) add(last, tap.lastWeight);
  return result;
}

}  // namespace

void AddWeightedPixels32(const uint8_t* pixels, size_t width, uint32_t weight, uint64_t* sums) {
  for (size_t x = 0; x < width; ++x, pixels += 4, sums += kAlphaSums) {
    const uint64_t alpha = uint64_t{weight} * pixels[3];
    sums[3] += alpha;
    for (size_t c = 0; c < 3; ++c) {
      sums[c] += alpha * pixels[c];
      sums[4 + c] += uint64_t{weight} * pixels[c];
    }
  }
}

void MeanRow32(const uint64_t* sums, const HalftoneAxis& columns, uint32_t rowsTotal,
               uint8_t* target) {
  const uint64_t total = uint64_t{rowsTotal} * columns.total;
  for (const HalftoneTap& tap : columns.taps) {
    const Sums sum = AddTap(sums, tap, columns.innerWeight);
    for (size_t c = 0; c < 3; ++c)
      target[c] =
          sum[3] != 0 ? RoundedQuotient(sum[c], sum[3]) : RoundedQuotient(sum[4 + c], total);
    target[3] = RoundedQuotient(sum[3], total);
    target += 4;
  }
}

}  // namespace rasterkit::kernels
