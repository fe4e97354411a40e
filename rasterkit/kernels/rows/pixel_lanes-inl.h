// Pixels of three or four bytes in vectors of 32-bit lanes, a pixel a lane, and back. For kernel
// files only, which include it once for each SIMD target.
#if defined(RASTERKIT_PIXEL_LANES_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef RASTERKIT_PIXEL_LANES_INL
#undef RASTERKIT_PIXEL_LANES_INL
#else
#define RASTERKIT_PIXEL_LANES_INL
#endif

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR

constexpr size_t kMaxVectorBytes = 64;

using Bytes = hn::CappedTag<uint8_t, kMaxVectorBytes>;
using Words = hn::Repartition<int16_t, Bytes>;
using Lanes = hn::Repartition<uint32_t, Bytes>;
using SignedLanes = hn::RebindToSigned<Lanes>;
using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;
using LaneVector = hn::Vec<Lanes>;
using SignedLaneVector = hn::Vec<SignedLanes>;
using LaneMask = hn::Mask<Lanes>;
using LaneOrder = decltype(hn::SetTableIndices(Lanes(), static_cast<const int32_t*>(nullptr)));

constexpr int kMaxLanes = static_cast<int>(hn::MaxLanes(Lanes()));

/// Four vectors of lanes: as many pixels as a vector has bytes.
struct Quad {
  LaneVector v0, v1, v2, v3;
};

/// `function` of each vector.
template <class Function>
HWY_INLINE Quad ForEach(Function function, const Quad& q) {
  return {function(q.v0), function(q.v1), function(q.v2), function(q.v3)};
}

template <class Function>
HWY_INLINE Quad ForEach(Function function, const Quad& a, const Quad& b) {
  return {function(a.v0, b.v0), function(a.v1, b.v1), function(a.v2, b.v2), function(a.v3, b.v3)};
}

/// For each lane the sum of the products of its two words. Both sums begin with zero: what one
/// begins with belongs to another lane on some processors, which add neighbors at the end.
HWY_INLINE SignedLaneVector SumOfProducts(WordVector a, WordVector b) {
  auto odd = hn::Zero(SignedLanes());
  const auto even =
      hn::ReorderWidenMulAccumulate(SignedLanes(), a, b, hn::Zero(SignedLanes()), odd);
  return hn::RearrangeToOddPlusEven(even, odd);
}

/// The order of lanes that `lane(i)` says.
template <class LaneOf>
HWY_INLINE LaneOrder OrderLanes(LaneOf lane) {
  int32_t order[kMaxLanes];
  for (int i = 0; i < static_cast<int>(hn::Lanes(Lanes())); ++i) order[i] = lane(i);
  return hn::SetTableIndices(Lanes(), order);
}

/// Brings four three-byte pixels to the start of each block of 16 bytes.
HWY_INLINE LaneOrder SpreadOrder() {
  return OrderLanes([](int i) { return i / 4 * 3 + i % 4; });
}

/// The reverse: what lies in the first 12 bytes of each block, side by side: three quarters of a
/// vector, here a b c. Then turned by `k` quarters, so that of four vectors each quarter stands
/// where it belongs when they are joined to three:
///
///   order 0:  a0 b0 c0 ..
///   order 1:  b1 c1 .. a1      first:   a0 b0 c0 a1
///   order 2:  c2 .. a2 b2      second:  b1 c1 a2 b2
///   order 3:  .. a3 b3 c3      third:   c2 a3 b3 c3
///
/// The quarters marked by dots are not used.
HWY_INLINE LaneOrder JoinOrder(int k) {
  return OrderLanes([k](int i) {
    const int lanes = static_cast<int>(hn::Lanes(Lanes()));
    const int place = (i + k * lanes / 4) % lanes;
    return place < lanes / 4 * 3 ? place / 3 * 4 + place % 3 : i;
  });
}

