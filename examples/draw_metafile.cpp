#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// draw_metafile DRAWING.emf OUT.png
int main(int, char** arguments) {
  rk::TMetafile drawing;  // EMF or WMF
  drawing.LoadFromFile(arguments[1]);
  // Twice the nominal size of 96 dots per inch.
  std::vector<std::string> warnings;
  const rk::TBitmap bitmap(
      drawing.Draw(2 * drawing.Width(), 2 * drawing.Height(), rk::clWhite, {}, &warnings));
  for (const std::string& warning : warnings) std::cerr << "warning: " << warning << "\n";
  rk::SaveWindowsBitmap(bitmap, 24, 0, arguments[2]);
}
