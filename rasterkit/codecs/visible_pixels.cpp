#include <cmath>
#include <cstring>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {

Raster VisiblePixels(Pixels pixels, const std::string&, Changes&) {
  if (auto* rows = std::get_if<Raster>(&pixels)) return std::move(*rows);
  throw UnsupportedError("these numbers cannot be shown");
}

}  // namespace rasterkit