/// Loads bytes such that four pixels start each block of 16. With three-byte pixels, a quarter of
/// a vector behind them is read too.
template <int kBytes>
HWY_INLINE ByteVector LoadSpread(const LaneOrder& spread, const uint8_t* pixels) {
  const auto loaded = hn::LoadU(Bytes(), pixels);
  if constexpr (kBytes == 4 || hn::MaxLanes(Bytes()) == 16) return loaded;
  return hn::BitCast(Bytes(), hn::TableLookupLanes(hn::BitCast(Lanes(), loaded), spread));
}

/// Pixels that are read behind the ones that are meant.
template <int kBytes>
constexpr size_t PixelsReadAhead(size_t vectorBytes) {
  return kBytes == 3 ? vectorBytes / 12 + 1 : 0;
}

/// Which bytes of each block make its twelve bytes of three-byte pixels, and the orders that join
/// the blocks.
struct PackedOrder {
  ByteVector bytes;
  LaneOrder join0, join1, join2, join3;
};

HWY_INLINE PackedOrder MakePackedOrder(const uint8_t (&bytes)[16]) {
  return {hn::LoadDup128(Bytes(), bytes), JoinOrder(0), JoinOrder(1), JoinOrder(2), JoinOrder(3)};
}

HWY_INLINE LaneVector Pack(const PackedOrder& order, const LaneOrder& join, LaneVector v) {
  const auto packed =
      hn::BitCast(Lanes(), hn::TableLookupBytes(hn::BitCast(Bytes(), v), order.bytes));
  if constexpr (hn::MaxLanes(Bytes()) == 16) return packed;
  return hn::TableLookupLanes(packed, join);
}

HWY_INLINE void StoreLanes(LaneVector v, uint8_t* target) {
  hn::StoreU(hn::BitCast(Bytes(), v), Bytes(), target);
}

#if HWY_TARGET <= HWY_AVX3

/// Stores the lanes as three-byte pixels, in three whole vectors, each joined of two neighbors as
/// at `JoinOrder`: a load from behind a masked or overlapping store would have to wait for it.
HWY_INLINE void StorePacked(const PackedOrder& order, const Quad& q, uint8_t* target) {
  const size_t step = hn::Lanes(Bytes());
  const size_t quarter = hn::Lanes(Lanes()) / 4;
  const auto v0 = Pack(order, order.join0, q.v0);
  const auto v1 = Pack(order, order.join1, q.v1);
  const auto v2 = Pack(order, order.join2, q.v2);
  const auto v3 = Pack(order, order.join3, q.v3);
  StoreLanes(hn::IfThenElse(hn::FirstN(Lanes(), 3 * quarter), v0, v1), target);
  StoreLanes(hn::IfThenElse(hn::FirstN(Lanes(), 2 * quarter), v1, v2), target + step);
  StoreLanes(hn::IfThenElse(hn::FirstN(Lanes(), quarter), v2, v3), target + 2 * step);
}

#else

/// Stores three quarters of a vector and not a byte more.
HWY_INLINE void StoreThreeQuarters(LaneVector v, uint8_t* target) {
  const hn::Half<Lanes> half;
  const hn::Half<decltype(half)> quarter;
  auto* lanes = reinterpret_cast<uint32_t*>(target);
  hn::StoreU(hn::LowerHalf(half, v), half, lanes);
  hn::StoreU(hn::LowerHalf(quarter, hn::UpperHalf(half, v)), quarter, lanes + hn::Lanes(half));
}

/// Stores the lanes as three-byte pixels. All but the last vector write a quarter too far, which
/// the next one puts right.
HWY_INLINE void StorePacked(const PackedOrder& order, const Quad& q, uint8_t* target) {
  const size_t step = hn::Lanes(Bytes()) / 4 * 3;
  StoreLanes(Pack(order, order.join0, q.v0), target);
  StoreLanes(Pack(order, order.join0, q.v1), target + step);
  StoreLanes(Pack(order, order.join0, q.v2), target + 2 * step);
  StoreThreeQuarters(Pack(order, order.join0, q.v3), target + 3 * step);
}

#endif

