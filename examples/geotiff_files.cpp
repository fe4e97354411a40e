#include <cstring>
#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// geotiff_files GRID.tif PLAN.png PLAN.tif
int main(int, char** arguments) {
  // A grid of heights: 32-bit floats in the rows of a pf32bit bitmap.
  std::unique_ptr<rk::TBitmap> grid;
  rk::TWICFloatFormat format = rk::ffNoFloat;
  if (rk::ReadGeoTiffIntoBitmap(arguments[1], grid, format) && format == rk::ffSingle) {
    float height = 0;
    std::memcpy(&height, grid->ScanLine(0), sizeof height);
    std::cout << "height at the upper left corner: " << height << "\n";
  }

  // A plan on the map: pixels of 0.05 m, the upper left corner at (4468000, 5334000).
  rk::TWICBitmap plan;
  plan.LoadFromFile(arguments[2]);
  rk::WriteBitmapToTiff(plan, arguments[3], false, 4468000, 5334000, 0.05, 0.05);
}
