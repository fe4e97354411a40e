// Writes the seeds of the TIFF fuzzer: one tiny file per kind of pixels and codec.
// usage: make_tiff_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <numeric>
#include <string>

#include "tests/support/tiff_file.h"

using rasterkit::test::PackedStrips;
using rasterkit::test::TiffFile;

namespace {

std::string folder;

void FillPixels(TiffFile& file) {
  file.pixels.resize(file.PixelBytes());
  std::iota(file.pixels.begin(), file.pixels.end(), uint8_t{1});
}

void Save(const std::string& name, TiffFile file) {
  if (file.pixels.empty()) FillPixels(file);
  const std::vector<uint8_t> bytes = file.Bytes();
  std::ofstream out(folder + "/" + name + ".tif", std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  if (!out || bytes.empty()) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

TiffFile Pixels(uint16_t photometric, uint16_t samples, uint16_t bits) {
  TiffFile file;
  file.width = 19;
  file.height = 7;
  file.rowsPerStrip = 3;
  file.photometric = photometric;
  file.samples = samples;
  file.bits = bits;
  if (photometric == PHOTOMETRIC_PALETTE) {
    file.colorMap.resize(size_t{3} << bits);
    for (size_t i = 0; i < file.colorMap.size(); i++)
      file.colorMap[i] = static_cast<uint16_t>(i * 4099);
  }
  return file;
}

TiffFile Packed(TiffFile file, uint16_t compression, uint16_t predictor = 1) {
  file.compression = compression;
  file.predictor = predictor;
  return file;
}

TiffFile Tiled(TiffFile file, bool isPlanar = false) {
  file.tileWidth = file.tileHeight = 16;
  file.isPlanar = isPlanar;
  return file;
}

void SaveKinds() {
  for (const uint16_t bits : {1, 2, 4, 8, 12, 16, 24, 32, 64})
    Save("gray" + std::to_string(bits), Pixels(PHOTOMETRIC_MINISBLACK, 1, bits));
  for (const uint16_t bits : {1, 4, 8, 16})
    Save("white0_" + std::to_string(bits), Pixels(PHOTOMETRIC_MINISWHITE, 1, bits));
  for (const uint16_t bits : {1, 2, 4, 8})
    Save("palette" + std::to_string(bits), Pixels(PHOTOMETRIC_PALETTE, 1, bits));
  for (const uint16_t bits : {2, 8, 10, 16, 32})
    Save("rgb" + std::to_string(bits), Pixels(PHOTOMETRIC_RGB, 3, bits));
  for (const uint16_t bits : {8, 16})
    Save("inks" + std::to_string(bits), Pixels(PHOTOMETRIC_SEPARATED, 4, bits));
  for (const uint16_t bits : {8, 16})
    Save("lab" + std::to_string(bits), Pixels(PHOTOMETRIC_CIELAB, 3, bits));
  for (const uint16_t bits : {16, 24, 32, 64}) {
    TiffFile file = Pixels(PHOTOMETRIC_MINISBLACK, 1, bits);
    file.sampleFormat = SAMPLEFORMAT_IEEEFP;
    Save("float" + std::to_string(bits), file);
    file.sampleFormat = SAMPLEFORMAT_INT;
    Save("signed" + std::to_string(bits), file);
  }
  for (const uint16_t alpha : {EXTRASAMPLE_ASSOCALPHA, EXTRASAMPLE_UNASSALPHA}) {
    for (const uint16_t samples : {2, 4}) {
      TiffFile file = Pixels(samples == 2 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB, samples, 8);
      file.extraSamples = {alpha};
      Save("alpha" + std::to_string(alpha) + "of" + std::to_string(samples), file);
    }
  }
}

void SaveArrangements() {
  const TiffFile rgb = Pixels(PHOTOMETRIC_RGB, 3, 8);
  Save("tiled", Tiled(rgb));
  Save("planar_tiled", Tiled(rgb, true));
  Save("tiled1", Tiled(Pixels(PHOTOMETRIC_MINISBLACK, 1, 1)));
  TiffFile file = rgb;
  file.isPlanar = true;
  Save("planar", file);
  for (const char* mode : {"wb", "wb8", "wl8"}) {
    file = Pixels(PHOTOMETRIC_RGB, 3, 16);
    file.mode = mode;
    Save(std::string("mode_") + mode, file);
  }
  file = rgb;
  file.setTags = [](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_FILLORDER, FILLORDER_LSB2MSB);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_LEFTBOT);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 118.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 118.0);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
    const uint8_t profile[16] = {};
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, 16, profile);
  };
  Save("tags", file);
}