/// The orders of rows of pixels `kBytes` wide.
struct PixelOrders {
  LaneOrder spread;
  ByteVector toLanes;
  PackedOrder packed;
};

HWY_INLINE PixelOrders MakePixelOrders() {
  constexpr uint8_t kToLanes[16] = {0, 1, 2, 2, 3, 4, 5, 5, 6, 7, 8, 8, 9, 10, 11, 11};
  constexpr uint8_t kPacked[16] = {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0, 0, 0, 0};
  return {SpreadOrder(), hn::LoadDup128(Bytes(), kToLanes), MakePackedOrder(kPacked)};
}

/// Lanes B G R A, or B G R and anything, of as many pixels as a vector has lanes.
template <int kBytes>
HWY_INLINE LaneVector LoadLanes(const PixelOrders& orders, const uint8_t* pixels) {
  const auto spread = LoadSpread<kBytes>(orders.spread, pixels);
  if constexpr (kBytes == 4) return hn::BitCast(Lanes(), spread);
  return hn::BitCast(Lanes(), hn::TableLookupBytes(spread, orders.toLanes));
}

template <int kBytes>
HWY_INLINE Quad LoadQuad(const PixelOrders& orders, const uint8_t* pixels) {
  const size_t step = hn::Lanes(Lanes()) * kBytes;
  return {LoadLanes<kBytes>(orders, pixels), LoadLanes<kBytes>(orders, pixels + step),
          LoadLanes<kBytes>(orders, pixels + 2 * step),
          LoadLanes<kBytes>(orders, pixels + 3 * step)};
}

/// Exactly the bytes of the quad's pixels.
template <int kBytes>
HWY_INLINE void StoreQuad(const PixelOrders& orders, const Quad& q, uint8_t* pixels) {
  if constexpr (kBytes == 3) return StorePacked(orders.packed, q, pixels);
  const size_t step = hn::Lanes(Bytes());
  StoreLanes(q.v0, pixels);
  StoreLanes(q.v1, pixels + step);
  StoreLanes(q.v2, pixels + 2 * step);
  StoreLanes(q.v3, pixels + 3 * step);
}

/// One mask for each vector of a quad.
struct QuadMask {
  LaneMask m0, m1, m2, m3;
};

HWY_INLINE bool NoneIsSet(const QuadMask& m) {
  return hn::AllFalse(Lanes(), hn::Or(hn::Or(m.m0, m.m1), hn::Or(m.m2, m.m3)));
}

HWY_INLINE bool AllAreSet(const QuadMask& m) {
  return hn::AllTrue(Lanes(), hn::And(hn::And(m.m0, m.m1), hn::And(m.m2, m.m3)));
}

HWY_INLINE Quad Choose(const QuadMask& m, const Quad& yes, const Quad& no) {
  return {hn::IfThenElse(m.m0, yes.v0, no.v0), hn::IfThenElse(m.m1, yes.v1, no.v1),
          hn::IfThenElse(m.m2, yes.v2, no.v2), hn::IfThenElse(m.m3, yes.v3, no.v3)};
}

/// Calls `edit(pixels)` for as many pixels of a row as a vector has bytes, again and again; it
/// changes them in place and may read ahead. What is left at the end is done in a buffer.
template <int kBytes, class EditQuad>
HWY_INLINE void EditRow(const EditQuad& edit, uint8_t* pixels, size_t width) {
  const size_t step = hn::Lanes(Bytes());
  const size_t touched = step + PixelsReadAhead<kBytes>(step);
  size_t x = 0;
  for (; x + touched <= width; x += step) edit(pixels + x * kBytes);
  if (x == width) return;
  uint8_t rest[(2 * kBytes + 1) * kMaxVectorBytes] = {};
  std::memcpy(rest, pixels + x * kBytes, (width - x) * kBytes);
  for (size_t i = 0; i < width - x; i += step) edit(rest + i * kBytes);
  std::memcpy(pixels + x * kBytes, rest, (width - x) * kBytes);
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
