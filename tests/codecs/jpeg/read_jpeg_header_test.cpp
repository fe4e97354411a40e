#include <random>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jpeg/jpeg_segments_of_tests.h"
#include "tests/support/profiles.h"

namespace rasterkit::test {
namespace {

using std::string_view_literals::operator""sv;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<uint8_t> WithSegments(std::initializer_list<std::vector<uint8_t>> segments,
                                  const JpegRecipe& recipe = {}) {
  std::vector<uint8_t> head;
  for (const auto& segment : segments) head = Joined(std::move(head), segment);
  return WithHead(MakeJpeg(recipe), head);
}

TEST(JpegHeader, Layout_Should_NameDepthAndModel) {
  const auto gray = ReadJpegHeader(MakeJpeg({.pixels = JCS_GRAYSCALE, .components = 1}));
  EXPECT_EQ(gray.layout.model, ColorModel::gray);
  EXPECT_EQ(gray.layout.bands, 1);
  const auto color = ReadJpegHeader(MakeJpeg({.width = 21, .height = 9}));
  EXPECT_EQ(color.width, 21);
  EXPECT_EQ(color.height, 9);
  EXPECT_EQ(color.layout.model, ColorModel::rgb);
  EXPECT_EQ(color.layout.bits, 8);
  EXPECT_TRUE(color.metadata.hasJfif);
  const auto inks = ReadJpegHeader(MakeJpeg({.pixels = JCS_CMYK, .components = 4}));
  EXPECT_EQ(inks.layout.model, ColorModel::cmyk);
  EXPECT_EQ(inks.layout.bands, 4);
  EXPECT_EQ(std::get<JpegForm>(inks.form).adobeTransform, 0);
}

TEST(JpegHeader, Exif_Should_GiveOrientation_When_StrayBytesStandBeforeIt) {
  const std::vector<uint8_t> stray = {1, 2, 3};
  const auto file = WithSegments({stray, ExifSegment(SmallExif())});
  const PictureHeader header = ReadJpegHeader(file);
  EXPECT_EQ(header.metadata.exif, SmallExif());
  EXPECT_EQ(header.orientation, 6);
}

TEST(JpegHeader, Resolution_Should_BeThatOfJfif_Then_OfExif) {
  const auto exif = ExifSegment(SmallExif());
  EXPECT_EQ(ReadJpegHeader(WithSegments({exif})).metadata.resolution, (Resolution{300, 300}));
  JpegRecipe recipe{.densityUnit = 1, .densityX = 72, .densityY = 96};
  EXPECT_EQ(ReadJpegHeader(WithSegments({exif}, recipe)).metadata.resolution, (Resolution{72, 96}));
  recipe = {.densityUnit = 2, .densityX = 118, .densityY = 118};
  EXPECT_EQ(ReadJpegHeader(WithSegments({exif}, recipe)).metadata.resolution,
            (Resolution{300, 300}));
  EXPECT_EQ(ReadJpegHeader(MakeJpeg(recipe)).metadata.resolution,
            (Resolution{118 * 2.54, 118 * 2.54}));
}

TEST(JpegHeader, ProfilePieces_Should_BeJoinedInTheirOrder) {
  const auto profile = RgbProfile();
  const size_t half = profile->size() / 2;
  const auto piece = [&](uint8_t number, size_t from, size_t to) {
    auto payload = Joined(BytesOfText("ICC_PROFILE\0"sv), std::vector<uint8_t>{number, 2});
    return Segment(0xE2, Joined(std::move(payload), std::span(*profile).subspan(from, to - from)));
  };
  const auto file = WithSegments({piece(2, half, profile->size()), piece(1, 0, half)});
  const PictureHeader header = ReadJpegHeader(file);
  ASSERT_TRUE(header.metadata.profile);
  EXPECT_EQ(*header.metadata.profile, *profile);
  EXPECT_TRUE(header.layout.profile);
  const PictureHeader lacking =
      ReadJpegHeader(WithSegments({piece(2, half, profile->size()), piece(3, 0, half)}));
  EXPECT_FALSE(lacking.metadata.profile);
  EXPECT_THAT(lacking.warnings, ElementsAre(HasSubstr("pieces of the color profile")));
}

/// One part of an extended packet.
std::vector<uint8_t> Extended(const std::string& digest, const std::string& whole, size_t from,
                              size_t to) {
  const auto number = [](size_t value) {
    return std::string{static_cast<char>(value >> 24), static_cast<char>(value >> 16),
                       static_cast<char>(value >> 8), static_cast<char>(value)};
  };
  return Segment(0xE1, std::string("http://ns.adobe.com/xmp/extension/\0"sv) + digest +
                           number(whole.size()) + number(from) + whole.substr(from, to - from));
}

TEST(JpegHeader, ExtendedXmp_Should_BeJoined_When_ThePacketNamesIt) {
  const std::string digest(32, 'A'), other(32, 'B'), whole = "<x:xmpmeta>rest</x:xmpmeta>";
  const std::string packet = "<x xmpNote:HasExtendedXMP='" + digest + "'/>";
  const auto xmp = Segment(0xE1, std::string("http://ns.adobe.com/xap/1.0/\0"sv) + packet);
  const PictureHeader header = ReadJpegHeader(
      WithSegments({xmp, Extended(digest, whole, 10, whole.size()), Extended(digest, whole, 0, 10),
                    Extended(other, "stale", 0, 5)}));
  EXPECT_EQ(header.metadata.xmp, packet);
  EXPECT_EQ(header.metadata.extendedXmp, whole);
  const PictureHeader lacking =
      ReadJpegHeader(WithSegments({xmp, Extended(digest, whole, 10, whole.size())}));
  EXPECT_EQ(lacking.metadata.extendedXmp, "");
  EXPECT_THAT(lacking.warnings, ElementsAre(HasSubstr("extended XMP")));
}

TEST(JpegHeader, OtherSegments_Should_BeKeptWithoutThoseOfTheStructure) {
  const PictureHeader header = ReadJpegHeader(
      WithSegments({Segment(0xE5, "mine"), Segment(0xFE, "a comment"), Segment(0xFE, "another"),
                    Segment(0xE0, "JFXX\0\x10thumb"sv), Segment(0xE2, "FPXR\0x"sv)}));
  ASSERT_EQ(header.metadata.jpegSegments.size(), 2u);
  EXPECT_EQ(header.metadata.jpegSegments[0].kind, 0xE5u);
  EXPECT_EQ(header.metadata.jpegSegments[0].bytes, BytesOfText("mine"));
  EXPECT_EQ(header.metadata.jpegSegments[1].bytes, BytesOfText("FPXR\0x"sv));
  EXPECT_THAT(header.metadata.comments, ElementsAre("a comment", "another"));
  EXPECT_THAT(header.hiddenCopies, ElementsAre(HasSubstr("JFXX")));
}

TEST(JpegHeader, Trailer_Should_BeNamed) {
  const auto plain = MakeJpeg({});
  EXPECT_EQ(ReadJpegHeader(plain).trailerAt, 0u);
  const auto filled = Joined(plain, std::vector<uint8_t>(100));
  EXPECT_EQ(ReadJpegHeader(filled).trailerAt, plain.size());
  EXPECT_THAT(ReadJpegHeader(filled).hiddenOthers, IsEmpty());

  auto video = BytesOfText(
      "\0\0\0\x18"
      "ftypmp42"sv);
  video.resize(2'100'000, 7);
  EXPECT_THAT(ReadJpegHeader(Joined(plain, video)).hiddenOthers, ElementsAre("video of 2.1 MB"));

  const auto two = Joined(plain, MakeJpeg({.width = 5, .height = 7}));
  EXPECT_THAT(ReadJpegHeader(two).hiddenOthers, ElementsAre("further picture of 5 x 7 pixels"));
  const auto map = WithHead(MakeJpeg({.width = 5, .height = 7}),
                            Segment(0xE1, "http://ns.adobe.com/xap/1.0/\0 hdrgm:Version"sv));
  EXPECT_THAT(ReadJpegHeader(Joined(plain, map)).hiddenOthers,
              ElementsAre("gain map of 5 x 7 pixels"));
}

TEST(JpegHeader, Front_Should_StateTheSame_When_OnlyItIsRead) {
  const std::string large(60000, 'x');
  for (const int segments : {0, 1, 5}) {
    std::vector<uint8_t> head = ExifSegment(SmallExif());
    for (int i = 0; i < segments; i++) head = Joined(std::move(head), Segment(0xE5, large));
    auto file = WithHead(MakeJpeg({}), head);
    const PictureHeader whole = ReadJpegHeader(file);
    file.resize(file.size() + 1'000'000, 9);
    TSpanStream stream(file);
    const PictureHeader front = ReadJpegFront(stream);
    EXPECT_LE(stream.Position(), 2 * head.size() + (64 << 10));
    EXPECT_EQ(front.metadata, whole.metadata);
    EXPECT_EQ(front.form, whole.form);
    EXPECT_EQ(front.orientation, whole.orientation);
    EXPECT_EQ(front.trailerAt, 0u);
  }
  TSpanStream empty({});
  EXPECT_THROW(ReadJpegFront(empty), FormatError);
}

TEST(JpegHeader, Should_Throw_When_HeadersAreDamaged) {
  const auto file = MakeJpeg({});
  EXPECT_THROW(ReadJpegHeader({}), FormatError);
  EXPECT_THROW(ReadJpegHeader(std::span(file).first(30)), FormatError);
  const std::vector<uint8_t> empty = {0xFF, 0xD8, 0xFF, 0xD9};
  EXPECT_THROW(ReadJpegHeader(empty), FormatError);
}

TEST(JpegHeader, Should_ThrowFormatErrorOnly_When_BytesAreChanged) {
  std::random_device source;
  const auto seed = source();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const auto file = Joined(
      WithSegments({ExifSegment(SmallExif()), Segment(0xE2, "MPF\0II*\0\x08\0\0\0\1\0\2\xB0"sv)}),
      MakeJpeg({}));
  int read = 0;
  for (int i = 0; i < 3000; i++) {
    auto changed = file;
    for (int k = 0; k < 3; k++)
      changed[random() % 700 % changed.size()] = static_cast<uint8_t>(random());
    changed.resize(2 + random() % (changed.size() - 1));
    try {
      ReadJpegHeader(changed);
      read++;
    } catch (const FormatError&) {
    }
  }
  EXPECT_GT(read, 100);
}

/// The form as the bare library reads it.
JpegForm FormOfLibrary(std::span<const uint8_t> bytes) {
  jpeg_decompress_struct codec{};
  jpeg_error_mgr errors{};
  codec.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&codec);
  jpeg_mem_src(&codec, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&codec, TRUE);
  JpegForm form;
  for (int i = 0; i < codec.num_components; i++) {
    const jpeg_component_info& component = codec.comp_info[i];
    form.components.push_back({component.component_id, component.h_samp_factor,
                               component.v_samp_factor, component.quant_tbl_no});
  }
  for (size_t i = 0; i < form.tables.size(); i++) {
    if (codec.quant_tbl_ptrs[i] == nullptr) continue;
    form.tables[i].emplace();
    std::copy_n(codec.quant_tbl_ptrs[i]->quantval, 64, form.tables[i]->begin());
  }
  form.progressive = codec.progressive_mode != 0;
  form.arithmetic = codec.arith_code != 0;
  form.restartInterval = static_cast<int>(codec.restart_interval);
  if (codec.saw_Adobe_marker) form.adobeTransform = codec.Adobe_transform;
  jpeg_destroy_decompress(&codec);
  return form;
}

TEST(JpegHeader, Form_Should_EqualThatOfTheBareLibrary) {
  for (const bool progressive : {false, true}) {
    for (const int quality : {1, 30, 75, 100}) {
      JpegRecipe recipe{.width = 40, .height = 30};
      recipe.progressive = progressive;
      recipe.quality = quality;
      recipe.restartRows = progressive ? 0 : 1;
      const auto file = MakeJpeg(recipe);
      EXPECT_EQ(std::get<JpegForm>(ReadJpegHeader(file).form), FormOfLibrary(file));
    }
  }
}

TEST(JpegHeaderCorpus, Should_EqualTheDecodersFacts) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  int same = 0;
  for (const auto& path : CorpusJpegs()) {
    SCOPED_TRACE(path);
    const auto bytes = BytesOfFile(path);
    Raster raster;
    try {
      raster = DecodeJpeg(bytes);
    } catch (const Error&) {
      continue;
    }
    const PictureHeader header = ReadJpegHeader(bytes);
    EXPECT_EQ(header.width, raster.Width());
    EXPECT_EQ(header.height, raster.Height());
    EXPECT_EQ(header.layout.bands == 1, raster.Format() == pf8bit);
    if (header.layout.bands < 4) {
      EXPECT_EQ(header.layout.profile != nullptr, raster.profile != nullptr);
      if (raster.profile && header.layout.profile) {
        EXPECT_EQ(*header.layout.profile, *raster.profile);
      }
    }
    // Where the file has both, EXIF may only be the more exact one.
    if (raster.resolution.IsKnown()) {
      EXPECT_NEAR(header.metadata.resolution.x, raster.resolution.x, 1.3);
    }
    same++;
  }
  EXPECT_GT(same, 100);
}

