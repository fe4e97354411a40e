#include <cstdlib>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// rotate_picture IN DEGREES OUT
int main(int, char** arguments) {
  const std::unique_ptr<rk::TGraphic> picture = rk::LoadGraphic(arguments[1]);
  if (picture == nullptr) return 1;
  std::unique_ptr<rk::TBitmap> bitmap = rk::GraphicIntoBitmap(picture.get());
  const float degrees = std::strtof(arguments[2], nullptr);  // counter-clockwise
  const int threads = 2;
  if (!rk::RotateBitmap(degrees, bitmap, rk::clWhite, threads, nullptr)) return 1;
  rk::SaveWindowsBitmap(*bitmap, 24, 0, arguments[3]);  // the type follows the extension
}
