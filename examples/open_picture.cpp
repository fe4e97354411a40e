#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// open_picture FILE
int main(int, char** arguments) {
  try {
    rk::TWICBitmap picture;
    picture.LoadFromFile(arguments[1]);  // by content, regardless of the extension
    const rk::Resolution dpi = picture.Dpi();
    std::cout << picture.Width() << " x " << picture.Height() << " pixels, " << picture.StoredBits()
              << " bits per pixel, " << dpi.x << " x " << dpi.y << " dots per inch\n";
  } catch (const rk::FileError& error) {  // missing, unreadable
    std::cerr << error.what() << "\n";
    return 2;
  } catch (const rk::Error& error) {  // not a picture, damaged, too large
    std::cerr << error.what() << "\n";
    return 1;
  }
}
