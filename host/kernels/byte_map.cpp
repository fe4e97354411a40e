#include <algorithm>
#include <cmath>

#include <rasterkit/host/kernels/byte_map.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/host/kernels/byte_map.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/host/kernels/slope-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels {
namespace HWY_NAMESPACE {
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

template <bool kHalvesToEven>
size_t MapBySlope(const ByteMap& map, uint8_t* bytes, size_t count) {
  const Bytes d;
  const Slope slope(map);
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto pair = hn::LoadU(d, bytes + i);
    const auto mapped = JoinBytes(slope.Map<kHalvesToEven>(EvenBytes(pair)),
                                  slope.Map<kHalvesToEven>(OddBytes(pair)));
    hn::StoreU(mapped, d, bytes + i);
  }
  return i;
}

size_t MapWholeVectors(const ByteMap& map, uint8_t* bytes, size_t count) {
  if (!map.hasSlope) return 0;
  return map.low == map.high ? MapBySlope<false>(map, bytes, count)
                             : MapBySlope<true>(map, bytes, count);
}

#endif

void Map(const ByteMap& map, uint8_t* bytes, size_t count) {
  const size_t done = MapWholeVectors(map, bytes, count);
  MapOneByOne(map.table, bytes + done, count - done);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace rasterkit::kernels
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
  int sum = x * map.whole + std::min(a, b);
  if (a != b) sum += sum & 1;
  return static_cast<uint8_t>(std::clamp(sum + map.origin, 0, 255));
}

bool SlopeGivesTheTable(const ByteMap& map) {
  for (int i = 0; i < 256; ++i)
    if (BySlope(map, i) != map.table[static_cast<size_t>(i)]) return false;
  return true;
}

/// Beyond this a sum could leave the 16 bits that it has.
constexpr double kSteepest = 120;

HWY_EXPORT(Map);

}  // namespace

ByteMap MakeByteMap(const ByteTable& table, double factor, int origin) {
  ByteMap map{table};
  if (!(std::fabs(factor) <= kSteepest)) return map;
  const double whole = std::nearbyint(factor);
  const auto part = static_cast<int>(std::floor((factor - whole) * 32768));
  map.origin = static_cast<int16_t>(origin);
  map.whole = static_cast<int16_t>(whole);
  // Which neighbour of the exact part rounds all halves as the table does shows when they are
  // tried.
  constexpr int kNeighbours[][2] = {{0, 0}, {1, 1}, {-1, -1}, {0, 1}, {-1, 1}};
  for (const auto& [low, high] : kNeighbours) {
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
