#include <algorithm>
#include <cmath>

#include <rasterkit/kernels/rows/byte_map.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/rows/byte_map.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/rows/slope-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

void MapOneByOne(const ByteTable& table, uint8_t* bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) bytes[i] = table[bytes[i]];
}

#if HWY_TARGET == HWY_SCALAR

size_t MapWholeVectors(const ByteMap&, uint8_t*, size_t) {
  return 0;
}

#else

/// `map` of each whole vector; returns the bytes done.
template <class Map>
HWY_INLINE size_t ForEachVector(uint8_t* bytes, size_t count, const Map& map) {
  const Bytes d;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= count; i += lanes) hn::StoreU(map(hn::LoadU(d, bytes + i)), d, bytes + i);
  return i;
}

template <bool kHalvesToEven>
size_t MapBySlope(const ByteMap& map, uint8_t* bytes, size_t count) {
  const Slope slope(map);
  return ForEachVector(bytes, count, [&slope](ByteVector pair) HWY_ATTR {
    return JoinBytes(slope.Map<kHalvesToEven>(EvenBytes(pair)),
                     slope.Map<kHalvesToEven>(OddBytes(pair)));
  });
}

/// Bytes with a sign from numbers that have such.
HWY_INLINE hn::Vec<hn::RebindToSigned<Bytes> > JoinSigned(WordVector even, WordVector odd) {
  const auto low = hn::And(even, hn::Set(Words(), 0xFF));
  return hn::BitCast(hn::RebindToSigned<Bytes>(), hn::Or(low, hn::ShiftLeft<8>(odd)));
}

/// Slopes of a half to one and a half about the middle: the change of a byte has a sign and seven
/// bits, and a saturated sum cuts as it should.
template <bool kHalvesToEven>
size_t MapByChange(const ByteMap& map, uint8_t* bytes, size_t count) {
  const hn::RebindToSigned<Bytes> ds;
  const Words dw;
  const auto low = hn::Set(dw, map.low), high = hn::Set(dw, map.high);
  const auto middle = hn::Set(Bytes(), 0x80);
  return ForEachVector(bytes, count, [&](ByteVector pair) HWY_ATTR {
    const auto x = hn::BitCast(dw, hn::Xor(pair, middle));
    const auto odd = hn::ShiftRight<8>(x);
    const auto even = hn::ShiftRight<8>(hn::ShiftLeft<8>(x));
    auto change = JoinSigned(hn::MulFixedPoint15(even, low), hn::MulFixedPoint15(odd, low));
    if constexpr (kHalvesToEven) {
      const auto other =
          JoinSigned(hn::MulFixedPoint15(even, high), hn::MulFixedPoint15(odd, high));
      const auto less = hn::Min(change, other);
      const auto isHalf = hn::Sub(hn::Max(change, other), less);  // 0 or 1
      const auto sum = hn::SaturatedAdd(hn::BitCast(ds, x), less);
      const auto mapped = hn::SaturatedAdd(sum, hn::And(isHalf, sum));
      return hn::Xor(hn::BitCast(Bytes(), mapped), middle);
    }
    const auto mapped = hn::SaturatedAdd(hn::BitCast(ds, x), change);
    return hn::Xor(hn::BitCast(Bytes(), mapped), middle);
  });
}

/// Slopes from 0 to one, from byte 0 on: nothing to cut.
size_t MapByFactor(const ByteMap& map, uint8_t* bytes, size_t count) {
  const auto factor = hn::Set(Words(), map.low);
  return ForEachVector(bytes, count, [factor](ByteVector pair) HWY_ATTR {
    return JoinBytes(hn::MulFixedPoint15(EvenBytes(pair), factor),
                     hn::MulFixedPoint15(OddBytes(pair), factor));
  });
}

size_t MapWholeVectors(const ByteMap& map, uint8_t* bytes, size_t count) {
  if (!map.hasSlope) return 0;
  const bool halvesToEven = map.low != map.high;
  if (map.origin == 128 && map.whole == 1) {
    return halvesToEven ? MapByChange<true>(map, bytes, count)
                        : MapByChange<false>(map, bytes, count);
  }
  if (halvesToEven) return MapBySlope<true>(map, bytes, count);
  if (map.origin == 0 && map.whole == 0 && map.low >= 0) return MapByFactor(map, bytes, count);
  return MapBySlope<false>(map, bytes, count);
}

#endif

void Map(const ByteMap& map, uint8_t* bytes, size_t count) {
  const size_t done = MapWholeVectors(map, bytes, count);
  MapOneByOne(map.table, bytes + done, count - done);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

/// As MulFixedPoint15.
int RoundedPart(int x, int16_t factor) {
  return (x * factor + (1 << 14)) >> 15;
}

uint8_t BySlope(const ByteMap& map, int byte) {
  const int x = byte - map.origin;
  const int a = RoundedPart(x, map.low), b = RoundedPart(x, map.high);
  int sum = map.origin + x * map.whole + std::min(a, b);
  if (a != b) sum += sum & 1;
  return static_cast<uint8_t>(std::clamp(sum, 0, 255));
}

bool SlopeGivesTheTable(const ByteMap& map) {
  for (int i = 0; i < 256; ++i) {
    if (BySlope(map, i) != map.table[static_cast<size_t>(i)]) return false;
  }
  return true;
}

/// Beyond this a sum could leave the 16 bits that it has.
constexpr double kSteepest = 120;

/// Gentle slopes get the part that the short ways want.
double WholePart(double factor, int origin) {
  if (origin == 0 && factor >= 0 && factor < 1) return 0;
  if (std::fabs(factor - 1) <= 0.5) return 1;
  return std::nearbyint(factor);
}

HWY_EXPORT(Map);

}  // namespace

ByteMap MakeByteMap(const ByteTable& table, double factor, int origin) {
  ByteMap map{table};
  if (!(std::fabs(factor) <= kSteepest)) return map;
  const double whole = WholePart(factor, origin);
  const auto part = static_cast<int>(std::floor((factor - whole) * 32768));
  map.origin = static_cast<int16_t>(origin);
  map.whole = static_cast<int16_t>(whole);
  // Which neighbor of the exact part rounds all halves as the table does shows when they are
  // tried.
  constexpr int kNeighbors[][2] = {{0, 0}, {1, 1}, {-1, -1}, {0, 1}, {-1, 1}};
  for (const auto& [low, high] : kNeighbors) {
    map.low = static_cast<int16_t>(part + low);
    map.high = static_cast<int16_t>(part + high);
    map.hasSlope = SlopeGivesTheTable(map);
    if (map.hasSlope) break;
  }
  return map;
}

void MapBytes(const ByteMap& map, uint8_t* bytes, size_t count) {
  HWY_DYNAMIC_DISPATCH(Map)(map, bytes, count);
}

}  // namespace rasterkit::kernels
#endif
