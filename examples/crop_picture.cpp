#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// crop_picture IN OUT: the middle of the picture, half as wide and half as high
int main(int, char** arguments) {
  rk::TWICBitmap picture;
  picture.LoadFromFile(arguments[1]);
  const int width = picture.Width() / 2, height = picture.Height() / 2;
  rk::TBitmap part;
  part.ResetPixels(rk::pf24bit, width, height);
  part.SetDpi(picture.Dpi());
  part.Canvas().Draw(-width / 2, -height / 2, picture);
  rk::SaveWindowsBitmap(part, 0, 0, arguments[2]);
}
