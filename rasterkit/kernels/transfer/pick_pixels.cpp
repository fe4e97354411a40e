#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/transfer/pick_pixels.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/transfer/pick_pixels.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

void DoSteps(const PixelPicker::Step* steps, size_t count, const uint8_t* row, uint8_t* target) {
  for (const PixelPicker::Step* step = steps; step != steps + count; ++step) {
#if HWY_TARGET == HWY_SCALAR
    for (int i = 0; i < 16; ++i) target[step->target + i] = row[step->source + step->places[i]];
#else
    const hn::Full128<uint8_t> d;
    const auto bytes = hn::LoadU(d, row + step->source);
    hn::StoreU(hn::TableLookupBytes(bytes, hn::LoadU(d, step->places)), d, target + step->target);
#endif
  }
}

constexpr size_t kPixel = 4;

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

void MoveOctet(const PixelPicker::Octet& octet, const uint8_t* row, uint8_t* target) {
  for (const uint8_t place : octet.places) {
    std::memcpy(target, row + kPixel * place, kPixel);
    target += kPixel;
  }
}

#elif HWY_MAX_BYTES >= 32

HWY_INLINE void MoveOctet(const PixelPicker::Octet& octet, const uint8_t* row, uint8_t* target) {
  const hn::Full256<uint8_t> d;
  const hn::Full256<uint32_t> d32;
  const auto places = hn::PromoteTo(d32, hn::LoadU(hn::Full64<uint8_t>(), octet.places));
  const auto pixels = hn::BitCast(d32, hn::LoadU(d, row));
  const auto picked = hn::TableLookupLanes(pixels, hn::IndicesFromVec(d32, places));
  hn::StoreU(hn::BitCast(d, picked), d, target);
}

#else

