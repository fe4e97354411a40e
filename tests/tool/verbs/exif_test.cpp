#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/exif_block.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/support/thumbnail_exif.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// The first 20 bytes: start marker, and APP0 written by the encoder.
constexpr size_t kEncoderHeader = 20;

const std::string kXmp = XmpSection();
const std::string kIptc = JpegSection(0xED, std::string("Photoshop 3.0\0"
                                                        "8BIM\4\4\0\0\0\0\0\xB\x1C\2\5\0\6autumn\0",
                                                        38));
const std::string kComment = JpegSection(0xFE, "north wall");
const std::string kThumbnail =
    "\xFF\xD8\xFF\xE0" + std::string(300, 't') + "\xFF\xD9" + std::string("x\xFF\xD9");

/// An APP14 section that states a color model.
std::string AdobeSection(char transform) {
  return JpegSection(0xEE, std::string("Adobe\0\x64\0\0\0\0", 11) + transform);
}

std::string ProfileSection(const std::string& profile, char number = 1, char count = 1) {
  return JpegSection(0xE2, std::string("ICC_PROFILE\0", 12) + number + count + profile);
}

class CliExif : public testing::Test {
 protected:
  CliExif() {
    SaveJpegFile(encoded_, GradientRaster(pf24bit, 41, 27));
    picture_ = Text(encoded_);
  }

  static std::string Text(const std::string& file) {
    const std::vector<uint8_t> bytes = ReadBytes(file);
    return {bytes.begin(), bytes.end()};
  }
  /// The picture with other sections in front of it.
  std::string FileWith(const std::string& name, const std::vector<std::string>& sections) const {
    std::string file = "\xFF\xD8";
    for (const std::string& section : sections) file += section;
    WriteText(folder_ / name, file + picture_.substr(kEncoderHeader));
    return folder_ / name;
  }
  std::string Photo(const std::vector<std::string>& sections) const {
    return FileWith("photo.jpg", sections);
  }
  ToolResult Copy(const std::string& photo, const std::string& picture,
                  std::vector<std::string> options = {}) const {
    options.insert(options.begin(), {"exif", "--copy-from", photo, "--overwrite"});
    options.insert(options.end(), {picture, output_});
    return RunTool(options);
  }
  std::string Output() const { return Text(output_); }
  std::string CodedData() const { return picture_.substr(kEncoderHeader); }
  /// Start marker and JFIF header, which stay with the pixels.
  std::string Start() const { return picture_.substr(0, kEncoderHeader); }

  static std::string Exif(int orientation = 1) {
    return ExifSection(Writer().Tiff({Writer().Short(274, static_cast<uint16_t>(orientation)),
                                      Writer().Ascii(271, "Some \"Camera\"\x1B[2J")}));
  }
  static TiffWriter Writer() { return TiffWriter(ByteOrder::motorola); }
  static std::string ThumbnailPhoto(const std::string& behind = "") {
    return JpegSection(0xE1, ExifWithThumbnail(kThumbnail, ByteOrder::intel, behind).content);
  }

  TempFolder folder_;
  std::string encoded_ = folder_ / "encoded.jpg", output_ = folder_ / "out.jpg";
  std::string picture_;
};

// ---- shown
// ---------------------------------------------------------------------------------------

TEST_F(CliExif, Show_Should_ListSectionsAndFields) {
  const std::string photo = Photo({ThumbnailPhoto(), kXmp, kComment});
  const ToolResult result = RunTool({"exif", "--json", photo});
  ASSERT_EQ(result.code, 0) << result.err;
  const nlohmann::json line = JsonLines(result.out).at(0);
  EXPECT_EQ(line["file"], photo);
  EXPECT_EQ(line["width"], 41);
  EXPECT_EQ(line["height"], 27);
  EXPECT_EQ(line["byte_order"], "II");
  EXPECT_EQ(line["orientation"], 6);
  EXPECT_EQ(line["rotation"], 270);
  EXPECT_EQ(line["comments"], nlohmann::json({"north wall"}));
  EXPECT_EQ(line["thumbnail"]["bytes"], kThumbnail.size());
  EXPECT_EQ(line["sections"][0]["marker"], "APP1");
  EXPECT_EQ(line["sections"][0]["kind"], "exif");
  EXPECT_EQ(line["sections"][0]["place"], 2);
  EXPECT_EQ(line["sections"][0]["bytes"], ThumbnailPhoto().size());
  EXPECT_EQ(line["sections"][1]["kind"], "xmp");
  const nlohmann::json make = {
      {"directory", "main"}, {"tag", 271}, {"name", "Make"}, {"value", "Some Camera"}};
  EXPECT_THAT(line["fields"], Contains(make));
  EXPECT_THAT(line["warnings"], IsEmpty());
}

