#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// crop_picture IN OUT: the middle of the picture, half as wide and half as high
int main(int, char** arguments) {
  rk::TWICBitmap picture;
  picture.LoadFromFile(arguments[1]);
  const int width = picture.Width() / 2, height = picture.Height() / 2;
  rk::TBitmap part;
  part.ResetPixels(rk::pf24bit, width, height);
  // Carries resolution and color profile; the rest describes the rows of the source.
  part.CarryFrom(
      picture,
      {.palette = false, .alphaFormat = false, .transparency = rk::CarriedTransparency::none});
  part.Canvas().Draw(-width / 2, -height / 2, picture);
  rk::SaveWindowsBitmap(part, 0, 0, arguments[2]);
}
