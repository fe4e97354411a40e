#include <array>

#include <rasterkit/host/kernels/halftone_rows.h>

namespace rasterkit::kernels {
namespace {

uint8_t RoundedQuotient(uint64_t sum, uint64_t divisor) {
  return static_cast<uint8_t>((sum + divisor / 2) / divisor);
}

/// The sums that a tap covers, each times its weight.
template <size_t kSums, class Sum>
std::array<uint64_t, kSums> AddTap(const Sum* sums, const HalftoneTap& tap, uint32_t innerWeight) {
  std::array<uint64_t, kSums> result{};
  const auto add = [&](int32_t column, uint64_t weight) {
    for (size_t i = 0; i < kSums; ++i)
      result[i] += weight * sums[static_cast<size_t>(column) * kSums + i];
  };
  const int32_t last = tap.first + tap.count - 1;
  add(tap.first, tap.firstWeight);
  for (int32_t column = tap.first + 1; column < last; ++column) add(column, innerWeight);
  if (tap.count > 1) add(last, tap.lastWeight);
  return result;
}

}  // namespace

void AddWeightedBytes(const uint8_t* bytes, size_t count, uint32_t weight, uint32_t* sums) {
  for (size_t i = 0; i < count; ++i) sums[i] += weight * bytes[i];
}

void MeanRow24(const uint32_t* sums, const HalftoneAxis& columns, uint32_t rowsTotal,
               uint8_t* target) {
  const uint64_t total = uint64_t{rowsTotal} * columns.total;
  for (const HalftoneTap& tap : columns.taps)
    for (const uint64_t sum : AddTap<3>(sums, tap, columns.innerWeight))
      *target++ = RoundedQuotient(sum, total);
}

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
    const auto sum = AddTap<kAlphaSums>(sums, tap, columns.innerWeight);
    for (size_t c = 0; c < 3; ++c)
      target[c] =
          sum[3] != 0 ? RoundedQuotient(sum[c], sum[3]) : RoundedQuotient(sum[4 + c], total);
    target[3] = RoundedQuotient(sum[3], total);
    target += 4;
  }
}

}  // namespace rasterkit::kernels
