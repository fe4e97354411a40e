#include <rasterkit/bitmaptools.h>

int main() {
  std::unique_ptr<rasterkit::TGraphic> photo =
      rasterkit::LoadGraphic("photo.jpg");  // stands upright
  rasterkit::SaveGraphic("upright.png", photo);
}
