#pragma once

#include <optional>

#include <rasterkit/raster/number_type.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// The narrowest type that holds every number of both types exactly, one of the two if that does;
/// nothing where there is none (64-bit numbers with and without a sign, or beside floating ones).
RASTERKIT_EXPORT std::optional<NumberType> CommonNumberType(NumberType a, NumberType b);

}  // namespace rasterkit::detail