TEST_F(CliExif, Show_Should_GiveTheMomentOfTheShot) {
  const TiffWriter writer = Writer();
  const uint32_t exifAt = 8 + 2 + 2 * 12 + 4 + 20;
  const std::string tiff = writer.Header() +
                           writer.Directory(8, {writer.Ascii(306, "2020:01:02 03:04:05"),
                                                writer.LongEntry(34665, exifAt)}) +
                           writer.Directory(exifAt, {writer.Ascii(36867, "2019:07:04 13:05:09")});
  const ToolResult result = RunTool({"exif", "--json", Photo({ExifSection(tiff)})});
  EXPECT_EQ(JsonLines(result.out).at(0)["date"], "2019-07-04T13:05:09");
  const std::string changed = writer.Tiff({writer.Ascii(306, "2020:01:02 03:04:05")});
  EXPECT_THAT(RunTool({"exif", Photo({ExifSection(changed)})}).out,
              HasSubstr("date 2020-01-02T03:04:05\n"));
  for (const char* text : {"    :  :     :  :  ", "2020:1:2 3:4:5", "2020:13:02 03:04:05"}) {
    const std::string none = writer.Tiff({writer.Ascii(306, text)});
    EXPECT_TRUE(JsonLines(RunTool({"exif", "--json", Photo({ExifSection(none)})}).out)
                    .at(0)["date"]
                    .is_null());
  }
}

TEST_F(CliExif, Show_Should_NotLetAFileSteerTheTerminal) {
  const ToolResult result = RunTool({"exif", Photo({Exif(), JpegSection(0xFE, "a\x1B]0;b\xFF")})});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.out, Not(HasSubstr("\x1B")));
  EXPECT_THAT(result.out, HasSubstr("Make"));
}

TEST_F(CliExif, Show_Should_GoOnBehindAFileWithoutMetadata) {
  const std::string bmp = folder_ / "plan.bmp";
  SaveBmpFile(bmp, GrayRaster(3, 3));
  const ToolResult result =
      RunTool({"exif", "--json", bmp, folder_ / "none.jpg", Photo({Exif(3)})});
  EXPECT_EQ(result.code, 3);
  const auto lines = JsonLines(result.out);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0]["ok"], false);
  const std::string reason = ": this is a bmp file, which holds no metadata of a photograph";
  EXPECT_EQ(lines[0]["error"], bmp + reason);
  EXPECT_EQ(lines[1]["ok"], false);
  EXPECT_EQ(lines[2]["orientation"], 3);
  EXPECT_THAT(result.err, HasSubstr(bmp + reason));
}

TEST_F(CliExif, Show_Should_WarnOfDamage) {
  WriteText(folder_ / "cut.jpg", Text(Photo({Exif()})).substr(0, 150));
  const ToolResult result = RunTool({"exif", folder_ / "cut.jpg"});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("does not lead to picture data"));
  EXPECT_THAT(RunTool({"exif", Photo({ExifSection("II*")})}).err, HasSubstr("damaged"));
}

// ---- copied
// --------------------------------------------------------------------------------------

TEST_F(CliExif, Copy_Should_PutThePhotosSectionsBehindTheHeader) {
  const std::string photo = Photo({kComment, kXmp, Exif(), kIptc});
  const ToolResult result = Copy(photo, encoded_);
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(Output(), Start() + Exif() + kXmp + kIptc + kComment + CodedData());
  EXPECT_THAT(result.err, IsEmpty());
  EXPECT_TRUE(SamePixels(LoadFile(encoded_), LoadFile(output_)));
}

TEST_F(CliExif, Copy_Should_DropThePicturesMetadata_WhereverItStands) {
  const std::string unknown = JpegSection(0xE5, "kept");
  const std::string picture =
      FileWith("edited.jpg", {JpegSection(0xFE, "by the encoder"), unknown, Exif(3), kXmp, kIptc});
  ASSERT_EQ(Copy(Photo({Exif()}), picture).code, 0);
  EXPECT_EQ(Output(), "\xFF\xD8" + unknown + Exif() + CodedData());
}

