// Draws the pictures of this folder: make_samples FOLDER.

#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <fmt/format.h>

#include <rasterkit/bitmaptools/rotation/orient.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "samples/draw_plan.h"
#include "samples/draw_scene.h"
#include "samples/exif_block.h"
#include "samples/grid_tiff.h"

namespace rasterkit::samples {
namespace {

void SaveBytes(const std::string& name, const std::vector<uint8_t>& bytes) {
  AtomicFile file(name);
  file.Write(bytes);
  file.Commit();
}

void SavePng(const std::string& name, const TBitmap& bitmap) {
  AtomicFile file(name);
  EncodePng(bitmap.Content(), file, 9);
  file.Commit();
}

/// The orientation whose transform undoes that of `orientation`: only the two quarter turns differ
/// from their inverse.
int InverseOrientation(int orientation) {
  return orientation == 6 ? 8 : orientation == 8 ? 6 : orientation;
}

/// Two of the photographs know where they were taken, one of them south, west and below the sea.
std::optional<Place> PlaceOf(int orientation) {
  if (orientation == 3) return Place{-23.5505, -46.6333, -12.5};
  if (orientation == 6) return Place{48.1372, 11.5755, 519.25};
  return std::nullopt;
}

void MakePhotographs(const std::string& folder) {
  const TBitmap scene = DrawScene(384, 256);
  SavePng(folder + "/upright.png", scene);
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const std::unique_ptr<TBitmap> lying = scene.Clone();
    Reorient(*lying, InverseOrientation(orientation));
    const ByteOrder order = orientation % 2 == 0 ? ByteOrder::motorola : ByteOrder::intel;
    SaveBytes(fmt::format("{}/orientation-{}.jpg", folder, orientation),
              WithExif(EncodeJpeg(lying->Content(), 88), order, orientation, PlaceOf(orientation)));
  }
  SaveBytes(folder + "/gray.jpg", EncodeJpeg(DrawGrayScene(192, 128).Content(), 85));
}

void MakePlans(const std::string& folder) {
  SavePng(folder + "/plan.png", DrawPlan(640, 480));
  std::ofstream(std::filesystem::path(folder) / "plan.pgw")
      << "0.05\n0.0\n0.0\n-0.05\n4468000.025\n5333999.975\n";
  AtomicFile colored(folder + "/plan-colored.bmp");
  EncodeBmp(DrawColoredPlan(200, 150).Content(), colored, BmpProfile::omit);
  colored.Commit();
  SaveBytes(folder + "/terrain.tif", GridTiffBytes(MakeTerrain(48, 32)));
}

}  // namespace
}  // namespace rasterkit::samples

int main(int argc, char** argv) try {
  if (argc != 2) {
    fmt::print(stderr, "usage: make_samples FOLDER\n");
    return 2;
  }
  std::filesystem::create_directories(argv[1]);
  rasterkit::samples::MakePhotographs(argv[1]);
  rasterkit::samples::MakePlans(argv[1]);
  return 0;
} catch (const std::exception& error) {
  fmt::print(stderr, "make_samples: {}\n", error.what());
  return 1;
}
