// Files that are truncated, damaged, sparse, or claim more than they hold.

#include <cstring>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "tests/support/raw_tiff.h"
#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

TiffFile Picture(uint32_t width, uint32_t height, uint32_t rowsPerStrip, uint16_t compression) {
  TiffFile file;
  file.width = width;
  file.height = height;
  file.samples = 3;
  file.photometric = PHOTOMETRIC_RGB;
  file.rowsPerStrip = rowsPerStrip;
  file.compression = compression;
  std::mt19937 random(9);
  file.pixels = RandomSamples(file, random);
  return file;
}

ImagingFrame Decode(const std::vector<uint8_t>& bytes, CodecReport* report = nullptr,
                    int threads = 1) {
  TSpanStream stream(bytes);
  return DecodeTiff(stream, {.threads = threads}, report);
}

std::string ErrorOf(const std::vector<uint8_t>& bytes, int threads = 1) {
  try {
    Decode(bytes, nullptr, threads);
  } catch (const Error& error) {
    return error.what();
  }
  return "none";
}

int WholeRows(const ImagingFrame& frame, const ImagingFrame& whole) {
  int y = 0;
  while (y < whole.rows.Height() &&
         std::memcmp(frame.rows.Row(y), whole.rows.Row(y), whole.rows.Stride()) == 0)
    y++;
  return y;
}

bool IsWhite(const Raster& raster, int y) {
  const uint8_t* row = raster.Row(y);
  return std::all_of(row, row + raster.RowBytes(), [](uint8_t byte) { return byte == 255; });
}

TEST(TiffHostile, RowsThatAreThere_Should_BeGiven_When_TheFileIsCutOff) {
  // With and without differences of neighbors, which are undone after the codec.
  const std::pair<uint16_t, uint16_t> cases[] = {
      {COMPRESSION_NONE, 1},          {COMPRESSION_LZW, 1},           {COMPRESSION_LZW, 2},
      {COMPRESSION_ADOBE_DEFLATE, 1}, {COMPRESSION_ADOBE_DEFLATE, 2}, {COMPRESSION_PACKBITS, 1},
      {COMPRESSION_ZSTD, 1},          {COMPRESSION_ZSTD, 2}};
  for (const auto& [compression, predictor] : cases) {
    for (const uint32_t rowsPerStrip : {60u, 7u}) {
      SCOPED_TRACE(testing::Message() << compression << ", " << predictor << ", " << rowsPerStrip);
      TiffFile file = Picture(50, 60, rowsPerStrip, compression);
      file.predictor = predictor;
      // The directory goes before the pixels, so that it survives.
      file.setTags = [](TIFF* tiff) {
        TIFFWriteCheck(tiff, 0, "test"), TIFFWriteDirectory(tiff), TIFFSetDirectory(tiff, 0);
      };
      std::vector<uint8_t> bytes = file.Bytes();
      ASSERT_FALSE(bytes.empty());
      const ImagingFrame whole = Decode(bytes);
      bytes.resize(bytes.size() * 6 / 10);
      CodecReport report;
      const ImagingFrame frame = Decode(bytes, &report);
      const int rows = WholeRows(frame, whole);
      EXPECT_GT(rows, 25);
      EXPECT_LT(rows, 45);
      for (int y = rows + 1; y < 60; y++) EXPECT_TRUE(IsWhite(frame.rows, y)) << y;
      EXPECT_THAT(report.warnings, testing::Contains(HasSubstr(" of 60 rows are complete")));
      CodecReport onThreads;
      EXPECT_EQ(WholeRows(Decode(bytes, &onThreads, 4), frame), 60);
      EXPECT_EQ(onThreads.warnings, report.warnings);
    }
  }
}

TEST(TiffHostile, EveryCut_Should_GiveAPictureOrAnError) {
  for (const uint16_t compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_JPEG}) {
    TiffFile file = Picture(16, 16, 4, compression);
    if (compression == COMPRESSION_JPEG) file.rowsPerStrip = 8;
    const std::vector<uint8_t> bytes = file.Bytes();
    ASSERT_FALSE(bytes.empty());
    for (size_t size = 0; size < bytes.size(); size++) {
      const std::vector<uint8_t> cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
      const std::string error = ErrorOf(cut);
      EXPECT_TRUE(error == "none" || error.starts_with("TIFF")) << size << ": " << error;
      EXPECT_EQ(error, ErrorOf(cut, 3));
    }
  }
}

