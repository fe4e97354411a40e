#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include <rasterkit/placement/geo_keys.h>
#include <rasterkit/placement/map_unit.h>
#include <rasterkit/placement/wkt_unit.h>

namespace rasterkit {
namespace {

using Kind = MapUnit::Kind;

constexpr uint16_t kModelType = 1024, kAngularUnits = 2054, kAngularUnitSize = 2055,
                   kLinearUnits = 3076, kLinearUnitSize = 3077;
constexpr int kProjected = 1, kGeographic = 2, kGeocentric = 3;
constexpr int kOwnUnit = 32767;

constexpr double kFoot = 0.3048, kSurveyFoot = 1200.0 / 3937.0;
constexpr double kDegreesPerRadian = 180 / std::numbers::pi;

struct CodedUnit {
  int code;
  Kind kind;
  double size;
  const char* symbol;
};

/// Codes of the units of EPSG that maps use.
constexpr CodedUnit kCodedUnits[] = {
    {9001, Kind::length, 1, "m"},
    {9036, Kind::length, 1000, "km"},
    {9002, Kind::length, kFoot, "ft"},
    {9003, Kind::length, kSurveyFoot, "US ft"},
    {9102, Kind::angle, 1, "°"},
    {9122, Kind::angle, 1, "°"},
    {9103, Kind::angle, 1.0 / 60, "'"},
    {9104, Kind::angle, 1.0 / 3600, "\""},
    {9105, Kind::angle, 0.9, "gon"},
    {9106, Kind::angle, 0.9, "gon"},
    {9101, Kind::angle, kDegreesPerRadian, "rad"},
};

struct CodeRange {
  int first, last;
};

/// Projected systems that are in meters: UTM, national grids and the usual maps of the world.
constexpr CodeRange kMetricCodes[] = {
    {2056, 2056},   {2154, 2154},   {3006, 3006},   {3031, 3031},   {3034, 3035},   {3067, 3067},
    {3395, 3395},   {3413, 3413},   {3812, 3812},   {3857, 3857},   {7846, 7859},   {21781, 21781},
    {23028, 23038}, {25828, 25838}, {26701, 26722}, {26901, 26923}, {27700, 27700}, {28348, 28358},
    {28992, 28992}, {31254, 31259}, {31370, 31370}, {31466, 31469}, {32201, 32260}, {32301, 32360},
    {32601, 32660}, {32701, 32760}};

/// Geographic systems that are in degrees.
constexpr CodeRange kDegreeCodes[] = {{4171, 4171}, {4230, 4230}, {4258, 4258}, {4267, 4267},
                                      {4269, 4269}, {4283, 4283}, {4314, 4314}, {4322, 4322},
                                      {4326, 4326}, {7844, 7844}};

template <size_t N>
bool Holds(const CodeRange (&ranges)[N], int code) {
  return std::any_of(std::begin(ranges), std::end(ranges), [&](const CodeRange& range) {
    return code >= range.first && code <= range.last;
  });
}

MapUnit UnitOf(const CodedUnit& unit) {
  return {unit.kind, unit.size, unit.symbol};
}

MapUnit UnitOfCode(int code, Kind kind) {
  for (const CodedUnit& unit : kCodedUnits) {
    if (unit.code == code && unit.kind == kind) return UnitOf(unit);
  }
  return {};
}

/// A unit that is stated by its size in meters or degrees.
MapUnit UnitOfSize(Kind kind, double size) {
  // The two feet differ by 2e-6.
  constexpr double kSame = 1e-7;
  if (!(size > 0) || !std::isfinite(size)) return {};
  for (const CodedUnit& unit : kCodedUnits) {
    if (unit.kind == kind && std::abs(unit.size / size - 1) < kSame) return UnitOf(unit);
  }
  // A rare unit has no symbol of its own.
  return {};
}

MapUnit UnitOfSystemCode(const CoordinateSystem& system) {
  const std::optional<int> epsg = system.Epsg();
  if (epsg && Holds(kMetricCodes, *epsg)) return UnitOfSize(Kind::length, 1);
  if (epsg && Holds(kDegreeCodes, *epsg)) return UnitOfSize(Kind::angle, 1);
  return {};
}

/// The unit that a pair of keys states: a code, or a size in `toSize` units. Nothing without them.
std::optional<MapUnit> StatedUnit(const CoordinateSystem& system, Kind kind, uint16_t codeKey,
                                  uint16_t sizeKey, double toSize) {
  const int code = detail::ShortKey(system.keys, codeKey);
  if (code == 0) return std::nullopt;
  if (code != kOwnUnit) return UnitOfCode(code, kind);
  return UnitOfSize(kind, detail::DoubleKey(system, sizeKey).value_or(0) * toSize);
}

std::optional<MapUnit> UnitInKeys(const CoordinateSystem& system) {
  switch (detail::ShortKey(system.keys, kModelType)) {
    case kProjected:
      return StatedUnit(system, Kind::length, kLinearUnits, kLinearUnitSize, 1);
    case kGeographic:
      return StatedUnit(system, Kind::angle, kAngularUnits, kAngularUnitSize, kDegreesPerRadian);
    case kGeocentric:
      return MapUnit{};
    default:
      return std::nullopt;
  }
}

}  // namespace

MapUnit MapUnitOf(const CoordinateSystem& system) {
  if (const std::optional<MapUnit> stated = UnitInKeys(system)) return *stated;
  // Keys replace the text.
  if (system.keys.empty()) {
    if (const auto unit = detail::ReadWktUnit(system.wkt)) {
      return unit->isLength ? UnitOfSize(Kind::length, unit->size)
                            : UnitOfSize(Kind::angle, unit->size * kDegreesPerRadian);
    }
  }
  return UnitOfSystemCode(system);
}

MapUnit MapUnitNamed(std::string_view name) {
  if (name == "degrees") name = "°";
  for (const CodedUnit& unit : kCodedUnits) {
    if (unit.symbol == name) return UnitOf(unit);
  }
  return {};
}

const std::vector<MapUnit>& UsualMapUnits() {
  static const std::vector<MapUnit> units = {MapUnitNamed("m"), MapUnitNamed("ft"),
                                             MapUnitNamed("US ft"), MapUnitNamed("°")};
  return units;
}

}  // namespace rasterkit
