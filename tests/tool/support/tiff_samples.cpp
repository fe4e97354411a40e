#include "tests/tool/support/tiff_samples.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rasterkit::test {
namespace {

constexpr uint32_t tagPixelScale = 33550, tagTiePoints = 33922, tagNoData = 42113;
constexpr uint32_t tagGeoKeys = 34735;

void FillPixels(TiffFile& file) {
  file.pixels.resize(file.PixelBytes());
  for (size_t i = 0; i < file.pixels.size(); ++i)
    file.pixels[i] = static_cast<uint8_t>(i * 37 + i / file.RowBytes() * 11);
}

}  // namespace

TiffFile GrayTiff(uint32_t width, uint32_t height, uint16_t bits) {
  TiffFile file;
  file.width = width;
  file.height = height;
  file.bits = bits;
  FillPixels(file);
  return file;
}

TiffFile ColorTiff(uint32_t width, uint32_t height) {
  TiffFile file;
  file.width = width;
  file.height = height;
  file.samples = 3;
  file.photometric = PHOTOMETRIC_RGB;
  FillPixels(file);
  return file;
}

void DefineMapTags(TIFF* tiff) {
  static char names[4][12] = {"PixelScale", "TiePoints", "NoData", "GeoKeys"};
  static const TIFFFieldInfo fields[] = {
      {tagPixelScale, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1, names[0]},
      {tagTiePoints, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1, names[1]},
      {tagNoData, -1, -1, TIFF_ASCII, FIELD_CUSTOM, 1, 0, names[2]},
      {tagGeoKeys, -1, -1, TIFF_SHORT, FIELD_CUSTOM, 1, 1, names[3]},
  };
  TIFFMergeFieldInfo(tiff, fields, 4);
}

void SetPosition(TIFF* tiff, double size, double x, double y) {
  DefineMapTags(tiff);
  const double scale[3] = {size, size, 0};
  const double tie[6] = {0, 0, 0, x, y, 0};
  TIFFSetField(tiff, tagPixelScale, 3, scale);
  TIFFSetField(tiff, tagTiePoints, 6, tie);
}

void SetLooseTiePoints(TIFF* tiff) {
  DefineMapTags(tiff);
  const double ties[12] = {0, 0, 0, 10, 20, 0, 8, 4, 0, 18, 16, 0};
  TIFFSetField(tiff, tagTiePoints, 12, ties);
  // One key of the directory: the geographic coordinate system has this number.
  const uint16_t keys[8] = {1, 1, 0, 1, 2048, 0, 1, 4326};
  TIFFSetField(tiff, tagGeoKeys, 8, keys);
}

void SetNoData(TIFF* tiff, const char* text) {
  DefineMapTags(tiff);
  TIFFSetField(tiff, tagNoData, text);
}

void WritePages(const std::string& file, const std::vector<std::pair<uint32_t, uint32_t>>& sizes,
                const std::vector<size_t>& copies) {
  TIFF* const tiff = TIFFOpen(file.c_str(), "w");
  if (tiff == nullptr) throw std::runtime_error(file + " cannot be written");
  for (size_t page = 0; page < sizes.size(); ++page) {
    const auto [width, height] = sizes[page];
    const bool isCopy = std::count(copies.begin(), copies.end(), page) > 0;
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, isCopy ? FILETYPE_REDUCEDIMAGE : 0);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, height);
    std::vector<uint8_t> pixels(size_t{width} * height, static_cast<uint8_t>(50 * page));
    TIFFWriteEncodedStrip(tiff, 0, pixels.data(), static_cast<tmsize_t>(pixels.size()));
    TIFFWriteDirectory(tiff);
  }
  TIFFClose(tiff);
}

std::vector<uint8_t> WithUnknownCompression(std::vector<uint8_t> bytes) {
  // Tag 259, of type 3, once; then its value.
  const uint8_t entry[] = {0x03, 0x01, 3, 0, 1, 0, 0, 0};
  const auto place = std::search(bytes.begin(), bytes.end(), std::begin(entry), std::end(entry));
  if (place == bytes.end()) throw std::runtime_error("the file has no tag 259");
  constexpr int kUnknown = 60000;
  place[8] = kUnknown & 0xFF;
  place[9] = kUnknown >> 8;
  return bytes;
}

void ExpectOwnWords(const std::string& err, const std::string& file) {
  std::istringstream lines(err);
  for (std::string line; std::getline(lines, line);)
    EXPECT_EQ(line.rfind("rasterkit: " + file + ": ", 0), 0u) << line;
}

ToolResult RunToolOnPipe(std::vector<std::string> arguments, const std::string& pipe,
                         const std::vector<uint8_t>& bytes) {
  if (mkfifo(pipe.c_str(), 0600) != 0) throw std::runtime_error("no pipe");
  arguments.push_back(pipe);
  ToolProcess tool(arguments);
  const int end = open(pipe.c_str(), O_WRONLY);
  if (write(end, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
    throw std::runtime_error("the pipe does not take the bytes");
  close(end);
  return tool.Wait();
}

}  // namespace rasterkit::test