TEST_F(CliExif, Copy_Should_KeepColorsThatTheHeaderDecides) {
  // With a JFIF header the pixels are YCbCr in any case; without one the Adobe marker decides.
  const std::string jfif = picture_.substr(2, kEncoderHeader - 2);
  const std::string both = FileWith("both.jpg", {jfif, AdobeSection(0)});
  ASSERT_EQ(Copy(Photo({Exif()}), both).code, 0);
  EXPECT_TRUE(SamePixels(LoadFile(both), LoadFile(output_)));
  const std::string marked = FileWith("marked.jpg", {AdobeSection(0)});
  ASSERT_FALSE(SamePixels(LoadFile(both), LoadFile(marked)));
  for (const std::string& section : {Exif(), kComment}) {
    ASSERT_EQ(Copy(Photo({jfif, section}), marked).code, 0);
    EXPECT_TRUE(SamePixels(LoadFile(marked), LoadFile(output_)));
    EXPECT_THAT(Output(), HasSubstr(section));
  }
}

TEST_F(CliExif, Copy_Should_LeaveTheColorModelsMarkOfThePhoto) {
  ASSERT_EQ(Copy(Photo({Exif(), AdobeSection(0)}), encoded_).code, 0);
  EXPECT_EQ(Output(), Start() + Exif() + CodedData());
}

TEST_F(CliExif, Copy_Should_KeepThePicturesHeader_When_ThePhotoHasNeitherHeaderNorExif) {
  const std::string jfif = JpegSection(0xE0, std::string("JFIF\0\1\1\1\0\x60\0\x60\0\0", 14));
  ASSERT_EQ(Copy(Photo({kComment}), FileWith("edited.jpg", {jfif})).code, 0);
  EXPECT_EQ(Output(), "\xFF\xD8" + jfif + kComment + CodedData());
}

TEST_F(CliExif, Copy_Should_TakeThePhotosProfile_OnlyWhenThePictureHasNone) {
  const std::string photo = Photo({Exif(), ProfileSection("of the photo")});
  ASSERT_EQ(Copy(photo, encoded_).code, 0);
  EXPECT_EQ(Output(), Start() + Exif() + ProfileSection("of the photo") + CodedData());
  ASSERT_EQ(Copy(photo, FileWith("own.jpg", {ProfileSection("its own")})).code, 0);
  EXPECT_EQ(Output(), "\xFF\xD8" + Exif() + ProfileSection("its own") + CodedData());
}

TEST_F(CliExif, Copy_Should_CarryEveryPartOfAProfile) {
  const std::string half(65519, 'p');
  const std::vector<std::string> sections = {Exif(), kXmp, ProfileSection(half, 1, 2),
                                             ProfileSection("the rest", 2, 2)};
  std::string all = Start();
  for (const std::string& section : sections) all += section;
  ASSERT_EQ(Copy(Photo(sections), encoded_).code, 0);
  EXPECT_EQ(Output(), all + CodedData());
}

TEST_F(CliExif, Copy_Should_WarnOfAnotherOrientation_And_KeepItWhenAsked) {
  const std::string photo = Photo({Exif(6)});
  ToolResult result = Copy(photo, encoded_);
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("orientation is now 6 and was 1"));
  EXPECT_EQ(Output(), Start() + Exif(6) + CodedData());
  result = Copy(photo, encoded_, {"--keep-orientation"});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, IsEmpty());
  EXPECT_EQ(Output(), Start() + Exif(1) + CodedData());
  result = Copy(photo, FileWith("turned.jpg", {Exif(8)}), {"--keep-orientation"});
  EXPECT_EQ(Output(), "\xFF\xD8" + Exif(8) + CodedData());
}

TEST_F(CliExif, Copy_Should_LeaveAnOrientationOfAnotherTypeAsItIs) {
  const std::string odd = ExifSection(Writer().Tiff({Writer().LongEntry(274, 6)}));
  ASSERT_EQ(Copy(Photo({odd}), FileWith("turned.jpg", {Exif(8)}), {"--keep-orientation"}).code, 0);
  EXPECT_EQ(Output(), "\xFF\xD8" + odd + CodedData());
}

TEST_F(CliExif, Copy_Should_NameWhatIsNotCarriedOver) {
  const std::string mpf = JpegSection(0xE2, std::string("MPF\0II", 6));
  const std::string photo = Photo({Exif(), mpf, JpegSection(0xE6, "GoPro")});
  const ToolResult result = Copy(photo, FileWith("edited.jpg", {kComment}), {"--strict", "--json"});
  EXPECT_EQ(result.code, 5);
  EXPECT_THAT(JsonLines(result.out).at(0)["not_carried_over"],
              ElementsAre("mpf", "app6", "comment"));
  EXPECT_EQ(Output(), "\xFF\xD8" + Exif() + CodedData());
}

