#pragma once

#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_pages.h>

/// Pictures of every kind that a page of a TIFF file can hold, and comparisons of them.
namespace rasterkit::test {

/// A kind of pixels: a raster of a format, or samples of a layout.
struct PageKind {
  std::string name;
  std::function<Pixels(int width, int height, std::mt19937& random)> make;
  /// The model that a file of them states.
  ColorModel model = ColorModel::gray;
  int bits = 8, bands = 1;
};

/// Random bits; floats are finite. Samples of fewer bits than their type stay in range.
Samples RandomSamplesOf(const PixelLayout& layout, int width, int height, bool inPlanes,
                        std::mt19937& random);

Raster RandomRaster(TPixelFormat format, int width, int height, std::mt19937& random);

std::vector<PageKind> AllPageKinds();

/// A form as tag numbers, in strips of 7 rows.
TiffForm StripForm(int compression, int predictor = 1);

/// Same kind, size, numbers and palette; samples in planes are equal to the same ones together.
testing::AssertionResult SameNumbers(const Pixels& expected, const Pixels& actual);

/// "compression 5, predictor 2, planar, tiles 32 x 16, big-endian".
std::string Describe(const TiffForm& form);

/// The file that WriteTiff makes.
std::vector<uint8_t> Written(const Pixels& pixels, const PictureWriting& writing,
                             WrittenPicture* result = nullptr);

inline PictureHeader HeaderOf(const std::vector<uint8_t>& bytes) {
  TSpanStream stream(bytes);
  return ReadTiffHeader(stream);
}

inline Pixels PixelsOf(const std::vector<uint8_t>& bytes, CodecReport* report = nullptr) {
  TSpanStream stream(bytes);
  return DecodeTiffPixels(stream, {}, report);
}

inline std::vector<uint8_t> Copied(const std::vector<uint8_t>& bytes,
                                   const PictureWriting& writing) {
  TSpanStream source(bytes);
  TMemoryStream target;
  CopyTiff(source, writing, target);
  return target.TakeBytes();
}

/// The writing of a header's own metadata and position.
inline PictureWriting WritingOf(const PictureHeader& header) {
  PictureWriting writing;
  writing.form = header.form;
  writing.metadata = header.metadata;
  writing.positionTags = header.positionTags;
  return writing;
}

}  // namespace rasterkit::test
