// Writes the seeds of the fuzzer of TIFF pages: tiny files with metadata, smaller copies and masks.
// usage: make_tiff_pages_seeds FOLDER

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>

#include <tiff.h>

#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/metadata/exif_block.h>

using namespace rasterkit;

namespace {

std::string folder;

Raster Picture(TPixelFormat format, int width, int height) {
  Raster raster(format, width, height);
  for (int y = 0; y < height; y++) {
    for (size_t i = 0; i < raster.RowBytes(); i++) {
      raster.Row(y)[i] = static_cast<uint8_t>(7 * i + 11 * static_cast<size_t>(y));
    }
  }
  raster.ClearPadding();
  return raster;
}

TiffForm FormOf(int compression) {
  TiffForm form;
  form.compression = compression;
  form.photometric = -1;
  form.rowsPerStrip = 3;
  return form;
}

PictureWriting Writing(const TiffForm& form) {
  PictureWriting writing;
  writing.form = form;
  ExifBlock exif;
  exif.SetText(ExifDirectoryId::main, TIFFTAG_MAKE, "Maker");
  exif.SetWords(ExifDirectoryId::exif, 34855, std::vector<uint16_t>{400});
  exif.SetText(ExifDirectoryId::gps, 1, "N");
  exif.SetText(ExifDirectoryId::interop, 1, "R98");
  writing.metadata.exif = exif.Bytes();
  writing.metadata.xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
  writing.metadata.iptc = {0x1C, 2, 5, 0, 3, 'a', 'b', 'c'};
  writing.metadata.photoshop = {'8', 'B', 'I', 'M', 3, 0xF3, 0, 0, 0, 0, 0, 2, 1, 2};
  writing.metadata.resolution = {300, 150};
  writing.metadata.tiffTags = {{50123, TIFF_SHORT, 1, {1, 0}}};
  writing.positionTags = {{42113, TIFF_ASCII, 3, {'-', '1', 0}}};
  return writing;
}

void Save(const std::string& name, const Pixels& pixels, const PictureWriting& writing,
          std::span<const TiffExtraPage> extras = {}) {
  TMemoryStream stream;
  WriteTiff(pixels, writing, extras, stream);
  std::ofstream out(folder + "/" + name + ".tif", std::ios::binary);
  out.write(reinterpret_cast<const char*>(stream.Bytes().data()),
            static_cast<std::streamsize>(stream.Size()));
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

void SaveArrangements() {
  const Pixels pixels = Picture(pf24bit, 19, 7);
  for (const bool isBigEndian : {false, true}) {
    for (const bool isBig : {false, true}) {
      TiffForm form = FormOf(COMPRESSION_LZW);
      form.isBigEndian = isBigEndian;
      form.isBigTiff = isBig;
      form.isPlanar = isBig;
      Save(std::string(isBigEndian ? "motorola" : "intel") + (isBig ? "_big" : ""), pixels,
           Writing(form));
    }
  }
  TiffForm tiles = FormOf(COMPRESSION_ADOBE_DEFLATE);
  tiles.tileWidth = tiles.tileHeight = 16;
  Save("tiles", pixels, Writing(tiles));
  TiffForm jpeg = FormOf(COMPRESSION_JPEG);
  jpeg.photometric = PHOTOMETRIC_YCBCR;
  Save("jpeg", pixels, Writing(jpeg));
  Save("plan", Picture(pf1bit, 19, 7), Writing(FormOf(COMPRESSION_CCITTFAX4)));
}

void SaveExtras() {
  const TiffForm form = FormOf(COMPRESSION_NONE);
  std::vector<TiffExtraPage> extras;
  extras.push_back({Picture(pf8bit, 10, 4), form, FILETYPE_REDUCEDIMAGE});
  extras.push_back({Picture(pf1bit, 19, 7), form, FILETYPE_MASK});
  Save("extras", Picture(pf8bit, 19, 7), Writing(form), extras);
}

void SaveSamples() {
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 12;
  layout.bands = 5;
  layout.model = ColorModel::cmyk;
  layout.alpha = AlphaKind::associated;
  Samples samples(layout, 5, 4);
  for (int y = 0; y < 4; y++) std::fill_n(samples.Row(y), samples.Stride(), uint8_t{3});
  Save("inks12", Pixels(std::move(samples)), Writing(FormOf(COMPRESSION_PACKBITS)));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  folder = argv[1];
  SaveArrangements();
  SaveExtras();
  SaveSamples();
  return 0;
}
