#include "tests/pictures/document/made_document.h"

#include <random>
#include <stdexcept>
#include <vector>

#include <tiffio.h>

namespace rasterkit::test {
namespace {

constexpr int kPlainWidth = 120;

std::vector<uint8_t> Random(size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

struct Shape {
  uint32_t width, height;
  uint16_t bits = 8, samples = 1, photometric = PHOTOMETRIC_MINISBLACK;
  uint16_t compression = COMPRESSION_NONE;
};

class Writer {
 public:
  Writer(const std::string& file, const std::string& mode)
      : tiff_(TIFFOpen(file.c_str(), mode.c_str())) {
    if (tiff_ == nullptr) throw std::runtime_error("libtiff does not open " + file);
  }
  ~Writer() { TIFFClose(tiff_); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  TIFF* File() { return tiff_; }

  void Begin(const Shape& shape, uint32_t subfileType = 0) {
    shape_ = shape;
    TIFFSetField(tiff_, TIFFTAG_SUBFILETYPE, subfileType);
    TIFFSetField(tiff_, TIFFTAG_IMAGEWIDTH, shape.width);
    TIFFSetField(tiff_, TIFFTAG_IMAGELENGTH, shape.height);
    TIFFSetField(tiff_, TIFFTAG_BITSPERSAMPLE, shape.bits);
    TIFFSetField(tiff_, TIFFTAG_SAMPLESPERPIXEL, shape.samples);
    TIFFSetField(tiff_, TIFFTAG_PHOTOMETRIC, shape.photometric);
    TIFFSetField(tiff_, TIFFTAG_COMPRESSION, shape.compression);
    TIFFSetField(tiff_, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  }
  void Strips(unsigned seed, uint32_t rows = 16) {
    TIFFSetField(tiff_, TIFFTAG_ROWSPERSTRIP, rows);
    const size_t rowBytes = (size_t{shape_.width} * shape_.samples * shape_.bits + 7) / 8;
    std::vector<uint8_t> pixels = Random(rowBytes * shape_.height, seed);
    for (uint32_t y = 0; y < shape_.height; ++y) {
      if (TIFFWriteScanline(tiff_, pixels.data() + y * rowBytes, y, 0) != 1) Fail();
    }
  }
  void Tiles(uint32_t side, unsigned seed) {
    TIFFSetField(tiff_, TIFFTAG_TILEWIDTH, side);
    TIFFSetField(tiff_, TIFFTAG_TILELENGTH, side);
    const uint32_t count = TIFFNumberOfTiles(tiff_);
    for (uint32_t tile = 0; tile < count; ++tile) {
      std::vector<uint8_t> pixels = Random(static_cast<size_t>(TIFFTileSize(tiff_)), seed + tile);
      if (TIFFWriteEncodedTile(tiff_, tile, pixels.data(), TIFFTileSize(tiff_)) < 0) Fail();
    }
  }
  void End() {
    if (TIFFWriteDirectory(tiff_) != 1) Fail();
  }

 private:
  [[noreturn]] static void Fail() { throw std::runtime_error("libtiff does not write the page"); }

  TIFF* tiff_;
  Shape shape_{};
};

void Resolution(TIFF* tiff, double x, double y) {
  TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  TIFFSetField(tiff, TIFFTAG_XRESOLUTION, x);
  TIFFSetField(tiff, TIFFTAG_YRESOLUTION, y);
}

void AddExif(TIFF* tiff) {
  // The directory is written first, then the page gets the place of it.
  TIFFSetField(tiff, TIFFTAG_EXIFIFD, uint64_t{0});
  if (TIFFWriteDirectory(tiff) != 1) throw std::runtime_error("no page before EXIF");
  if (TIFFCreateEXIFDirectory(tiff) != 0) throw std::runtime_error("no EXIF directory");
  TIFFSetField(tiff, EXIFTAG_EXPOSURETIME, 0.125);
  uint64_t place = 0;
  if (TIFFWriteCustomDirectory(tiff, &place) != 1) throw std::runtime_error("no EXIF written");
  TIFFSetDirectory(tiff, static_cast<tdir_t>(ChainIndex(kNumberPage)));
  TIFFSetField(tiff, TIFFTAG_EXIFIFD, place);
}

}  // namespace

std::string RowOfPlainPage(int y) {
  const std::vector<uint8_t> pixels = Random(size_t{kPlainWidth} * 90, 1);
  const auto* row = reinterpret_cast<const char*>(pixels.data()) + ptrdiff_t{y} * kPlainWidth;
  return {row, kPlainWidth};
}

void WriteMadeDocument(const std::string& file, const std::string& mode) {
  Writer writer(file, mode);
  TIFF* const tiff = writer.File();
  writer.Begin({kPlainWidth, 90});
  Resolution(tiff, 300, 300);
  TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, "the plain page");
  TIFFSetField(tiff, TIFFTAG_PAGENUMBER, 0, 5);
  writer.Strips(1);
  writer.End();

  writer.Begin({160, 96, 8, 3, PHOTOMETRIC_RGB, COMPRESSION_ADOBE_DEFLATE});
  uint64_t places[1] = {0};
  TIFFSetField(tiff, TIFFTAG_SUBIFD, 1, places);
  TIFFSetField(tiff, TIFFTAG_PAGENUMBER, 1, 5);
  writer.Tiles(32, 100);
  writer.End();
  writer.Begin({80, 48, 8, 3, PHOTOMETRIC_RGB, COMPRESSION_ADOBE_DEFLATE}, FILETYPE_REDUCEDIMAGE);
  writer.Strips(200);
  writer.End();

  writer.Begin({200, 100, 1, 1, PHOTOMETRIC_MINISWHITE, COMPRESSION_CCITTFAX4});
  Resolution(tiff, 204, 98);
  TIFFSetField(tiff, TIFFTAG_PAGENUMBER, 2, 5);
  writer.Strips(300, 25);
  writer.End();
  writer.Begin({200, 100, 1, 1, PHOTOMETRIC_MASK, COMPRESSION_CCITTFAX4}, FILETYPE_MASK);
  writer.Strips(400, 100);
  writer.End();

  writer.Begin({60, 50, 16, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE});
  writer.Strips(500);
  AddExif(tiff);
  writer.End();

  writer.Begin({96, 64, 8, 3, PHOTOMETRIC_YCBCR, COMPRESSION_JPEG});
  TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
  TIFFSetField(tiff, TIFFTAG_ARTIST, "an artist");
  writer.Strips(600);
  writer.End();
}

}  // namespace rasterkit::test
