#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include <rasterkit/codecs/g4/g4_strip.h>

#include "tests/codecs/g4/g4_peer.h"

namespace rasterkit::tests {
namespace {

struct Counts {
  int files = 0, strips = 0, regular = 0;
};

/// Every strip and tile of the file: the rows are those of libtiff, and encoded again they are the
/// same bytes where libtiff makes them.
void CompareBlocks(TIFF* tiff, const peer::TiffBytes& file, Counts& counts) {
  uint32_t width = 0, height = 0, rowsPerStrip = 0;
  uint16_t fillOrder = FILLORDER_MSB2LSB;
  TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_FILLORDER, &fillOrder);
  const bool isTiled = TIFFIsTiled(tiff) != 0;
  if (isTiled) {
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &rowsPerStrip);
  }
  counts.files++;
  const uint32_t blocks = isTiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
  for (uint32_t block = 0; block < blocks; block++) {
    detail::G4Strip strip{width, rowsPerStrip, fillOrder == FILLORDER_LSB2MSB};
    if (!isTiled) strip.rows = std::min(rowsPerStrip, height - block * rowsPerStrip);
    std::vector<uint8_t> bytes(TIFFGetStrileByteCount(tiff, block));
    const uint64_t offset = TIFFGetStrileOffset(tiff, block);
    if (offset + bytes.size() > file.bytes.size()) continue;
    std::copy_n(file.bytes.data() + offset, bytes.size(), bytes.begin());
    counts.strips++;
    std::vector<uint8_t> rows(strip.RowBytes() * strip.rows);
    if (!detail::DecodeG4Strip(bytes, strip, 0, rows.data())) continue;
    counts.regular++;
    peer::LibtiffDecoder libtiff(static_cast<int>(width), strip.rows, strip.isLowBitFirst);
    const peer::LibtiffRows expected = libtiff.Decode(bytes);
    ASSERT_EQ(expected.messages, 0);
    ASSERT_TRUE(expected.rows == rows);
    ASSERT_EQ(detail::EncodeG4Strip(rows, strip),
              peer::EncodeByLibtiff(rows, static_cast<int>(width), strip.isLowBitFirst));
  }
}

TEST(G4Corpus, StripsAreThoseOfLibtiff) {
  const char* corpus = std::getenv("RASTERKIT_CORPUS");
  if (corpus == nullptr) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  Counts counts;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(corpus)) {
    const std::string extension = entry.path().extension();
    if (extension != ".tif" && extension != ".tiff") continue;
    peer::TiffBytes file;
    std::ifstream stream(entry.path(), std::ios::binary);
    file.bytes.assign(std::istreambuf_iterator<char>(stream), {});
    const auto tiff = file.Open("r");
    uint16_t compression = 0, bits = 1, samples = 1;
    if (!tiff || TIFFGetField(tiff.get(), TIFFTAG_COMPRESSION, &compression) != 1) continue;
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &samples);
    if (compression != COMPRESSION_CCITTFAX4 || bits != 1 || samples != 1) continue;
    SCOPED_TRACE(entry.path());
    CompareBlocks(tiff.get(), file, counts);
    if (HasFatalFailure()) return;
  }
  std::printf("%d files, %d strips, %d of them regular\n", counts.files, counts.strips,
              counts.regular);
  EXPECT_GT(counts.regular, 0);
}

}  // namespace
}  // namespace rasterkit::tests
