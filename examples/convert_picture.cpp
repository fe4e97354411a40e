#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// convert_picture IN OUT.jpg
int main(int, char** arguments) {
  const std::unique_ptr<rk::TGraphic> picture = rk::LoadGraphic(arguments[1]);
  if (picture == nullptr) return 1;
  const std::unique_ptr<rk::TBitmap> bitmap = rk::GraphicIntoBitmap(picture.get());
  // 24 bits per pixel, JPEG quality 85.
  std::unique_ptr<rk::TGraphic> jpeg = rk::ConvertBitmap(*bitmap, rk::gtJpg, 24, 85);
  rk::SaveGraphic(arguments[2], jpeg);
}
