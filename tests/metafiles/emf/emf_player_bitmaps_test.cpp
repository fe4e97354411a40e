// Bitmaps and text in EMF records.

#include <gtest/gtest.h>

#include <rasterkit/metafiles/emf/emf_player.h>
#include <rasterkit/runtime/memory/picture_memory_scope.h>

#include "tests/support/emf_file.h"
#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr TColor kRed = 0x0000FF, kBlue = 0xFF0000, kGreen = 0x00FF00;
constexpr int64_t kSourceCopy = 0xCC0020, kPatternCopy = 0xF00021;

/// The place of a bitmap that follows `fieldBytes` bytes of fields after type and size.
struct DibPlace {
  DibPlace(const BmpFile& bitmap, int64_t fieldBytes)
      : dib(PackedDib(bitmap)),
        pixelBytes(static_cast<int64_t>(bitmap.pixels.size())),
        offset(fieldBytes + 8) {}
  FieldBytes Fields() const {
    const int64_t head = static_cast<int64_t>(dib.size()) - pixelBytes;
    return {offset, head, offset + head, pixelBytes};
  }
  std::vector<uint8_t> dib;
  int64_t pixelBytes, offset;
};

FieldBytes Identity() {
  return FieldBytes().Singles({1, 0, 0, 1, 0, 0});
}

/// The common fields of blits: target, operation, corner of the source, matrix, bitmap.
FieldBytes BlitFields(std::initializer_list<int64_t> dest, int64_t operation,
                      std::initializer_list<int64_t> corner, const BmpFile& bitmap,
                      int64_t moreBytes) {
  FieldBytes fields{0, 0, 0, 0};
  fields.Longs(dest).Long(operation).Longs(corner).Bytes(Identity().bytes).Longs({0, 0});
  return fields.Bytes(DibPlace(bitmap, 92 + moreBytes).Fields().bytes);
}

PlayedMetafile Play(EmfType type, const FieldBytes& fields) {
  return PlayedMetafile(EmfFile().Add(type, fields).Bytes());
}

TEST(EmfBitmaps, BitBlt_Should_CopyPixelByPixel) {
  FieldBytes fields = BlitFields({10, 20, 3, 2}, kSourceCopy, {0, 0}, SixColors(), 0);
  const PlayedMetafile played = Play(EmfType::bitBlt, fields.Bytes(PackedDib(SixColors())));
  EXPECT_EQ(played.At(10, 20), kRed);
  EXPECT_EQ(played.At(12, 20), kBlue);
  EXPECT_EQ(played.At(11, 21), clBlack);
  EXPECT_EQ(played.At(13, 20), clWhite);
}