TEST(JpegHeaderCorpus, Form_Should_EqualThatOfTheBareLibrary) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  int same = 0;
  for (const auto& path : CorpusJpegs()) {
    SCOPED_TRACE(path);
    const auto bytes = BytesOfFile(path);
    try {
      DecodeJpeg(bytes);
    } catch (const Error&) {
      continue;
    }
    EXPECT_EQ(std::get<JpegForm>(ReadJpegHeader(bytes).form), FormOfLibrary(bytes));
    same++;
  }
  EXPECT_GT(same, 100);
}

/// Lines of "exiftool -n -T" for the files: tab-separated values, "-" if absent.
std::vector<std::vector<std::string>> ExiftoolTable(const std::string& tags) {
  const std::string command = "cd '" + CorpusFolder().string() + "' && exiftool -q -r -n -T " +
                              tags + " -if '$FileType eq \"JPEG\"' exif jpeg 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  std::string text;
  char buffer[4096];
  for (size_t count; (count = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
    text.append(buffer, count);
  pclose(pipe);
  std::vector<std::vector<std::string>> lines;
  std::istringstream input(text);
  for (std::string line; std::getline(input, line);) {
    std::vector<std::string> cells;
    std::istringstream row(line);
    for (std::string cell; std::getline(row, cell, '\t');) cells.push_back(cell);
    lines.push_back(cells);
  }
  return lines;
}

TEST(JpegHeaderCorpus, Facts_Should_EqualThoseOfExiftool) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  if (std::system("exiftool -ver >/dev/null 2>&1") != 0) GTEST_SKIP() << "no exiftool";
  int compared = 0, oriented = 0;
  for (const auto& cells : ExiftoolTable("-Directory -FileName -File:ImageWidth -File:ImageHeight "
                                         "-File:BitsPerSample -File:ColorComponents "
                                         "-IFD0:Orientation")) {
    if (cells.size() < 7 || cells[2] == "-" || cells[4] == "-") continue;
    const auto path = CorpusFolder() / cells[0] / cells[1];
    SCOPED_TRACE(path);
    PictureHeader header;
    try {
      header = ReadJpegHeader(BytesOfFile(path));
    } catch (const FormatError&) {
      continue;
    }
    EXPECT_EQ(std::to_string(header.width), cells[2]);
    EXPECT_EQ(std::to_string(header.height), cells[3]);
    EXPECT_EQ(std::to_string(header.layout.bits), cells[4]);
    EXPECT_EQ(std::to_string(header.layout.bands), cells[5]);
    compared++;
    if (cells[6] < "1" || cells[6] > "8" || cells[6].size() != 1) continue;
    EXPECT_EQ(header.orientation ? std::to_string(*header.orientation) : "-", cells[6]);
    oriented++;
  }
  EXPECT_GT(compared, 100);
  EXPECT_GT(oriented, 50);
}

}  // namespace
}  // namespace rasterkit::test