TEST(TiffHostile, EveryChangedByte_Should_GiveAPictureOrAnError) {
  for (const uint16_t compression :
       {COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_CCITTFAX4, COMPRESSION_JPEG}) {
    TiffFile file = Picture(16, 16, 8, compression);
    if (compression == COMPRESSION_CCITTFAX4) {
      file.photometric = PHOTOMETRIC_MINISWHITE;
      file.samples = file.bits = 1;
      file.pixels.resize(file.PixelBytes());
    }
    std::vector<uint8_t> bytes = file.Bytes();
    ASSERT_FALSE(bytes.empty());
    for (size_t i = 0; i < bytes.size(); i++) {
      for (const uint8_t flip : {0x01, 0x80, 0xFF}) {
        bytes[i] ^= flip;
        const std::string error = ErrorOf(bytes);
        EXPECT_TRUE(error == "none" || error.starts_with("TIFF") || error.starts_with("picture"))
            << i << ": " << error;
        bytes[i] ^= flip;
      }
    }
  }
}

TEST(TiffHostile, OtherStrips_Should_BeShown_When_OneIsDamaged) {
  const TiffFile file = Picture(20, 12, 4, COMPRESSION_ADOBE_DEFLATE);
  std::vector<uint8_t> bytes = file.Bytes();
  const ImagingFrame whole = Decode(bytes);
  // The second strip's zlib header.
  const uint8_t mark[2] = {0x78, 0x9C};
  auto place = std::search(bytes.begin(), bytes.end(), mark, mark + 2);
  place = std::search(place + 2, bytes.end(), mark, mark + 2);
  ASSERT_NE(place, bytes.end());
  *place = 0;
  CodecReport report;
  const ImagingFrame frame = Decode(bytes, &report);
  for (int y = 0; y < 12; y++) {
    if (y >= 4 && y < 8) {
      EXPECT_TRUE(IsWhite(frame.rows, y));
    } else {
      EXPECT_EQ(std::memcmp(frame.rows.Row(y), whole.rows.Row(y), 60), 0) << y;
    }
  }
  ASSERT_FALSE(report.warnings.empty());
  EXPECT_THAT(report.warnings[0], HasSubstr("4 of 12 rows are complete"));
}

TEST(TiffHostile, HugeClaims_Should_BeRefusedBeforeMemoryIsTaken) {
  const auto claim = [](uint32_t width, uint32_t height, uint32_t compression) {
    return RawTiff::Of(width, height, 8, compression)
        .Long(TIFFTAG_STRIPOFFSETS, 200)
        .Long(TIFFTAG_STRIPBYTECOUNTS, 100)
        .Bytes(200);
  };
  // With addresses of 32 bits libtiff itself refuses sizes from 2 GiB on.
  const bool isNarrow = sizeof(size_t) < 8;
  EXPECT_THAT(ErrorOf(claim(40000, 40000, COMPRESSION_LZW)), HasSubstr("far too small"));
  EXPECT_THAT(ErrorOf(claim(60000, 60000, COMPRESSION_NONE)),
              HasSubstr(isNarrow ? "overflow" : "far too small"));
  EXPECT_THAT(ErrorOf(claim(40000, 40000, COMPRESSION_ADOBE_DEFLATE)), HasSubstr("far too small"));
  EXPECT_THAT(ErrorOf(claim(200000, 200000, COMPRESSION_LZW)),
              HasSubstr(isNarrow ? "overflow" : "the limit is"));
  EXPECT_THAT(ErrorOf(claim(0xFFFFFFFF, 1, COMPRESSION_LZW)), HasSubstr("TIFF"));
  EXPECT_THAT(ErrorOf(claim(1, 0xFFFFFFFF, COMPRESSION_LZW)), HasSubstr("TIFF"));
  EXPECT_THAT(ErrorOf(claim(0, 5, COMPRESSION_LZW)), HasSubstr("TIFF"));
}

