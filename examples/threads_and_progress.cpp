#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// threads_and_progress IN OUT: the picture at 2000 x 1500 pixels
int main(int, char** arguments) {
  rk::TWICBitmap picture;
  picture.LoadFromFile(arguments[1]);
  picture.SetPixelFormat(rk::pf24bit);
  rk::TBitmap large;
  large.SetPixelFormat(rk::pf24bit);
  large.SetSize(2000, 1500);

  // Called every 100 ms on the calling thread, and at the end of each worker on that worker.
  const rk::TProgressEvent progress = [](float percent) { std::clog << percent << " %\n"; };
  const int threads = 2;
  rk::AssignPartBitmap(&large, &picture, {0, 0, large.Width(), large.Height()},
                       {0, 0, picture.Width(), picture.Height()}, threads, progress,
                       rk::pmOverwrite, 0, false, false);
  rk::SaveWindowsBitmap(large, 0, 0, arguments[2]);
}
