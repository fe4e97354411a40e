#include <algorithm>
#include <functional>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/png/rows/png_rows.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/png/made_png.h"
#include "tests/support/corpus.h"

namespace rasterkit::test {
namespace {

using detail::PngOpening;
using detail::PngRowKind;
using detail::PngRows;
using detail::PngWay;

/// What a decoder gave: pixels or the text of an error, and what it noticed.
struct Decoded {
  std::vector<uint8_t> bytes;
  std::string error;
  CodecReport report;
  bool isInOneCall = false;
};

void AddRows(const Pixels& pixels, std::vector<uint8_t>& bytes) {
  std::visit(
      [&](const auto& rows) {
        for (int y = 0; y < rows.Height(); y++) {
          bytes.insert(bytes.end(), rows.Row(y), rows.Row(y) + rows.Stride());
        }
      },
      pixels);
}

/// Reads a file in bands of so many rows; 0: all at once.
Decoded Read(const ByteList& file, PngWay way, int bandRows,
             std::optional<PngRowKind> kind = std::nullopt) {
  Decoded decoded;
  try {
    TSpanStream stream(file);
    PngRows rows(stream, {.kind = kind, .way = way});
    const int step = bandRows == 0 || rows.IsInterlaced() ? rows.Height() : bandRows;
    for (int y = 0; y < rows.Height(); y += step) {
      const int count = std::min(step, rows.Height() - y);
      Pixels band = NewPixels(rows.Like(), rows.Width(), count);
      rows.Read(0, y, band);
      AddRows(band, decoded.bytes);
    }
    rows.Finish(decoded.report);
    decoded.isInOneCall = rows.IsInOneCall();
  } catch (const Error& error) {
    decoded.error = error.what();
  }
  return decoded;
}

void ExpectSame(const Decoded& expected, const Decoded& found, const std::string& what) {
  EXPECT_EQ(expected.error, found.error) << what;
  EXPECT_EQ(expected.report.warnings, found.report.warnings) << what;
  EXPECT_EQ(expected.report.damage, found.report.damage) << what;
  if (expected.error.empty()) {
    EXPECT_TRUE(expected.bytes == found.bytes) << what;
  }
}

/// Compares all ways to read a file with libpng at once.
void ExpectSameInAllWays(const ByteList& file, const std::string& what) {
  for (const auto kind : {std::optional<PngRowKind>(), std::optional(PngRowKind::colors)}) {
    const Decoded expected = Read(file, PngWay::library, 0, kind);
    ExpectSame(expected, Read(file, PngWay::automatic, 0, kind), what + ", automatic");
    for (const int band : {1, 7, 64}) {
      ExpectSame(expected, Read(file, PngWay::library, band, kind), what + ", bands by libpng");
      ExpectSame(expected, Read(file, PngWay::automatic, band, kind), what + ", bands");
    }
  }
}

TEST(PngRowsTest, AllKindsFiltersAndWidthsAreThoseOfTheLibrary) {
  std::mt19937 random(20);
  for (const MadeKind& kind : kMadeKinds) {
    for (int width = 1; width <= 70; width++) {
      for (int filter = 0; filter <= 5; filter++) {
        MadePng made(kind, width, 3 + width % 5, random);
        if (filter < 5) made.SetFilters(static_cast<uint8_t>(filter));
        const ByteList file = made.File();
        const std::string what = made.Name() + ", filter " + std::to_string(filter);
        const Decoded expected = Read(file, PngWay::library, 0);
        const Decoded found = Read(file, PngWay::automatic, 0);
        EXPECT_EQ(expected.error, "") << what;
        EXPECT_TRUE(found.isInOneCall) << what;
        EXPECT_FALSE(expected.isInOneCall) << what;
        ExpectSame(expected, found, what);
        if (width % 9 == 0) ExpectSameInAllWays(file, what);
      }
    }
  }
}

TEST(PngRowsTest, SkippedRowsChangeNothing) {
  std::mt19937 random(21);
  for (const MadeKind& kind : kMadeKinds) {
    const ByteList file = MadePng(kind, 19, 23, random).File();
    for (const PngWay way : {PngWay::automatic, PngWay::library}) {
      TSpanStream stream(file);
      PngRows rows(stream, {.kind = {}, .way = way});
      Pixels whole = DecodePngPixels(file);
      for (const int top : {2, 3, 9, 20}) {
        Pixels band = NewPixels(rows.Like(), rows.Width(), 1);
        rows.Read(0, top, band);
        std::vector<uint8_t> expected, found;
        AddRows(whole, expected);
        AddRows(band, found);
        const size_t stride = found.size();
        EXPECT_TRUE(std::equal(found.begin(), found.end(),
                               expected.begin() + static_cast<long>(stride) * top));
      }
    }
  }
}

TEST(PngRowsTest, EverySplitOfTheDataIsRead) {
  std::mt19937 random(22);
  MadePng made({8, 2}, 40, 30, random);
  for (const size_t piece : {1, 2, 5, 100, 1000}) {
    made.Split(piece, piece % 2 == 1);
    const ByteList file = made.File();
    EXPECT_TRUE(Read(file, PngWay::automatic, 0).isInOneCall) << piece;
    ExpectSameInAllWays(file, "pieces of " + std::to_string(piece));
  }
}

TEST(PngRowsTest, FlawsAreJudgedByTheLibrary) {
  std::mt19937 random(23);
  for (const MadeKind& kind : kMadeKinds) {
    for (const MadeFlaw flaw : kMadeFlaws) {
      MadePng made(kind, 133, 20, random);
      made.AddFlaw(flaw, random);
      const ByteList file = made.File();
      const std::string what = made.Name() + ", flaw " + std::to_string(static_cast<int>(flaw));
      EXPECT_FALSE(Read(file, PngWay::automatic, 0).isInOneCall) << what;
      ExpectSameInAllWays(file, what);
    }
  }
}

TEST(PngRowsTest, ChangedBytesAreJudgedByTheLibrary) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  constexpr int kFiles = 600;
  for (int i = 0; i < kFiles; i++) {
    const MadeKind& kind = kMadeKinds[random() % std::size(kMadeKinds)];
    ByteList file = MadePng(kind, 1 + static_cast<int>(random() % 60),
                            1 + static_cast<int>(random() % 30), random)
                        .File();
    file[random() % file.size()] ^= static_cast<uint8_t>(1u << random() % 8);
    if (random() % 4 == 0) file.resize(random() % file.size());
    ExpectSame(Read(file, PngWay::library, 0), Read(file, PngWay::automatic, 7),
               "file " + std::to_string(i));
  }
}

TEST(PngRowsTest, AKeyColorThatTheLibraryDropsIsNoAlphaChannel) {
  // The transparent color stands before a palette, which true color may have as a suggestion.
  const ByteList file = PngFile(2, 1, 16, 2, ByteList(12, 1),
                                PngChunk("tRNS", {1, 1, 1, 1, 1, 1}) + PngChunk("PLTE", {1, 2, 3}));
  const Pixels pixels = DecodePngPixels(file);
  EXPECT_EQ(std::get<Samples>(pixels).Layout().bands, 3);
  std::vector<uint8_t> bytes;
  AddRows(pixels, bytes);
  EXPECT_EQ(bytes, std::vector<uint8_t>(12, 1));
  ExpectSameInAllWays(file, "key color before the palette");
}

TEST(PngRowsTest, ASizeThatTheDataCannotHoldIsNotBelieved) {
  // 60 MB of rows are claimed, and a few bytes are there.
  std::mt19937 random(24);
  const ByteList small = MadePng({8, 0}, 10, 10, random).File();
  const ByteList header = PngSignature() + PngHeader(10000, 6000, 8, 0);
  const ByteList file =
      header + ByteList(small.begin() + static_cast<long>(header.size()), small.end());
  EXPECT_FALSE(Read(file, PngWay::automatic, 100).isInOneCall);
  ExpectSame(Read(file, PngWay::library, 0), Read(file, PngWay::automatic, 100), "claimed size");
}

/// The header as one line.
std::string HeaderOf(const std::function<PictureHeader()>& read) {
  try {
    const PictureHeader header = read();
    std::string text = std::to_string(header.width) + " x " + std::to_string(header.height) + ", " +
                       std::to_string(header.metadata.pngChunks.size()) + " chunks, " +
                       std::to_string(header.isCutOff);
    for (const auto& warning : header.warnings) text += ", " + warning;
    for (const auto& other : header.hiddenOthers) text += ", " + other;
    return text;
  } catch (const Error& error) {
    return error.what();
  }
}

TEST(PngRowsTest, AHeaderIsTheSameWithoutThePixels) {
  std::mt19937 random(27);
  for (int i = 0; i < 3000; i++) {
    MadePng made(kMadeKinds[random() % std::size(kMadeKinds)], 20, 10, random);
    if (i % 2 == 0) made.AddFlaw(kMadeFlaws[random() % std::size(kMadeFlaws)], random);
    ByteList file = made.File();
    if (i % 3 == 0) file.resize(random() % file.size());
    if (i % 5 == 0) file.insert(file.end(), 1 + random() % 40, 'x');
    TSpanStream stream(file);
    EXPECT_EQ(HeaderOf([&] { return ReadPngHeader(file); }),
              HeaderOf([&] { return ReadPngStreamHeader(stream); }))
        << i;
  }
}

TEST(PngRowsTest, RowsAreReadFromTopToBottomOnly) {
  std::mt19937 random(25);
  const ByteList file = MadePng({8, 2}, 10, 10, random).File();
  TSpanStream stream(file);
  const auto rows = OpenPngRows(stream);
  ASSERT_NE(rows, nullptr);
  Pixels band = NewPixels(rows->Like(), 10, 4);
  rows->Read(0, 4, band);
  EXPECT_THROW(rows->Read(0, 3, band), RangeError);
  EXPECT_THROW(rows->Read(1, 8, band), RangeError);
  EXPECT_THROW(rows->Read(0, 8, band), RangeError);
  Pixels narrow = NewPixels(rows->Like(), 9, 1);
  EXPECT_THROW(rows->Read(0, 8, narrow), RangeError);
}

TEST(PngRowsTest, AnInterlacedFileIsReadAsAWhole) {
  std::mt19937 random(26);
  MadePng made({8, 2}, 21, 13, random);
  const Pixels pixels = DecodePngPixels(made.File());
  PictureWriting writing;
  writing.form = PngForm{8, 2, true};
  TMemoryStream interlaced;
  WritePng(pixels, writing, interlaced);
  interlaced.SetPosition(0);
  EXPECT_EQ(OpenPngRows(interlaced), nullptr);
  std::vector<uint8_t> expected, found;
  AddRows(pixels, expected);
  AddRows(DecodePngPixels(interlaced.Bytes()), found);
  EXPECT_EQ(expected, found);
}

TEST(PngRowsTest, FilesOfTheCorpusAreThoseOfTheLibrary) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  int files = 0;
  for (const CorpusEntry& entry : CorpusEntries("png")) {
    const std::string& path = entry.at("path");
    TMemoryStream file;
    file.LoadFromFile((CorpusFolder() / path).string());
    const ByteList bytes(file.Bytes().begin(), file.Bytes().end());
    ExpectSame(Read(bytes, PngWay::library, 64), Read(bytes, PngWay::automatic, 64), path);
    files++;
  }
  EXPECT_GT(files, 10);
}

}  // namespace
}  // namespace rasterkit::test