TEST(TiffHostile, HugeTagCounts_Should_GiveAPictureOrAnError) {
  const auto sound = [] {
    RawTiff file = RawTiff::Of(4, 4, 8, COMPRESSION_NONE);
    return file.Long(TIFFTAG_STRIPOFFSETS, 8).Long(TIFFTAG_STRIPBYTECOUNTS, 16);
  };
  EXPECT_EQ(ErrorOf(sound().Bytes(16)), "none");
  for (const uint32_t count : {0x10000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    for (const uint16_t tag : {TIFFTAG_BITSPERSAMPLE, TIFFTAG_STRIPOFFSETS, TIFFTAG_STRIPBYTECOUNTS,
                               TIFFTAG_SAMPLEFORMAT, TIFFTAG_COLORMAP, TIFFTAG_EXTRASAMPLES,
                               TIFFTAG_ICCPROFILE, 33550, 33922, 42113}) {
      for (const uint16_t type : {1, 2, 3, 4, 7, 12}) {
        SCOPED_TRACE(testing::Message() << "tag " << tag << ", type " << type << ", " << count);
        const std::vector<uint8_t> bytes = sound().Entry(tag, type, count, 8).Bytes(16);
        const std::string error = ErrorOf(bytes);
        EXPECT_TRUE(error == "none" || error.starts_with("TIFF")) << error;
        TSpanStream stream(bytes);
        const TiffFacts facts = ReadTiffFacts(stream);
        EXPECT_TRUE(facts.pixelScale.empty() && facts.tiePoints.empty());
        EXPECT_LE(facts.noData.size(), 4096u);
      }
    }
  }
}

TEST(TiffHostile, MemoryLimit_Should_HoldForRowsAndBlocks) {
  const uint64_t before = PictureMemoryLimit();
  const std::vector<uint8_t> large = Picture(400, 300, 300, COMPRESSION_LZW).Bytes();
  const std::vector<uint8_t> plain = Picture(400, 300, 300, COMPRESSION_NONE).Bytes();
  TiffFile tile = Picture(20, 20, 0, COMPRESSION_LZW);
  tile.tileWidth = tile.tileHeight = 512;
  const std::vector<uint8_t> tiled = tile.Bytes();
  SetPictureMemoryLimit(500000);
  EXPECT_THAT(ErrorOf(large), HasSubstr("the limit is 500000 bytes"));
  EXPECT_EQ(ErrorOf(plain), "none");
  EXPECT_THAT(ErrorOf(tiled), HasSubstr("the limit is 500000 bytes"));
  SetPictureMemoryLimit(before);
  EXPECT_EQ(ErrorOf(large), "none");
  EXPECT_EQ(ErrorOf(tiled), "none");
}

TEST(TiffHostile, BlankPages_Should_Load_When_PackedHighly) {
  TiffFile file;
  file.width = 14043;
  file.height = 9933;
  file.bits = 1;
  file.photometric = PHOTOMETRIC_MINISWHITE;
  file.compression = COMPRESSION_CCITTFAX4;
  file.pixels.resize(file.PixelBytes());
  const std::vector<uint8_t> bytes = file.Bytes();
  EXPECT_LT(bytes.size(), 4000u);
  EXPECT_TRUE(IsWhite(Decode(bytes).rows, 9932) || Decode(bytes).rows.Row(9932)[0] == 255);
}

/// Strips without bytes, as programs leave them that save room.
std::vector<uint8_t> Sparse(const std::string& noData) {
  TiffFile file;
  file.width = 10;
  file.height = 8;
  file.bits = 16;
  file.rowsPerStrip = 4;
  file.sampleFormat = SAMPLEFORMAT_INT;
  file.pixels.resize(file.PixelBytes());
  for (size_t i = 0; i < file.pixels.size(); i++) file.pixels[i] = static_cast<uint8_t>(i);
  std::vector<uint8_t> bytes = file.Bytes();
  // A directory of our own behind the file: the first strip stays, the second has no bytes.
  const auto at = static_cast<uint32_t>(bytes.size());
  RawTiff raw = RawTiff::Of(10, 8, 16, 1);
  raw.Long(TIFFTAG_ROWSPERSTRIP, 4).Entry(TIFFTAG_SAMPLEFORMAT, 3, 1, SAMPLEFORMAT_INT);
  const uint32_t tags = noData.empty() ? 10 : 11;
  const uint32_t behind = at + 2 + tags * 12 + 4;
  raw.Entry(TIFFTAG_STRIPOFFSETS, 4, 2, behind).Entry(TIFFTAG_STRIPBYTECOUNTS, 4, 2, behind + 8);
  if (!noData.empty()) raw.Entry(42113, 2, static_cast<uint32_t>(noData.size() + 1), behind + 16);
  const std::vector<uint8_t> directory = raw.Bytes();
  bytes.insert(bytes.end(), directory.begin() + 8, directory.end());
  for (const uint32_t value : {8u, 0u, 80u, 0u})
    for (int i = 0; i < 4; i++) bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
  bytes.insert(bytes.end(), noData.begin(), noData.end());
  bytes.push_back(0);
  std::memcpy(bytes.data() + 4, &at, 4);
  return bytes;
}

TEST(TiffHostile, MissingStrips_Should_HoldNoDataOrZero_When_TheFileIsSparse) {
  const std::map<std::string, int16_t> cases = {
      {"", 0}, {"-9999", -9999}, {" -9999 \n", -9999}, {"none", 0}, {"1000000000", 0}};
  for (const auto& [text, value] : cases) {
    SCOPED_TRACE(text);
    const std::vector<uint8_t> bytes = Sparse(text);
    CodecReport report;
    const ImagingFrame frame = Decode(bytes, &report);
    ASSERT_EQ(frame.format, GUID_WICPixelFormat16bppGrayFixedPoint);
    EXPECT_THAT(report.warnings, testing::IsEmpty());
    int16_t first = 0, last = 0;
    std::memcpy(&first, frame.rows.Row(0) + 2, 2);
    std::memcpy(&last, frame.rows.Row(7) + 18, 2);
    EXPECT_EQ(first, 0x0302);
    EXPECT_EQ(last, value);
    TSpanStream stream(bytes);
    EXPECT_EQ(ReadTiffFacts(stream).noData, text == " -9999 \n" ? "-9999" : text);
  }
}

TEST(TiffHostile, Facts_Should_EndCircles_When_DirectoriesPointBack) {
  RawTiff file = RawTiff::Of(4, 4, 8, 1);
  file.Long(TIFFTAG_STRIPOFFSETS, 8).Long(TIFFTAG_STRIPBYTECOUNTS, 16);
  const std::vector<uint8_t> bytes = file.Bytes(0, 8);
  TSpanStream stream(bytes);
  EXPECT_EQ(ReadTiffFacts(stream).pages, 1);
  EXPECT_EQ(ErrorOf(bytes), "none");
}

TEST(TiffHostile, FirstDirectory_Should_BeRefused_When_ItLiesAtZero) {
  RawTiff file = RawTiff::Of(4, 4, 8, 1);
  std::vector<uint8_t> bytes = file.Long(TIFFTAG_STRIPOFFSETS, 8).Bytes(30000);
  bytes[4] = 0;  // the header itself reads as a directory of many entries
  EXPECT_THAT(ErrorOf(bytes), HasSubstr("first directory"));
  TSpanStream stream(bytes);
  EXPECT_THROW(ReadTiffFacts(stream), FormatError);
}

TEST(TiffHostile, OtherBytes_Should_BeRefused) {
  for (const std::string text : {"", "I", "II*", "MM\0*\0\0\0\0", "II*\0\xFF\xFF\xFF\xFF",
                                 "0.703125\n0.0\n0.0\n-0.703125\n"}) {
    const std::vector<uint8_t> bytes(text.begin(), text.end());
    EXPECT_THAT(ErrorOf(bytes), HasSubstr("TIFF")) << text;
    TSpanStream stream(bytes);
    EXPECT_THROW(ReadTiffFacts(stream), FormatError);
  }
}

TEST(TiffHostile, UnknownKinds_Should_BeNamed) {
  const auto strips = [](RawTiff file) {
    return file.Long(TIFFTAG_STRIPOFFSETS, 8).Long(TIFFTAG_STRIPBYTECOUNTS, 16).Bytes(64);
  };
  EXPECT_THAT(ErrorOf(strips(RawTiff::Of(4, 4, 8, 34712))), HasSubstr("compression 34712"));
  EXPECT_THAT(ErrorOf(strips(RawTiff::Of(4, 4, 8, COMPRESSION_JXL))), HasSubstr("JPEG XL"));
  EXPECT_THAT(ErrorOf(strips(RawTiff::Of(4, 4, 40, 1))), HasSubstr("40 bits"));
  RawTiff raw = RawTiff::Of(4, 4, 8, 1);
  raw.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_CFA);
  EXPECT_THAT(ErrorOf(strips(raw)), HasSubstr("kind 32803"));
}

