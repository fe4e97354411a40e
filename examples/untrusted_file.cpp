#include <iostream>
#include <memory>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// untrusted_file FILE THUMBNAIL.png
int main(int, char** arguments) {
  std::unique_ptr<rk::TBitmap> picture;
  try {
    rk::CodecReport report;
    picture = rk::LoadBitmap(arguments[1], rk::Isolation::process, &report);
    for (const std::string& warning : report.warnings) std::cout << warning << "\n";
  } catch (const rk::Error& error) {  // also if the file makes its reader crash
    std::cout << error.what() << "\n";
    return 1;
  }
  rk::ResizeBitmap(picture, 100, 75, false);
  std::unique_ptr<rk::TGraphic> thumbnail = std::move(picture);
  rk::SaveGraphic(arguments[2], thumbnail);
}