TEST_F(CliExif, Copy_Should_KeepTheResolutionOfThePicture) {
  const std::string jfif = JpegSection(0xE0, std::string("JFIF\0\1\2\1\x01\x2C\x01\x2C\0\0", 14));
  const std::string picture = FileWith("edited.jpg", {jfif});
  const auto exif = [](uint32_t dpi) {
    return ExifSection(
        Writer().Tiff({Writer().Rationals(282, {{dpi, 1}}), Writer().Rationals(283, {{dpi, 1}}),
                       Writer().Short(296, 2)}));
  };
  for (const std::string& section : {Exif(), exif(300), exif(72)}) {
    EXPECT_THAT(Copy(Photo({section}), picture).err, IsEmpty());
    EXPECT_EQ(Output(), "\xFF\xD8" + jfif + (section == Exif() ? Exif() : exif(300)) + CodedData());
  }
}

TEST_F(CliExif, Copy_Should_WriteNothing_When_AnInputIsBad) {
  const std::string photo = Photo({Exif()});
  WriteText(folder_ / "text.jpg", "no picture");
  WriteText(folder_ / "cut.jpg", picture_.substr(0, 60));
  EXPECT_EQ(Copy(folder_ / "none.jpg", encoded_).code, 3);
  EXPECT_EQ(Copy(folder_ / "text.jpg", encoded_).code, 3);
  EXPECT_EQ(Copy(photo, folder_ / "text.jpg").code, 3);
  const ToolResult cut = Copy(photo, folder_ / "cut.jpg");
  EXPECT_EQ(cut.code, 3);
  EXPECT_THAT(cut.err, HasSubstr(folder_ / "cut.jpg: JPEG: the file ends within its headers"));
  EXPECT_THAT(folder_.Names(), Not(Contains("out.jpg")));
}

TEST_F(CliExif, Copy_Should_LeaveTheOldFileWhole_When_TheDiskIsFull) {
  WriteText(output_, "old");
  ToolSetup setup;
  setup.fileSizeLimit = 100;
  const ToolResult result =
      RunTool({"exif", "--copy-from", Photo({Exif()}), "--overwrite", encoded_, output_}, setup);
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(Output(), "old");
}

// ---- thumbnails
// ----------------------------------------------------------------------------------

TEST_F(CliExif, Thumbnail_Should_BeExactlyItsBytes) {
  const std::string photo = Photo({kXmp, ThumbnailPhoto("behind")});
  ASSERT_EQ(RunTool({"exif", "--thumbnail", photo, output_}).code, 0);
  EXPECT_EQ(Output(), kThumbnail);
}

TEST_F(CliExif, Thumbnail_Should_BeFoundByItsTables_When_ItsEntryIsWrong) {
  const std::string thumbnail = "\xFF\xD8\xFF\xDB" + std::string(300, 't') + "\xFF\xD9";
  std::string content = ExifWithThumbnail("??" + thumbnail, ByteOrder::intel, "xyz").content;
  ASSERT_EQ(RunTool({"exif", "--thumbnail", Photo({JpegSection(0xE1, content)}), output_}).code, 0);
  EXPECT_EQ(Output(), thumbnail);
}

TEST_F(CliExif, Thumbnail_Should_Exit4_When_ThereIsNone) {
  for (const std::string& photo : {Photo({Exif()}), encoded_}) {
    const ToolResult result = RunTool({"exif", "--thumbnail", photo, output_});
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.err, HasSubstr(photo + ": the photo has no JPEG thumbnail"));
  }
  EXPECT_THAT(folder_.Names(), Not(Contains("out.jpg")));
}

TEST_F(CliExif, Strip_Should_ChangeNothingElse) {
  const std::string photo = Photo({kComment, ThumbnailPhoto(), kXmp, JpegSection(0xE6, "GoPro")});
  ASSERT_EQ(RunTool({"exif", "--strip-thumbnail", photo, output_}).code, 0);
  const ThumbnailExif exif = ExifWithThumbnail(kThumbnail);
  // The link is the four bytes after the two entries of the main directory.
  std::string content = exif.content.substr(0, 6 + exif.directory);
  content.replace(6 + 8 + 2 + 2 * 12, 4, 4, '\0');
  EXPECT_EQ(Output(), "\xFF\xD8" + kComment + JpegSection(0xE1, content) + kXmp +
                          JpegSection(0xE6, "GoPro") + CodedData());
}

