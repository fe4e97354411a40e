#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// memory_limit FILE
int main(int, char** arguments) {
  rk::SetPictureMemoryLimit(1000);  // bytes per decoded picture; 4 GiB unless set
  try {
    rk::TWICBitmap picture;
    picture.LoadFromFile(arguments[1]);
  } catch (const rk::LimitError& error) {  // names the file, the limit and the need
    std::cout << error.what() << "\n";
    return 0;
  }
  return 1;
}