TEST(TiffHostile, SamplesThatDoNotCount_Should_CostLittle_When_ThereAreThousands) {
  // 31,232 samples per pixel, of which the first is shown; every strip is skipped.
  RawTiff file = RawTiff::Of(19, 1792, 2, COMPRESSION_ADOBE_DEFLATE);
  file.Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 31232);
  file.Long(TIFFTAG_STRIPOFFSETS, 0).Long(TIFFTAG_STRIPBYTECOUNTS, 0);
  const ImagingFrame frame = Decode(file.Bytes(64));
  EXPECT_EQ(frame.format, GUID_WICPixelFormat32bppBGRA);
  EXPECT_EQ(frame.rows.Row(1791)[72], 0);
}

TEST(TiffHostile, RealParts_Should_BeShown_When_NumbersAreComplex) {
  RawTiff file = RawTiff::Of(2, 1, 32, COMPRESSION_NONE);
  file.Entry(TIFFTAG_SAMPLEFORMAT, 3, 1, SAMPLEFORMAT_COMPLEXINT);
  const auto at = static_cast<uint32_t>(file.Bytes().size() + 24);
  file.Long(TIFFTAG_STRIPOFFSETS, at).Long(TIFFTAG_STRIPBYTECOUNTS, 8);
  std::vector<uint8_t> bytes = file.Bytes(8);
  const uint8_t pixels[8] = {1, 0, 2, 0, 0xFE, 0xFF, 3, 0};
  std::copy(pixels, pixels + 8, bytes.begin() + at);
  CodecReport report;
  const ImagingFrame frame = Decode(bytes, &report);
  ASSERT_EQ(frame.format, GUID_WICPixelFormat16bppGrayFixedPoint);
  int16_t words[2];
  std::memcpy(words, frame.rows.Row(0), 4);
  EXPECT_EQ(words[0], 1);
  EXPECT_EQ(words[1], -2);
  EXPECT_THAT(report.warnings, testing::Contains(HasSubstr("real parts")));
}

/// A stream that fails while pixels are read.
class FailingStream : public TSpanStream {
 public:
  FailingStream(std::span<const uint8_t> bytes, uint64_t from) : TSpanStream(bytes), from_(from) {}
  size_t Read(std::span<uint8_t> target) override {
    if (Position() + target.size() > from_) throw FileError("the disk is gone");
    return TSpanStream::Read(target);
  }

 private:
  const uint64_t from_;
};

TEST(TiffHostile, ErrorsOfTheStream_Should_ComeThrough) {
  TiffFile file = Picture(50, 60, 7, COMPRESSION_LZW);
  const std::vector<uint8_t> bytes = file.Bytes();
  for (const int threads : {1, 3}) {
    for (const uint64_t from : std::initializer_list<uint64_t>{4, 900, bytes.size() - 50}) {
      FailingStream stream(bytes, from);
      EXPECT_THROW(DecodeTiff(stream, {.threads = threads}), FileError) << from;
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
