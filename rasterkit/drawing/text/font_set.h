#pragma once

#include <memory>

#include <fontconfig/fontconfig.h>

namespace rasterkit::detail {

struct PatternRelease {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using FontPattern = std::unique_ptr<FcPattern, PatternRelease>;

/// Returns the font of the system that best matches `wanted`; null if there are no fonts.
/// Thread-safe; the first call lists the fonts.
FontPattern NearestFont(FcPattern* wanted);

}  // namespace rasterkit::detail
