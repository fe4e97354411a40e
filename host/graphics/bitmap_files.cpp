#include <rasterkit/host/graphics/bitmap.h>
#include <rasterkit/host/graphics/canvas.h>
#include <rasterkit/host/runtime/errors.h>

namespace rasterkit {
namespace {

[[noreturn]] void RefuseFiles() {
  throw UnsupportedError("Windows bitmap files cannot be read or written yet");
}

}  // namespace

void TBitmap::LoadFromStream(TStream&) {
  RefuseFiles();
}
void TBitmap::SaveToStream(TStream&) {
  RefuseFiles();
}
void TBitmap::SaveToFile(const std::string&) {
  RefuseFiles();
}

}  // namespace rasterkit
