#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// gray_and_mono IN GRAY.png MONO.tif
int main(int, char** arguments) {
  rk::TWICBitmap picture;
  picture.LoadFromFile(arguments[1]);

  const std::unique_ptr<rk::TBitmap> gray = picture.Clone();
  rk::BitmapToGray(gray.get(), false);  // 8 bits per pixel, 256 grays
  rk::SaveWindowsBitmap(*gray, 0, 0, arguments[2]);

  const std::unique_ptr<rk::TBitmap> mono = picture.Clone();
  rk::ColorBmpToSW(mono.get(), 160);  // gray values below 160 become black
  rk::SaveWindowsBitmap(*mono, 0, 0, arguments[3]);
}
