#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// upright_all PHOTO.jpg OUT.png
int main(int, char** arguments) {
  rk::TJPEGImage photo;
  photo.LoadFromFile(arguments[1]);
  rk::TBitmap bitmap;
  bitmap.Assign(&photo);
  rk::Reorient(bitmap, rk::ReadRawOrientation(arguments[1]).value_or(1));
  rk::TPngImage upright;
  upright.Assign(&bitmap);
  upright.SaveToFile(arguments[2]);
}
