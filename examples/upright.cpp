#include <iostream>
#include <memory>

#include <rasterkit/rasterkit.h>

int main() {
  // A photo with EXIF orientation 3, 6 or 8 is turned upright. Mirrored ones (2, 4, 5, 7) are not.
  std::unique_ptr<rasterkit::TGraphic> photo = rasterkit::LoadGraphic("photo.jpg");
  if (photo == nullptr) {  // missing, unknown extension, or unreadable
    std::cerr << "photo.jpg cannot be loaded\n";
    return 1;
  }
  rasterkit::SaveGraphic("upright.png", photo);  // throws rasterkit::Error
}