TEST_F(CliExif, Strip_Should_LeaveZeros_When_SomethingLiesBehindTheThumbnail) {
  const std::string photo = Photo({ThumbnailPhoto("notes of a maker")});
  ASSERT_EQ(RunTool({"exif", "--strip-thumbnail", photo, output_}).code, 0);
  const std::string before = Text(photo), after = Output();
  ASSERT_EQ(after.size(), before.size());
  EXPECT_EQ(after.find("notes of a maker"), before.find("notes of a maker"));
  EXPECT_THAT(after, Not(HasSubstr("ttt")));
  EXPECT_EQ(RunTool({"exif", "--thumbnail", output_, folder_ / "none.jpg"}).code, 4);
}

TEST_F(CliExif, Strip_Should_TakePaddingAlong) {
  ASSERT_EQ(RunTool({"exif", "--strip-thumbnail", Photo({ThumbnailPhoto()}), output_}).code, 0);
  const std::string plain = Output(), photo = Photo({ThumbnailPhoto(std::string(2, '\0'))});
  ASSERT_EQ(RunTool({"exif", "--strip-thumbnail", "--overwrite", photo, output_}).code, 0);
  EXPECT_EQ(Output(), plain);
}

TEST_F(CliExif, Strip_Should_TakeAThumbnailWithoutCompressionToo) {
  constexpr uint32_t kDirectoryAt = 8 + 2 + 12 + 4, kPixelsAt = kDirectoryAt + 2 + 2 * 12 + 4;
  const TiffWriter writer = Writer();
  const std::string tiff =
      writer.Header() + writer.Directory(8, {writer.Short(274, 6)}, kDirectoryAt) +
      writer.Directory(kDirectoryAt,
                       {writer.LongEntry(273, kPixelsAt), writer.LongEntry(279, 300)}) +
      std::string(300, 't');
  const std::string photo = Photo({ExifSection(tiff)});
  ASSERT_EQ(RunTool({"exif", "--strip-thumbnail", photo, output_}).code, 0);
  EXPECT_EQ(Output(), "\xFF\xD8" + ExifSection(writer.Tiff({writer.Short(274, 6)})) + CodedData());
}

TEST_F(CliExif, Strip_Should_KeepWhatOtherDirectoriesShareWithTheThumbnail) {
  // The text of the make overlaps the bytes that the thumbnail's entries claim.
  const TiffWriter writer = Writer();
  const uint32_t thumbnailAt = 8 + 2 + 12 + 4 + 12;
  const std::string tiff =
      writer.Header() + writer.Directory(8, {writer.Ascii(271, "Some Camera")}, thumbnailAt) +
      writer.Directory(thumbnailAt,
                       {writer.LongEntry(513, 8 + 2 + 12 + 4), writer.LongEntry(514, 300)}) +
      std::string(300, 't');
  const std::string photo = Photo({ExifSection(tiff)});
  ASSERT_EQ(RunTool({"exif", "--strip-thumbnail", photo, output_}).code, 0);
  EXPECT_THAT(Output(), HasSubstr("Some Camera"));
}

TEST_F(CliExif, Strip_Should_CopyTheFile_When_ThereIsNoThumbnail) {
  for (const std::string& photo : {Photo({kComment, Exif()}), encoded_}) {
    ASSERT_EQ(RunTool({"exif", "--strip-thumbnail", "--overwrite", photo, output_}).code, 0);
    EXPECT_EQ(Output(), Text(photo));
  }
}

TEST_F(CliExif, Strip_Should_Refuse_When_TheDirectoryIsDamaged) {
  const TiffWriter writer = Writer();
  const std::string tiff = writer.Header() + writer.Directory(8, {writer.Short(274, 1)}, 26) +
                           writer.Word(60000) + std::string(300, 't');
  const ToolResult result =
      RunTool({"exif", "--strip-thumbnail", Photo({ExifSection(tiff)}), output_});
  EXPECT_EQ(result.code, 3);
  EXPECT_THAT(result.err, HasSubstr("the thumbnail's directory reaches beyond the section"));
}

