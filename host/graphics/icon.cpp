#include <rasterkit/host/graphics/icon.h>
#include <rasterkit/host/runtime/errors.h>

namespace rasterkit {

void TIcon::LoadFromStream(TStream&) {
  throw UnsupportedError("icons cannot be read by this version");
}

void TIcon::SaveToStream(TStream&) {
  throw UnsupportedError("icons cannot be written by this version");
}

void TIcon::AssignToBitmap(TBitmap&) const {
  throw UnsupportedError("icons cannot be drawn by this version");
}

void TIcon::AssignFrom(const TGraphic&) {
  throw UnsupportedError("a picture cannot become an icon in this version");
}

}  // namespace rasterkit