void SavePacked() {
  const TiffFile bits = Pixels(PHOTOMETRIC_MINISWHITE, 1, 1);
  Save("rle", Packed(bits, COMPRESSION_CCITTRLE));
  Save("g4", Packed(bits, COMPRESSION_CCITTFAX4));
  for (const uint32_t options : {0u, uint32_t{GROUP3OPT_2DENCODING}}) {
    TiffFile file = Packed(bits, COMPRESSION_CCITTFAX3);
    file.setTags = [=](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, options); };
    Save("g3_" + std::to_string(options), file);
  }
  const TiffFile rgb = Pixels(PHOTOMETRIC_RGB, 3, 8);
  const TiffFile words = Pixels(PHOTOMETRIC_MINISBLACK, 1, 16);
  TiffFile floats = Pixels(PHOTOMETRIC_MINISBLACK, 1, 32);
  floats.sampleFormat = SAMPLEFORMAT_IEEEFP;
  Save("lzw", Packed(rgb, COMPRESSION_LZW));
  Save("lzw_differences", Packed(rgb, COMPRESSION_LZW, 2));
  TiffFile styles = Packed(rgb, COMPRESSION_LZW);
  FillPixels(styles);
  styles.packedStrips = PackedStrips(styles.Bytes());
  // The start of a strip of early writers.
  styles.packedStrips[0][0] = 0;
  styles.packedStrips[0][1] = 1;
  Save("lzw_styles", styles);
  Save("lzw_tiled", Tiled(Packed(rgb, COMPRESSION_LZW, 2), true));
  Save("deflate", Packed(words, COMPRESSION_ADOBE_DEFLATE, 2));
  Save("deflate_floats", Packed(floats, COMPRESSION_ADOBE_DEFLATE, 3));
  Save("packbits", Packed(bits, COMPRESSION_PACKBITS));
  Save("zstd", Packed(words, COMPRESSION_ZSTD));
  Save("lzma", Packed(words, COMPRESSION_LZMA));
  Save("lerc", Packed(floats, COMPRESSION_LERC));
  Save("webp", Packed(rgb, COMPRESSION_WEBP));
  Save("pixarlog", Packed(rgb, COMPRESSION_PIXARLOG));
}

void SaveJpeg() {
  TiffFile file = Packed(Pixels(PHOTOMETRIC_YCBCR, 3, 8), COMPRESSION_JPEG);
  file.width = file.height = 16;
  file.rowsPerStrip = 16;
  file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB); };
  Save("jpeg", file);
  file.photometric = PHOTOMETRIC_MINISBLACK;
  file.samples = 1;
  file.setTags = nullptr;
  Save("jpeg_gray", file);
  file = Pixels(PHOTOMETRIC_YCBCR, 3, 8);
  file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1); };
  Save("ycbcr", file);
  file.isPlanar = true;
  Save("ycbcr_planes", file);
  // Cb and Cr have half the width and height.
  file.rowsPerStrip = 0;
  file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 2, 2); };
  for (const size_t count : {19 * 7, 10 * 4, 10 * 4}) {
    file.packedStrips.emplace_back(count);
    std::iota(file.packedStrips.back().begin(), file.packedStrips.back().end(), uint8_t{40});
  }
  Save("ycbcr_planes_2x2", file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  folder = argv[1];
  SaveKinds();
  SaveArrangements();
  SavePacked();
  SaveJpeg();
  return 0;
}