TEST_F(CliExif, Strip_Should_GoWithCopying) {
  ASSERT_EQ(Copy(Photo({ThumbnailPhoto()}), encoded_, {"--strip-thumbnail"}).code, 0);
  EXPECT_THAT(Output(), Not(HasSubstr("ttt")));
  EXPECT_THAT(Output(), HasSubstr("Some Camera"));
}

TEST_F(CliExif, Strip_Should_TakeManyFiles) {
  const std::string first = FileWith("a.jpg", {ThumbnailPhoto()});
  const std::string second = FileWith("b.jpg", {Exif()});
  const ToolResult result = RunTool(
      {"exif", "--strip-thumbnail", "--out-dir", folder_ / "clean", "--json", first, second});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(JsonLines(result.out).size(), 2u);
  EXPECT_EQ(Text(folder_ / "clean/b.jpg"), Text(second));
  EXPECT_LT(Text(folder_ / "clean/a.jpg").size(), Text(first).size());
}

// ---- edits

TEST_F(CliExif, Edit_Should_WriteNothing_When_TheBlockExceedsASegment) {
  const std::string photo =
      Photo({ExifSection(Writer().Tiff({Writer().Ascii(271, std::string(30000, 'c'))}))});
  const ToolResult result =
      RunTool({"exif", "--set", "ImageDescription=" + std::string(62000, 'd'), photo, output_});
  EXPECT_EQ(result.code, 4) << result.err;
  EXPECT_THAT(result.err, HasSubstr("65527"));
  EXPECT_FALSE(std::filesystem::exists(output_));
}

TEST_F(CliExif, StripGps_Should_WarnOfWhatStillStatesThePosition) {
  const std::string comment = std::string("ASCII\0\0\0", 8) + "{\"lat\":48.1}";
  ExifBlock block;
  constexpr uint16_t kUndefined = 7;
  for (const auto& [tag, text] :
       {std::pair<uint16_t, std::string>{37500, "a camera's note"}, {37510, comment}}) {
    block.Set(ExifDirectoryId::exif, {tag, kUndefined, text.size(), {text.begin(), text.end()}});
  }
  const std::vector<uint8_t>& bytes = block.Bytes();
  const std::string photo = Photo({ExifSection(std::string(bytes.begin(), bytes.end()))});
  WriteText(photo + ".aux.xml", "<MDI key=\"EXIF_GPSLatitude\">(48) (8) (30)</MDI>");
  WriteText(folder_ / "photo.xmp", "<rdf:Description exif:GPSLatitude=\"48,8.5N\"/>");
  const ToolResult result = RunTool({"exif", "--strip-gps", "--in-place", photo});
  EXPECT_EQ(result.code, 0) << result.err;
  for (const char* text : {"photo.jpg.aux.xml: ", "photo.xmp: ", "the backup of", "maker note",
                           "comment of the EXIF block"}) {
    EXPECT_THAT(result.err, HasSubstr(text));
  }
}

TEST_F(CliExif, Edit_Should_WriteToStdout) {
  const std::string photo = Photo({Exif()});
  const ToolResult result = RunTool({"exif", "--set", "Artist=a person", photo, "-"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, testing::StartsWith("\xFF\xD8"));
  EXPECT_THAT(result.out, HasSubstr("a person"));
}

// ---- usage
// ---------------------------------------------------------------------------------------

TEST_F(CliExif, Usage_Should_BeChecked) {
  const std::string photo = Photo({Exif()});
  const std::vector<std::vector<std::string>> lines = {
      {"exif"},
      {"exif", "--thumbnail", photo},
      {"exif", "--thumbnail", photo, folder_ / "out.png"},
      {"exif", "--strip-thumbnail", photo, folder_ / "out.bmp"},
      {"exif", "--thumbnail", "--strip-thumbnail", photo, output_},
      {"exif", "--thumbnail", "--copy-from", photo, photo, output_},
      {"exif", "--keep-orientation", photo, output_},
      {"exif", "--out-dir", folder_ / "out", photo},
  };
  for (const auto& line : lines) EXPECT_EQ(RunTool(line).code, 2) << testing::PrintToString(line);
  EXPECT_EQ(RunTool({"exif", "--strip-thumbnail", photo, photo}).code, 4);
  EXPECT_EQ(Text(photo), "\xFF\xD8" + Exif() + CodedData());
  EXPECT_EQ(RunTool({"exif", "--strip-thumbnail", "--overwrite", photo, photo}).code, 0);
}

}  // namespace
}  // namespace rasterkit::test
