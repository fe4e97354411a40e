#include <algorithm>
#include <array>

#include <rasterkit/bands/colors/common_number.h>

namespace rasterkit::detail {
namespace {

/// Numbers that a type holds exactly: whole ones of so many bits, or fractions of them.
struct Reach {
  NumberType type;
  int bits;
  bool hasSign, hasFractions;
};

/// From the narrowest on. Halves and floats hold whole numbers of as many bits as their fractions
/// have.
constexpr std::array<Reach, 11> kReaches = {{{NumberType::uint8, 8, false, false},
                                             {NumberType::int8, 7, true, false},
                                             {NumberType::uint16, 16, false, false},
                                             {NumberType::int16, 15, true, false},
                                             {NumberType::float16, 11, true, true},
                                             {NumberType::uint32, 32, false, false},
                                             {NumberType::int32, 31, true, false},
                                             {NumberType::float32, 24, true, true},
                                             {NumberType::uint64, 64, false, false},
                                             {NumberType::int64, 63, true, false},
                                             {NumberType::float64, 53, true, true}}};

const Reach& ReachOf(NumberType type) {
  return *std::find_if(kReaches.begin(), kReaches.end(),
                       [type](const Reach& reach) { return reach.type == type; });
}

bool Holds(const Reach& wide, const Reach& narrow) {
  return wide.bits >= narrow.bits && (wide.hasSign || !narrow.hasSign) &&
         (wide.hasFractions || !narrow.hasFractions);
}

}  // namespace

std::optional<NumberType> CommonNumberType(NumberType a, NumberType b) {
  for (const Reach& reach : kReaches) {
    if (Holds(reach, ReachOf(a)) && Holds(reach, ReachOf(b))) return reach.type;
  }
  return std::nullopt;
}

}  // namespace rasterkit::detail
