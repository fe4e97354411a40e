#include <cstring>

#include <rasterkit/kernels/palette/index_rows.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/palette/index_rows.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/rows/pixel_lanes-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

void Replace(uint8_t* indexes, size_t count, const IndexSet& set, uint8_t index) {
  for (size_t i = 0; i < count; ++i) {
    if (set.Has(indexes[i])) indexes[i] = index;
  }
}

void Swap(uint8_t* indexes, size_t count, uint8_t a, uint8_t b) {
  for (size_t i = 0; i < count; ++i) {
    if (indexes[i] == a) {
      indexes[i] = b;
    } else if (indexes[i] == b) {
      indexes[i] = a;
    }
  }
}

void MapPairs(uint8_t* pairs, size_t count, const std::array<uint8_t, 16>& map) {
  for (size_t i = 0; i < count; ++i) {
    if (pairs[i] != 0) pairs[i] = static_cast<uint8_t>(17 * map[pairs[i] >> 4]);
  }
}

#else

struct ReplaceVector {
  ByteVector lowHalf, highHalf, bitOfHigh, index;

  HWY_INLINE void operator()(uint8_t* indexes) const {
    const Bytes d;
    const auto old = hn::LoadU(d, indexes);
    const auto low = hn::And(old, hn::Set(d, 15));
    const auto high = hn::ShiftRight<4>(old);
    const auto inHighHalf = hn::MaskFromVec(
        hn::BitCast(d, hn::BroadcastSignBit(hn::BitCast(hn::RebindToSigned<Bytes>(), old))));
    const auto bits = hn::IfThenElse(inHighHalf, hn::TableLookupBytes(highHalf, low),
                                     hn::TableLookupBytes(lowHalf, low));
    const auto isMember = hn::TestBit(bits, hn::TableLookupBytes(bitOfHigh, high));
    hn::StoreU(hn::IfThenElse(isMember, index, old), d, indexes);
  }
};

void Replace(uint8_t* indexes, size_t count, const IndexSet& set, uint8_t index) {
  constexpr uint8_t kBits[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
  const Bytes d;
  EditRow<1>(ReplaceVector{hn::LoadDup128(d, set.Bits()), hn::LoadDup128(d, set.Bits() + 16),
                           hn::LoadDup128(d, kBits), hn::Set(d, index)},
             indexes, count);
}

struct SwapVector {
  ByteVector a, b;

  HWY_INLINE void operator()(uint8_t* indexes) const {
    const Bytes d;
    const auto old = hn::LoadU(d, indexes);
    const auto swapped = hn::IfThenElse(hn::Eq(old, a), b, hn::IfThenElse(hn::Eq(old, b), a, old));
    hn::StoreU(swapped, d, indexes);
  }
};

void Swap(uint8_t* indexes, size_t count, uint8_t a, uint8_t b) {
  EditRow<1>(SwapVector{hn::Set(Bytes(), a), hn::Set(Bytes(), b)}, indexes, count);
}

struct MapPairVector {
  ByteVector pairs;

  HWY_INLINE void operator()(uint8_t* bytes) const {
    const Bytes d;
    const auto old = hn::LoadU(d, bytes);
    const auto mapped = hn::TableLookupBytes(pairs, hn::ShiftRight<4>(old));
    hn::StoreU(hn::IfThenZeroElse(hn::Eq(old, hn::Zero(d)), mapped), d, bytes);
  }
};

void MapPairs(uint8_t* bytes, size_t count, const std::array<uint8_t, 16>& map) {
  uint8_t pairs[16];
  for (size_t i = 0; i < map.size(); ++i) pairs[i] = static_cast<uint8_t>(17 * map[i]);
  EditRow<1>(MapPairVector{hn::LoadDup128(Bytes(), pairs)}, bytes, count);
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Replace);
HWY_EXPORT(Swap);
HWY_EXPORT(MapPairs);

}  // namespace

void ReplaceIndexes(uint8_t* indexes, size_t count, const IndexSet& set, uint8_t index) {
  HWY_DYNAMIC_DISPATCH(Replace)(indexes, count, set, index);
}

void SwapIndexes(uint8_t* indexes, size_t count, uint8_t a, uint8_t b) {
  HWY_DYNAMIC_DISPATCH(Swap)(indexes, count, a, b);
}

void MapNibblePairs(uint8_t* pairs, size_t count, const std::array<uint8_t, 16>& map) {
  HWY_DYNAMIC_DISPATCH(MapPairs)(pairs, count, map);
}

}  // namespace rasterkit::kernels
#endif
