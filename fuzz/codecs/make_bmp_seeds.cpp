// Writes the seeds of the bitmap fuzzer: one tiny file per path of the decoder.
// usage: make_bmp_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <numeric>
#include <string>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/raster/raster.h>

#include "tests/support/bmp_file.h"
#include "tests/support/test_pictures.h"

using namespace rasterkit;
using test::BmpFile;

namespace {

std::string folder;

void Save(const std::string& name, const std::vector<uint8_t>& bytes) {
  std::ofstream out(folder + "/" + name + ".bmp", std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

std::vector<uint8_t> Rising(size_t count) {
  std::vector<uint8_t> bytes(count);
  std::iota(bytes.begin(), bytes.end(), uint8_t{1});
  return bytes;
}

/// 5 x 3 pixels with a header of the given kind.
BmpFile Plain(uint16_t bits, uint32_t headerBytes) {
  BmpFile file{.headerBytes = headerBytes, .width = 5, .height = 3, .bits = bits};
  if (bits <= 8) file.palette = {0x000000, 0xFF0000, 0x00FF00, 0xFFFFFF};
  if (bits == 1) file.palette.resize(2);
  if (headerBytes >= 36) file.colorsUsed = static_cast<uint32_t>(file.palette.size());
  file.pixels = Rising(StrideBytes(5, bits) * 3);
  return file;
}

void SavePlain() {
  for (const uint16_t bits : {1, 2, 4, 8, 16, 24, 32}) {
    Save("info_" + std::to_string(bits), Plain(bits, 40).Bytes());
    Save("core_" + std::to_string(bits), Plain(bits, 12).Bytes());
  }
  for (const uint32_t headerBytes : {16u, 24u, 52u, 56u, 64u, 108u, 124u}) {
    Save("header_" + std::to_string(headerBytes), Plain(24, headerBytes).Bytes());
  }
  BmpFile file = Plain(24, 40);
  file.height = -3;
  file.pixelsPerMeterX = file.pixelsPerMeterY = 3780;
  Save("top_down", file.Bytes());
  file = Plain(24, 124);
  file.profile = Rising(20);
  Save("profile", file.Bytes());
}

void SaveMasked() {
  const auto save = [](const std::string& name, BmpFile file, std::vector<uint32_t> masks) {
    file.compression = 3;
    file.masks = std::move(masks);
    Save(name, file.Bytes());
  };
  save("masks_565", Plain(16, 40), {0xF800, 0x7E0, 0x1F});
  save("masks_555", Plain(16, 40), {0x7C00, 0x3E0, 0x1F});
  save("masks_4444", Plain(16, 124), {0xF00, 0xF0, 0xF, 0xF000});
  save("masks_24", Plain(24, 40), {0xFF, 0xFF00, 0xFF0000});
  save("masks_101010", Plain(32, 40), {0x3FF00000, 0xFFC00, 0x3FF});
  save("masks_8888", Plain(32, 108), {0xFF0000, 0xFF00, 0xFF, 0xFF000000});
  save("masks_wide", Plain(32, 56), {0xFE000000, 0x1FFFF80, 0x7F, 0});
}

void SaveRle() {
  BmpFile file = Plain(8, 40);
  file.compression = 1;
  file.pixels = {5, 1, 0, 0, 0, 3, 2, 3, 1, 0, 0, 2, 1, 1, 1, 2, 0, 1};
  Save("rle8", file.Bytes());
  file = Plain(4, 40);
  file.compression = 2;
  file.pixels = {5, 0x12, 0, 0, 0, 5, 0x12, 0x30, 0x10, 0, 0, 0, 0, 2, 1, 0, 3, 0x31, 0, 1};
  Save("rle4", file.Bytes());
}

void SaveEmbedded() {
  const Raster picture = test::GradientRaster(pf24bit, 5, 3);
  BmpFile file{.width = 5, .height = 3, .bits = 0, .compression = 4};
  file.pixels = EncodeJpeg(picture, 50);
  Save("embedded_jpeg", file.Bytes());
  TMemoryStream png;
  EncodePng(picture, png);
  file.compression = 5;
  file.pixels = png.TakeBytes();
  Save("embedded_png", file.Bytes());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  folder = argv[1];
  SavePlain();
  SaveMasked();
  SaveRle();
  SaveEmbedded();
  return 0;
}