/// Two shuffles of each half, of which one gives the pixel.
HWY_INLINE void MoveOctet(const PixelPicker::Octet& octet, const uint8_t* row, uint8_t* target) {
  alignas(16) constexpr uint8_t kSpread[16] = {0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
  alignas(16) constexpr uint8_t kBytes[16] = {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3};
  const hn::Full128<uint8_t> d;
  const auto low = hn::LoadU(d, row), high = hn::LoadU(d, row + 16);
  const auto half = hn::Set(d, 16), last = hn::Set(d, 15), four = hn::Set(d, 4);
  const hn::Full64<uint8_t> eight;
  auto order = hn::Load(d, kSpread);
  for (size_t i = 0; i < 32; i += 16) {
    const auto spread = hn::TableLookupBytes(hn::LoadU(eight, octet.places), order);
    const auto twice = hn::Add(spread, spread);
    const auto places = hn::Add(hn::Add(twice, twice), hn::Load(d, kBytes));
    const auto inHigh = hn::Eq(hn::And(places, half), half);
    const auto within = hn::And(places, last);
    const auto picked = hn::IfThenElse(inHigh, hn::TableLookupBytes(high, within),
                                       hn::TableLookupBytes(low, within));
    hn::StoreU(picked, d, target + i);
    order = hn::Add(order, four);
  }
}

#endif

void DoOctets(const PixelPicker::Octet* octets, size_t count, const uint8_t* row, uint8_t* target) {
  for (const PixelPicker::Octet* octet = octets; octet != octets + count; ++octet) {
    MoveOctet(*octet, row + octet->source, target + octet->target);
  }
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

constexpr size_t kBlock = 16;

template <int kBytes>
void MoveSingles(const std::vector<PixelPicker::Single>& singles, const uint8_t* row,
                 uint8_t* target) {
  for (const PixelPicker::Single& single : singles) {
    std::memcpy(target + single.target, row + single.source, kBytes);
  }
}

HWY_EXPORT(DoSteps);
HWY_EXPORT(DoOctets);

}  // namespace

PixelPicker::PixelPicker(const std::vector<int32_t>& columns, int sourceBytes, int targetBytes,
                         int32_t sourceWidth)
    : sourceBytes_(static_cast<uint32_t>(sourceBytes)),
      targetBytes_(static_cast<uint32_t>(targetBytes)),
      rowBytes_(static_cast<size_t>(sourceWidth) * sourceBytes_),
      targetRowBytes_(columns.size() * targetBytes_) {
  for (size_t i = 0; i < columns.size(); ++i) {
    isOneToOne_ = isOneToOne_ && columns[i] == columns[0] + static_cast<int32_t>(i);
  }
  size_t next = 0;
  while (next < columns.size()) {
    if (AddOctet(columns, next) || AddStep(columns, next)) continue;
    singles_.push_back({static_cast<uint32_t>(columns[next]) * sourceBytes_,
                        static_cast<uint32_t>(next) * targetBytes_});
    ++next;
  }
}

/// Takes the next eight columns where the pixels are of 4 bytes and lie among eight.
bool PixelPicker::AddOctet(const std::vector<int32_t>& columns, size_t& next) {
  constexpr size_t kPixels = 8, kPixelBytes = 4;
  const bool fits = sourceBytes_ == kPixelBytes && targetBytes_ == kPixelBytes &&
                    rowBytes_ >= kPixels * kPixelBytes && columns.size() - next >= kPixels;
  if (!fits) return false;
  const int32_t* const wanted = columns.data() + next;
  const auto [low, high] = std::minmax_element(wanted, wanted + kPixels);
  if (*high - *low >= static_cast<int32_t>(kPixels)) return false;
  const size_t first = std::min(static_cast<size_t>(*low), rowBytes_ / kPixelBytes - kPixels);
  Octet octet{
      static_cast<uint32_t>(first * kPixelBytes), static_cast<uint32_t>(next * kPixelBytes), {}};
  for (size_t i = 0; i < kPixels; ++i) {
    octet.places[i] = static_cast<uint8_t>(static_cast<size_t>(wanted[i]) - first);
  }
  octets_.push_back(octet);
  next += kPixels;
  return true;
}

/// Takes as many of the next columns as one block of the row and one of the target hold. False when
/// that is one alone, or when a whole block would reach beyond either row.
bool PixelPicker::AddStep(const std::vector<int32_t>& columns, size_t& next) {
  const size_t target = next * targetBytes_;
  if (rowBytes_ < kBlock || target + kBlock > targetRowBytes_) return false;
  int32_t low = columns[next], high = low;
  size_t end = next;
  for (; end < columns.size() && (end - next + 1) * targetBytes_ <= kBlock; ++end) {
    const int32_t newLow = std::min(low, columns[end]), newHigh = std::max(high, columns[end]);
    if ((static_cast<size_t>(newHigh - newLow) + 1) * sourceBytes_ > kBlock) break;
    low = newLow;
    high = newHigh;
  }
  if (end - next < 2) return false;
  Step step{};
  const size_t source = std::min(static_cast<size_t>(low) * sourceBytes_, rowBytes_ - kBlock);
  step.source = static_cast<uint32_t>(source);
  step.target = static_cast<uint32_t>(target);
  for (size_t i = next; i < end; ++i) {
    for (uint32_t byte = 0; byte < targetBytes_; ++byte) {
      step.places[(i - next) * targetBytes_ + byte] =
          static_cast<uint8_t>(static_cast<size_t>(columns[i]) * sourceBytes_ + byte - source);
    }
  }
  steps_.push_back(step);
  next = end;
  return true;
}

void PixelPicker::Pick(const uint8_t* row, uint8_t* target) const {
  // Octets write their pixels only, and steps write beyond theirs.
  HWY_DYNAMIC_DISPATCH(DoSteps)(steps_.data(), steps_.size(), row, target);
  HWY_DYNAMIC_DISPATCH(DoOctets)(octets_.data(), octets_.size(), row, target);
  // What lies between them comes last.
  switch (targetBytes_) {
    case 1:
      return MoveSingles<1>(singles_, row, target);
    case 3:
      return MoveSingles<3>(singles_, row, target);
    default:
      return MoveSingles<4>(singles_, row, target);
  }
}

}  // namespace rasterkit::kernels
#endif
