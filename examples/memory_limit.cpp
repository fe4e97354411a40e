#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// memory_limit FILE
int main(int, char** arguments) {
  rk::Limits limits;
  limits.pictureBytes = 1000;  // 4 GiB unless set
  limits.seconds = 10;
  const rk::LimitsScope scope(limits);  // for the calls of this thread
  try {
    rk::TWICBitmap picture;
    picture.LoadFromFile(arguments[1]);
  } catch (const rk::LimitError& error) {  // names the file, the limit and the need
    std::cout << error.what() << "\n";
    return 0;
  }
  return 1;
}