TEST(EmfBitmaps, BitBlt_Should_UseTheBrush_When_ThereIsNoBitmap) {
  EmfFile file;
  file.Add(EmfType::createBrush, {1, 0, kGreen, 0}).Add(EmfType::selectObject, {1});
  FieldBytes fields{0, 0, 0, 0, 10, 20, 30, 20, kPatternCopy, 0, 0};
  file.Add(EmfType::bitBlt, fields.Bytes(Identity().bytes).Longs({0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(PlayedMetafile(file.Bytes()).At(20, 30), kGreen);
  EXPECT_EQ(PlayedMetafile(file.Bytes()).At(50, 30), clWhite);
}

TEST(EmfBitmaps, StretchBlt_Should_ScaleAndMirror) {
  FieldBytes fields = BlitFields({60, 20, -30, 20}, kSourceCopy, {0, 0}, SixColors(), 8);
  fields.Longs({3, 2});
  const PlayedMetafile played = Play(EmfType::stretchBlt, fields.Bytes(PackedDib(SixColors())));
  EXPECT_EQ(played.At(55, 25), kRed);
  EXPECT_EQ(played.At(35, 25), kBlue);
  EXPECT_EQ(played.At(45, 35), clBlack);
}

TEST(EmfBitmaps, StretchDibits_Should_CountItsPartFromTheLowestRow) {
  FieldBytes fields{0, 0, 0, 0, 10, 20, 0, 0, 3, 1};
  fields.Bytes(DibPlace(SixColors(), 72).Fields().bytes).Longs({0, kSourceCopy, 30, 10});
  const PlayedMetafile played = Play(EmfType::stretchDibits, fields.Bytes(PackedDib(SixColors())));
  EXPECT_EQ(played.At(15, 25), clWhite);
  EXPECT_EQ(played.At(25, 25), clBlack);
  EXPECT_EQ(played.At(35, 25), 0x808080);
}

TEST(EmfBitmaps, SetDibits_Should_DrawTheRowsThatAreThere) {
  BmpFile upper = SixColors();  // only its second row from the bottom
  upper.pixels.erase(upper.pixels.begin(), upper.pixels.begin() + 12);
  FieldBytes fields{0, 0, 0, 0, 10, 20, 0, 0, 3, 2};
  fields.Bytes(DibPlace(upper, 68).Fields().bytes).Longs({0, 1, 1});
  const PlayedMetafile played = Play(EmfType::setDibitsToDevice, fields.Bytes(PackedDib(upper)));
  EXPECT_EQ(played.At(10, 20), kRed);
  EXPECT_EQ(played.At(12, 20), kBlue);
  EXPECT_EQ(played.At(11, 21), clWhite);
}

BmpFile LeftColumn() {
  BmpFile mask;
  mask.width = 3;
  mask.height = 2;
  mask.bits = 1;
  mask.palette = {0, 0xFFFFFF};
  mask.pixels = {0x80, 0, 0, 0, 0x80, 0, 0, 0};
  return mask;
}

TEST(EmfBitmaps, MaskBlt_Should_CopyWhereTheMaskIsSet) {
  const auto pixels = static_cast<int64_t>(PackedDib(SixColors()).size());
  // Where the mask is 0, the picture stays: operation 0xAA.
  FieldBytes fields = BlitFields({10, 20, 3, 2}, 0xAACC0000, {0, 0}, SixColors(), 28);
  fields.Longs({0, 0, 0}).Bytes(DibPlace(LeftColumn(), 120 + pixels).Fields().bytes);
  const PlayedMetafile played =
      Play(EmfType::maskBlt, fields.Bytes(PackedDib(SixColors())).Bytes(PackedDib(LeftColumn())));
  EXPECT_EQ(played.At(10, 20), kRed);
  EXPECT_EQ(played.At(12, 20), clWhite);
}

TEST(EmfBitmaps, PlgBlt_Should_FillTheParallelogram) {
  FieldBytes fields{0, 0, 0, 0, 10, 10, 70, 10, 10, 50, 0, 0, 3, 2};
  fields.Bytes(Identity().bytes).Longs({0, 0}).Bytes(DibPlace(SixColors(), 132).Fields().bytes);
  fields.Longs({0, 0, 0, 0, 0, 0, 0});
  const PlayedMetafile played = Play(EmfType::plgBlt, fields.Bytes(PackedDib(SixColors())));
  EXPECT_EQ(played.At(15, 15), kRed);
  EXPECT_EQ(played.At(65, 15), kBlue);
  EXPECT_EQ(played.At(40, 45), clBlack);
}

BmpFile HalfBlack() {
  BmpFile file;
  file.bits = 32;
  file.pixels = {0, 0, 0, 128};
  return file;
}

TEST(EmfBitmaps, AlphaBlend_Should_MixByTheSourcesAlpha) {
  FieldBytes fields = BlitFields({10, 20, 30, 20}, 0x01FF0000, {0, 0}, HalfBlack(), 8);
  fields.Longs({1, 1});
  const PlayedMetafile played = Play(EmfType::alphaBlend, fields.Bytes(PackedDib(HalfBlack())));
  EXPECT_NEAR(played.At(20, 30) & 0xFF, 127, 1);
  FieldBytes opaque = BlitFields({10, 20, 30, 20}, 0x00400000, {0, 0}, HalfBlack(), 8);
  opaque.Longs({1, 1});
  EXPECT_NEAR(Play(EmfType::alphaBlend, opaque.Bytes(PackedDib(HalfBlack()))).At(20, 30) & 0xFF,
              191, 1);
}

TEST(EmfBitmaps, AlphaBlend_Should_TakeTheSourceForOpaque_When_TheFormatIsNone) {
  BmpFile clear = HalfBlack();
  clear.pixels = {0, 0, 0, 0};
  for (const int64_t format : {0x00, 0x02, 0xFF}) {
    FieldBytes fields =
        BlitFields({10, 20, 30, 20}, format << 24 | 0xFF0000, {0, 0}, clear, 8).Longs({1, 1});
    EXPECT_EQ(Play(EmfType::alphaBlend, fields.Bytes(PackedDib(clear))).At(20, 30), clBlack)
        << format;
  }
}

TEST(EmfBitmaps, BlendsAndKeys_Should_DrawNothing_When_ThereIsNoBitmap) {
  for (const EmfType type : {EmfType::alphaBlend, EmfType::transparentBlt}) {
    // Values that would paint if they were operations: black, the brush.
    for (const int64_t operation : {int64_t{0}, kPatternCopy}) {
      EmfFile file;
      file.Add(EmfType::createBrush, {1, 0, kGreen, 0}).Add(EmfType::selectObject, {1});
      FieldBytes fields{0, 0, 0, 0, 10, 20, 30, 20, operation, 0, 0};
      fields.Bytes(Identity().bytes).Longs({0, 0, 0, 0, 0, 0, 1, 1});
      EXPECT_EQ(PlayedMetafile(file.Add(type, fields).Bytes()).Painted(), 0) << operation;
    }
  }
}

TEST(EmfBitmaps, BitBlt_Should_TakeTheWholeBitmap_When_TheSourcesMatrixIsEmpty) {
  FieldBytes fields = BlitFields({10, 20, 3, 2}, kSourceCopy, {0, 0}, SixColors(), 0);
  std::fill_n(fields.bytes.begin() + 44, 24, uint8_t{0});
  const PlayedMetafile played = Play(EmfType::bitBlt, fields.Bytes(PackedDib(SixColors())));
  EXPECT_EQ(played.At(10, 20), kRed);
  EXPECT_EQ(played.At(12, 20), kBlue);
}

TEST(EmfBitmaps, TransparentBlt_Should_LeaveTheKeyOut) {
  FieldBytes fields = BlitFields({10, 20, 30, 20}, kGreen, {0, 0}, SixColors(), 8);
  fields.Longs({3, 2});
  const PlayedMetafile played = Play(EmfType::transparentBlt, fields.Bytes(PackedDib(SixColors())));
  EXPECT_EQ(played.At(15, 25), kRed);
  EXPECT_EQ(played.At(25, 25), clWhite);
}

TEST(EmfBitmaps, BrokenBitmap_Should_CostTheRecordAlone) {
  FieldBytes fields = BlitFields({10, 20, 3, 2}, kSourceCopy, {0, 0}, SixColors(), 0);
  const PlayedMetafile played = Play(EmfType::bitBlt, fields);  // without a bitmap
  EXPECT_EQ(played.Painted(), 0);
  EXPECT_EQ(played.report.warnings.size(), 1u);
}

/// A font of 30 pixels (1) is selected. Also the fields of texts before their position.
EmfFile WithFont() {
  EmfFile file;
  FieldBytes font{1, -30, 0, 0, 0, 400, 0, 0};
  font.Text(std::u16string_view(u"DejaVu Sans")).FillTo(4 + 92);
  file.Add(EmfType::extCreateFont, font).Add(EmfType::selectObject, {1});
  return file;
}

FieldBytes TextFields(int64_t options, std::u16string_view text,
                      std::initializer_list<int64_t> steps) {
  FieldBytes fields{0, 0, 0, 0, 2};
  fields.Singles({1, 1}).Longs({10, 20, static_cast<int64_t>(text.size()), 76, options});
  const auto textBytes = static_cast<int64_t>((text.size() * 2 + 3) / 4 * 4);
  fields.Longs({5, 10, 95, 70, steps.size() == 0 ? 0 : 76 + textBytes});
  return fields.Text(text).PadTo(4).Longs(steps);
}

TEST(EmfTexts, Letters_Should_BePaintedAtTheirSteps) {
  EmfFile plain = WithFont(), spread = WithFont();
  plain.Add(EmfType::extTextOutW, TextFields(0, u"II", {}));
  spread.Add(EmfType::extTextOutW, TextFields(0, u"II", {60, 10}));
  const PlayedMetafile near(plain.Bytes()), far(spread.Bytes());
  EXPECT_GT(near.Painted(), 20);
  const auto painted = [](const PlayedMetafile& played, int left, int right) {
    int count = 0;
    for (int x = left; x < right; ++x) {
      for (int y = 20; y < 60; ++y) count += played.At(x, y) == clWhite ? 0 : 1;
    }
    return count;
  };
  EXPECT_EQ(painted(near, 65, 95), 0);
  EXPECT_GT(painted(far, 65, 95), 10);
}

TEST(EmfTexts, Options_Should_FillAndClip) {
  EmfFile opaque = WithFont();
  opaque.Add(EmfType::setBkColor, {kGreen});
  opaque.Add(EmfType::extTextOutW, TextFields(2, u"I", {}));
  EXPECT_EQ(PlayedMetafile(opaque.Bytes()).At(90, 65), kGreen);
  EXPECT_EQ(PlayedMetafile(opaque.Bytes()).At(97, 65), clWhite);
}

TEST(EmfTexts, BytesAndShortRecords_Should_ShowTheSameLetters) {
  EmfFile words = WithFont(), bytes = WithFont(), small = WithFont(), smallWords = WithFont();
  words.Add(EmfType::extTextOutW, TextFields(0, u"Ab", {}));
  FieldBytes ansi{0, 0, 0, 0, 2};
  ansi.Singles({1, 1}).Longs({10, 20, 2, 76, 0, 0, 0, 0, 0, 0});
  bytes.Add(EmfType::extTextOutA, ansi.Text(std::string_view("Ab")));
  FieldBytes brief{10, 20, 2, 0x300, 2};
  small.Add(EmfType::smallTextOut, brief.Singles({1, 1}).Text(std::string_view("Ab")));
  FieldBytes briefWords{10, 20, 2, 0x100, 2};
  smallWords.Add(EmfType::smallTextOut,
                 briefWords.Singles({1, 1}).Text(std::u16string_view(u"Ab")));
  const PlayedMetafile expected(words.Bytes());
  EXPECT_GT(expected.Painted(), 50);
  for (const EmfFile& file : {bytes, small, smallWords}) {
    const PlayedMetafile played(file.Bytes());
    EXPECT_EQ(played.Painted(), expected.Painted());
    EXPECT_EQ(played.At(20, 40), expected.At(20, 40));
  }
}

TEST(EmfTexts, Steps_Should_BeTheFontsOwn_When_TheRecordDoesNotHoldThem) {
  EmfFile plain = WithFont();
  plain.Add(EmfType::extTextOutW, TextFields(0, u"II", {}));
  const PlayedMetafile expected(plain.Bytes());
  for (const int64_t offset : {int64_t{77}, int64_t{1000}, int64_t{0x7FFFFFFF}, int64_t{-1}}) {
    EmfFile file = WithFont();
    FieldBytes fields = TextFields(0, u"II", {});
    for (size_t i = 0; i < 4; ++i) fields.bytes[64 + i] = static_cast<uint8_t>(offset >> (8 * i));
    const PlayedMetafile played(file.Add(EmfType::extTextOutW, fields).Bytes());
    EXPECT_EQ(played.Painted(), expected.Painted()) << offset;
    EXPECT_EQ(played.report.warnings, std::vector<std::string>()) << offset;
  }
}

TEST(EmfTexts, ShortRecords_Should_NeitherClipNorFill_When_TheyHaveNoBox) {
  const auto played = [](int64_t options) {
    EmfFile file = WithFont();
    FieldBytes fields{10, 20, 2, 0x300 | options, 2};
    file.Add(EmfType::smallTextOut, fields.Singles({1, 1}).Text(std::string_view("Ab")));
    return PlayedMetafile(file.Bytes());
  };
  EXPECT_GT(played(0).Painted(), 50);
  EXPECT_EQ(played(4).Painted(), played(0).Painted());
  EXPECT_EQ(played(6).Painted(), played(0).Painted());
}

TEST(EmfTexts, ManyTexts_Should_AllBeDrawn) {
  EmfFile one = WithFont(), two = WithFont();
  const auto place = [](int64_t y, int64_t offset) {
    return FieldBytes{10, y, 1, offset, 0, 0, 0, 0, 0, 0};
  };
  FieldBytes single{0, 0, 0, 0, 2}, both{0, 0, 0, 0, 2};
  single.Singles({1, 1}).Long(1).Bytes(place(5, 80).bytes).Text(std::u16string_view(u"I"));
  both.Singles({1, 1}).Long(2).Bytes(place(5, 120).bytes).Bytes(place(40, 120).bytes);
  both.Text(std::u16string_view(u"I"));
  one.Add(EmfType::polyTextOutW, single);
  two.Add(EmfType::polyTextOutW, both);
  const int painted = PlayedMetafile(one.Bytes()).Painted();
  EXPECT_GT(painted, 10);
  EXPECT_EQ(PlayedMetafile(two.Bytes()).Painted(), 2 * painted);
}

TEST(EmfTexts, ModeOfAText_Should_EndWithIt_When_TheTextFails) {
  EmfFile file = WithFont();
  file.Add(EmfType::beginPath).Add(EmfType::ellipse, {0, 0, 100, 80}).Add(EmfType::endPath);
  file.Add(EmfType::selectClipPath, {5});
  FieldBytes text = TextFields(0, u"Text", {});
  text.bytes[16] = 1;  // compatible graphics mode
  file.Add(EmfType::extTextOutW, text).Add(EmfType::rectangle, {20, 20, 60, 60});
  const std::vector<uint8_t> bytes = file.Bytes();

  Raster raster(pf32bit, 100, 80);
  FillRaster(raster, {0, 0, 100, 80}, clWhite);
  DeviceContext context(raster, {0, 0, 100, 80}, {1000, 800, 250, 200}, PlaneAffine());
  EmfPlayer player(context, bytes.size());
  EmfRecords records(bytes);
  int failures = 0;
  while (const auto record = records.Next()) {
    std::optional<PictureMemoryScope> small;
    if (record->type == EmfType::extTextOutW) small.emplace(100 * 80 + 8);
    try {
      player.Play(*record);
    } catch (const LimitError&) {
      ++failures;
    }
  }
  EXPECT_EQ(failures, 1);
  // The right and bottom edges are drawn where the record states, not one pixel before.
  EXPECT_EQ(raster.PixelColor(60, 40), clBlack);
  EXPECT_EQ(raster.PixelColor(59, 40), clWhite);
}

TEST(EmfTexts, TextBeyondTheRecord_Should_CostTheRecordAlone) {
  EmfFile file = WithFont();
  FieldBytes fields = TextFields(0, u"Ab", {});
  fields.bytes[37] = 0xFF;  // the number of letters
  file.Add(EmfType::extTextOutW, fields);
  const PlayedMetafile played(file.Bytes());
  EXPECT_EQ(played.Painted(), 0);
  EXPECT_EQ(played.report.warnings.size(), 1u);
}

}  // namespace
}  // namespace rasterkit::test
