#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/pictures/picture.h>

#include "tests/pictures/peer_programs.h"
#include "tests/support/temp_folder.h"

/// Numbers that are not resampled are those that GDAL reads, to the bit: every number type, strips
/// and tiles, planes, both byte orders. Skipped without GDAL.
namespace rasterkit {
namespace {

using test::HasPeer;
using test::InQuotes;
using test::OutputOfPeer;
using test::TempFolder;

constexpr uint32_t kSeed = 20260514;
constexpr int kWidth = 37, kHeight = 21, kBands = 2;

struct TypeCase {
  NumberType type;
  /// Options of gdal_translate that store numbers of this type.
  const char* options;
};

constexpr std::array<TypeCase, 10> kTypes = {{{NumberType::uint8, ""},
                                              {NumberType::uint16, ""},
                                              {NumberType::int16, ""},
                                              {NumberType::uint32, ""},
                                              {NumberType::int32, ""},
                                              {NumberType::uint64, ""},
                                              {NumberType::int64, ""},
                                              {NumberType::float16, "-co NBITS=16"},
                                              {NumberType::float32, ""},
                                              {NumberType::float64, ""}}};

constexpr const char* kForms[] = {
    "-co INTERLEAVE=PIXEL", "-co INTERLEAVE=BAND -co ENDIANNESS=BIG",
    "-co INTERLEAVE=PIXEL -co TILED=YES -co BLOCKXSIZE=16 -co BLOCKYSIZE=16 -co ENDIANNESS=BIG",
    ("-co INTERLEAVE=BAND -co TILED=YES -co BLOCKXSIZE=32 -co BLOCKYSIZE=16 -co COMPRESS=DEFLATE "
     "-co PREDICTOR=2"),
    "-co INTERLEAVE=PIXEL -co COMPRESS=LZW -co BIGTIFF=YES"};

/// Random bits; floating-point numbers are finite, since the payload of NaN has no one meaning.
Samples Grid(NumberType type, std::mt19937& random) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  layout.bands = kBands;
  layout.extraBands = kBands - 1;
  layout.model = ColorModel::gray;
  Samples grid(layout, kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    std::generate_n(grid.Row(y), grid.Stride(), [&] { return static_cast<uint8_t>(random()); });
    const size_t size = BytesOf(type);
    const bool isFloating =
        type == NumberType::float16 || type == NumberType::float32 || type == NumberType::float64;
    // An exponent with a zero in it is no infinity and no NaN.
    for (size_t i = size - 1; isFloating && i < grid.Stride(); i += size) grid.Row(y)[i] &= 0xBF;
  }
  return grid;
}

/// The numbers as GDAL gives them, all bands of a pixel together, in the order of the processor.
/// Halves become floats there.
std::vector<uint8_t> NumbersOfGdal(const std::string& file, const TempFolder& folder) {
  const std::string plain = folder / "plain.tif";
  std::filesystem::remove(plain);
  OutputOfPeer("gdal_translate -q -co INTERLEAVE=PIXEL -co COMPRESS=NONE " + InQuotes(file) + " " +
               InQuotes(plain));
  TIFF* const tiff = TIFFOpen(plain.c_str(), "r");
  if (tiff == nullptr) return {};
  std::vector<uint8_t> bytes;
  for (uint32_t strip = 0; strip < TIFFNumberOfStrips(tiff); ++strip) {
    std::vector<uint8_t> rows(static_cast<size_t>(TIFFStripSize(tiff)));
    const tmsize_t count =
        TIFFReadEncodedStrip(tiff, strip, rows.data(), static_cast<tmsize_t>(rows.size()));
    if (count > 0) bytes.insert(bytes.end(), rows.begin(), rows.begin() + count);
  }
  TIFFClose(tiff);
  return bytes;
}

/// A step that moves pixels, and where the pixel of a place comes from.
struct Move {
  const char* name;
  std::vector<Step> steps;
  int width, height;
  std::pair<int, int> (*from)(int x, int y);
};

const std::vector<Move>& Moves() {
  static const std::vector<Move> kMoves = {
      {"convert", {}, kWidth, kHeight, [](int x, int y) { return std::pair(x, y); }},
      {"crop",
       {CropStep{5, 3, 20, 11}},
       20,
       11,
       [](int x, int y) { return std::pair(x + 5, y + 3); }},
      {"mirror",
       {MirrorStep{MirrorAxis::leftRight}},
       kWidth,
       kHeight,
       [](int x, int y) { return std::pair(kWidth - 1 - x, y); }},
      {"turn",
       {TurnStep{1}},
       kHeight,
       kWidth,
       [](int x, int y) { return std::pair(kWidth - 1 - y, x); }},
      {"rotate and mirror",
       {RotateStep{180, {}}, MirrorStep{MirrorAxis::topBottom}},
       kWidth,
       kHeight,
       [](int x, int y) { return std::pair(kWidth - 1 - x, y); }}};
  return kMoves;
}

void ExpectMoved(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after,
                 const Move& move) {
  const size_t pixel = before.size() / (kWidth * kHeight);
  ASSERT_EQ(after.size(), pixel * static_cast<size_t>(move.width * move.height));
  for (int y = 0; y < move.height; ++y) {
    for (int x = 0; x < move.width; ++x) {
      const auto [column, row] = move.from(x, y);
      ASSERT_EQ(std::memcmp(&after[static_cast<size_t>(y * move.width + x) * pixel],
                            &before[static_cast<size_t>(row * kWidth + column) * pixel], pixel),
                0)
          << x << "," << y;
    }
  }
}

TEST(DeepPeer, EveryNumberType_Should_BeMovedAsGdalReadsIt) {
  if (!HasPeer("gdal_translate")) GTEST_SKIP() << "no GDAL";
  const TempFolder folder;
  std::mt19937 random(kSeed);
  size_t round = 0;
  for (const TypeCase& type : kTypes) {
    const std::string made = folder / "made.tif";
    Picture::Of(Grid(type.type, random)).Save(made);
    for (const char* form : kForms) {
      SCOPED_TRACE(form);
      const Move& move = Moves()[round++ % Moves().size()];
      SCOPED_TRACE(move.name);
      SCOPED_TRACE("type " + std::to_string(static_cast<int>(type.type)));
      const std::string source = folder / "source.tif", target = folder / "target.tif";
      std::filesystem::remove(source);
      OutputOfPeer(std::string("gdal_translate -q ") + type.options + " " + form + " " +
                   InQuotes(made) + " " + InQuotes(source));
      const std::vector<uint8_t> before = NumbersOfGdal(source, folder);
      ASSERT_FALSE(before.empty());
      Picture picture = Picture::Open(source);
      ASSERT_EQ(picture.Layout().type, type.type);
      for (const Step& step : move.steps) picture.Apply(step);
      const Report report = picture.Save(target);
      EXPECT_EQ(report.layout.type, type.type);
      EXPECT_EQ(Picture::Open(target).Layout().type, type.type);
      ExpectMoved(before, NumbersOfGdal(target, folder), move);
      if (testing::Test::HasFatalFailure()) FAIL() << "seed " << kSeed;
    }
  }
  EXPECT_GT(round, 40u);
}

}  // namespace
}  // namespace rasterkit
