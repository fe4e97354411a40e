#include <map>
#include <set>
#include <sstream>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"

namespace rasterkit::test {
namespace {

/// Files that other tools cannot read, or read too leniently, and the right result.
const std::map<std::string, std::string>& WarnedAndRefused() {
  static const std::map<std::string, std::string> table = {
      {"geotiff/gdal__byte_JXL_tiled.tif", "JPEG XL is not supported"},
      {"geotiff/gdal__rgbsmall_JXL_tiled_separate.tif", "JPEG XL is not supported"},
      {"geotiff/gdal__byte_truncated.tif", "its only strip begins after the end of the file"},
      {"tiff/gdal__excessive-memory-TIFFFillStrip.tif", "its strip begins after the end"},
      {"tiff/gdal__tiled_bad_offset.tif", "its tile begins after the end of the file"},
      {"tiff/gdal__lzw_corrupted.tif", "its only row is damaged"},
      {"tiff/gdal__zackthecat_corrupted.tif", "the JPEG tables are damaged"},
      {"tiff/tm__jpeg-lossless-12bit-gray.tif", "lossless JPEG is not supported"},
      {"wrongext/me__FujiFilm_FinePixS2Pro_is_jpeg.tif", "no TIFF file"},
  };
  return table;
}

bool IsTiff(const std::string& path) {
  return path.ends_with(".tif") || path.ends_with(".tiff");
}

std::vector<CorpusEntry> TiffEntries() {
  std::vector<CorpusEntry> entries = CorpusEntries();
  std::erase_if(entries, [](const CorpusEntry& entry) { return !IsTiff(entry.at("path")); });
  return entries;
}

void ExpectAsIndexed(const CorpusEntry& entry) {
  const std::string& path = entry.at("path");
  SCOPED_TRACE(path);
  const bool mustBeRefused = entry.at("expected") == "must-be-refused";
  try {
    TFileStream stream((CorpusFolder() / path).string());
    const ImagingFrame frame = DecodeTiff(stream);
    EXPECT_FALSE(mustBeRefused) << "was read";
    EXPECT_FALSE(WarnedAndRefused().contains(path)) << "the table is out of date";
    EXPECT_EQ(std::to_string(frame.rows.Width()), entry.at("width"));
    EXPECT_EQ(std::to_string(frame.rows.Height()), entry.at("height"));
  } catch (const Error& error) {
    EXPECT_TRUE(mustBeRefused || WarnedAndRefused().contains(path)) << error.what();
    EXPECT_NE(entry.at("expected"), "loads") << error.what();
    EXPECT_TRUE(error.Reason().starts_with("TIFF")) << error.what();
  }
}

TEST(TiffCorpus, Should_LoadOrRefuseAsIndexed_When_Tiff) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  testing::internal::CaptureStderr();
  const auto entries = TiffEntries();
  EXPECT_GE(entries.size(), 130u);
  for (const CorpusEntry& entry : entries) ExpectAsIndexed(entry);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "a library printed";
}

void ExpectSameOnThreads(const std::string& path) {
  SCOPED_TRACE(path);
  const auto decode = [&](int threads) -> std::pair<std::string, std::vector<uint8_t>> {
    try {
      TFileStream stream((CorpusFolder() / path).string());
      CodecReport report;
      const ImagingFrame frame = DecodeTiff(stream, {.threads = threads}, &report);
      std::vector<uint8_t> rows(frame.rows.Row(0),
                                frame.rows.Row(frame.rows.Height() - 1) + frame.rows.Stride());
      std::string text;
      for (const std::string& warning : report.warnings) text += warning + "\n";
      return {text, rows};
    } catch (const Error& error) {
      return {error.what(), {}};
    }
  };
  EXPECT_EQ(decode(1), decode(4));
}

TEST(TiffCorpus, PixelsAndErrors_Should_NotDependOnThreads) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  for (const CorpusEntry& entry : TiffEntries()) ExpectSameOnThreads(entry.at("path"));
}

/// The text behind "NAME=" in the index's facts, up to the next semicolon.
std::optional<std::string> FactOf(const CorpusEntry& entry, const std::string& name) {
  std::istringstream facts(entry.at("facts"));
  std::string fact;
  while (std::getline(facts >> std::ws, fact, ';')) {
    if (fact.starts_with(name + "=")) return fact.substr(name.size() + 1);
  }
  return std::nullopt;
}

void ExpectNumbers(const std::vector<double>& values, const std::optional<std::string>& text) {
  if (!text) return;
  std::istringstream expected(*text);
  double number = 0;
  size_t count = 0;
  while (expected >> number) {
    ASSERT_LT(count, values.size());
    EXPECT_NEAR(values[count], number, std::abs(number) * 1e-6) << count;
    count++;
  }
  // The index does not give long lists whole.
  if (count < 12) {
    EXPECT_EQ(count, values.size());
  }
}

int PagesByLibrary(const std::string& fileName) {
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  const auto silence = [](TIFF*, void*, const char*, const char*, va_list) { return 1; };
  TIFFOpenOptionsSetWarningHandlerExtR(options, silence, nullptr);
  TIFFOpenOptionsSetErrorHandlerExtR(options, silence, nullptr);
  TIFF* tiff = TIFFOpenExt(fileName.c_str(), "r", options);
  TIFFOpenOptionsFree(options);
  if (!tiff) return 0;
  const int pages = TIFFNumberOfDirectories(tiff);
  TIFFClose(tiff);
  return pages;
}

void ExpectFacts(const CorpusEntry& entry) {
  SCOPED_TRACE(entry.at("path"));
  TFileStream stream((CorpusFolder() / entry.at("path")).string());
  const TiffFacts facts = ReadTiffFacts(stream);
  EXPECT_EQ(std::to_string(facts.width), entry.at("width"));
  EXPECT_EQ(std::to_string(facts.height), entry.at("height"));
  // Some tools do not count samples beyond the colors.
  if (entry.at("bits").ends_with(fmt::format("x{}", facts.samples))) {
    EXPECT_EQ(fmt::format("{}x{}", facts.bitsPerSample, facts.samples), entry.at("bits"));
  }
  if (!entry.at("orientation").empty()) {
    EXPECT_EQ(std::to_string(facts.orientation.value_or(1)), entry.at("orientation"));
  }
  EXPECT_EQ(facts.pages, PagesByLibrary((CorpusFolder() / entry.at("path")).string()));
  EXPECT_EQ(facts.isBigEndian ? "big" : "little", FactOf(entry, "tiff_order").value_or("little"));
  ExpectNumbers(facts.pixelScale, FactOf(entry, "tag33550"));
  ExpectNumbers(facts.tiePoints, FactOf(entry, "tag33922"));
  ExpectNumbers(facts.transformation, FactOf(entry, "tag34264"));
}

TEST(TiffCorpus, Facts_Should_BeTheIndexs_When_TheFileLoads) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  for (const CorpusEntry& entry : TiffEntries())
    if (entry.at("expected") == "loads") ExpectFacts(entry);
}

}  // namespace
}  // namespace rasterkit::test
