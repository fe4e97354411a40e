#include <rasterkit/host/graphics/metafile.h>
#include <rasterkit/host/runtime/errors.h>

namespace rasterkit {

void TMetafile::LoadFromStream(TStream&) {
  throw UnsupportedError("metafiles cannot be read by this version");
}

void TMetafile::SaveToStream(TStream&) {
  throw UnsupportedError("metafiles cannot be written by this version");
}

void TMetafile::AssignToBitmap(TBitmap&) const {
  throw UnsupportedError("metafiles cannot be drawn by this version");
}

void TMetafile::AssignFrom(const TGraphic& source) {
  if (dynamic_cast<const TMetafile*>(&source) != nullptr) return;
  throw UnsupportedError("a picture cannot become a metafile in this version");
}

}  // namespace rasterkit
