// Writes the seeds of the icon fuzzer: one small file per kind of picture.
// usage: make_icon_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

#include "tests/support/ico_file.h"
#include "tests/support/test_pictures.h"

using namespace rasterkit;
using namespace rasterkit::test;

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string folder = argv[1];
  const auto save = [&](const std::string& name, const std::vector<IcoPicture>& pictures) {
    const std::vector<uint8_t> bytes = IcoFile(pictures);
    std::ofstream out(folder + "/" + name + ".ico", std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
  };
  std::mt19937 random(1);
  const Raster mask = RandomRaster(pf1bit, 11, 6, random);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    const Raster colors = GradientRaster(format, 11, 6);
    const std::string name = "bits" + std::to_string(StoredBitsPerPixel(format));
    save(name, {IcoBitmap(colors, &mask)});
    save(name + "_without_mask", {IcoBitmap(colors, nullptr, false)});
  }
  Raster clear = GradientRaster(pf32bit, 11, 6);
  for (int y = 0; y < 6; ++y)
    for (int x = 0; x < 11; ++x) clear.Row(y)[4 * x + 3] = 0;
  save("no_opacity", {IcoBitmap(clear, &mask)});
  Raster png = GradientRaster(pf32bit, 11, 6);
  png.alphaFormat = afDefined;
  save("png", {IcoPng(png)});
  Raster keyed = GradientRaster(pf8bit, 9, 5);
  keyed.transparentColor = keyed.PixelColor(0, 0);
  save("png_transparent_color", {IcoPng(keyed)});
  save("three", {IcoBitmap(GradientRaster(pf4bit, 5, 5), nullptr),
                 IcoBitmap(GradientRaster(pf8bit, 9, 9), nullptr), IcoPng(png)});
  return 0;
}
