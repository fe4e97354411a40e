#pragma once

#include <memory>

#include <fontconfig/fontconfig.h>

namespace rasterkit::detail {

struct PatternRelease {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using FontPattern = std::unique_ptr<FcPattern, PatternRelease>;

/// The font of the system that comes nearest to `wanted`; null where there is none. Any thread may
/// ask; the fonts are looked up once, by the first.
FontPattern NearestFont(FcPattern* wanted);

}  // namespace rasterkit::detail
