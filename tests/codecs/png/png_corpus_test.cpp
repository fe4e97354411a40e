// PNG files of the corpus as pictures, and written files beside other readers; skipped where the
// corpus or the programs are absent.

#include <cstdio>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/metadata/png/png_chunks.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/png/png_files.h"
#include "tests/support/corpus.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using detail::PngChunks;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> PngFiles() {
  std::vector<std::string> files;
  for (const CorpusEntry& entry : CorpusEntries()) {
    const std::string& path = entry.at("path");
    if (path.ends_with(".png") || path.find("_is_png.") != std::string::npos) files.push_back(path);
  }
  return files;
}

ByteList Load(const std::string& path) {
  const std::string bytes = ReadFile((CorpusFolder() / path).string());
  return {bytes.begin(), bytes.end()};
}

std::optional<Pixels> TryDecode(const ByteList& file) {
  try {
    return DecodePngPixels(file);
  } catch (const Error&) {
    return std::nullopt;
  }
}

/// All chunks that hold pixels, joined.
ByteList PixelChunks(const ByteList& file) {
  ByteList joined;
  PngChunks chunks(file);
  while (chunks.Next()) {
    const auto kind = chunks.Chunk().kind;
    if (detail::IsAncillaryPng(kind) && kind != detail::PngKind("tRNS")) continue;
    joined.insert(joined.end(), chunks.Chunk().whole.begin(), chunks.Chunk().whole.end());
  }
  return joined;
}

void ExpectSamePixels(const Pixels& a, const Pixels& b) {
  ASSERT_EQ(a.index(), b.index());
  if (const auto* raster = std::get_if<Raster>(&a)) {
    if (raster->Format() == pf32bit && IsIndexed(std::get<Raster>(b).Format())) {
      // Of the transparent entries of its palette the pixels used one at most.
      const auto key = std::get<Raster>(b).transparentColor;
      EXPECT_TRUE(SameColors(*raster, std::get<Raster>(b)));
      for (int y = 0; y < raster->Height(); y++) {
        for (int x = 0; x < raster->Width(); x++) {
          ASSERT_EQ(raster->Row(y)[4 * x + 3], raster->PixelColor(x, y) == key ? 0 : 255);
        }
      }
      return;
    }
    EXPECT_TRUE(SamePixels(*raster, std::get<Raster>(b)));
    EXPECT_EQ(raster->transparentColor, std::get<Raster>(b).transparentColor);
    return;
  }
  const auto& first = std::get<Samples>(a);
  const auto& second = std::get<Samples>(b);
  ASSERT_EQ(first.Layout().bands, second.Layout().bands);
  for (int y = 0; y < first.Height(); y++) {
    ASSERT_TRUE(std::equal(first.Row(y), first.Row(y) + first.Stride(), second.Row(y))) << y;
  }
}

TEST(PngPictureCorpus, Header_Should_AgreeWithTheDecoder) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int decoded = 0;
  for (const std::string& path : PngFiles()) {
    SCOPED_TRACE(path);
    const ByteList file = Load(path);
    const auto pixels = TryDecode(file);
    if (!pixels) continue;
    decoded++;
    const PictureHeader header = ReadPngHeader(file);
    EXPECT_EQ(header.width, WidthOf(*pixels));
    EXPECT_EQ(header.height, HeightOf(*pixels));
    EXPECT_EQ(header.layout.bits == 16, std::holds_alternative<Samples>(*pixels));
    if (const auto* raster = std::get_if<Raster>(&*pixels)) {
      EXPECT_EQ(IsIndexed(raster->Format()), header.layout.bands == 1);
      EXPECT_EQ(raster->Format() == pf32bit, header.layout.alpha == AlphaKind::straight);
      if (header.layout.model == ColorModel::palette) {
        EXPECT_EQ(raster->palette, header.layout.palette);
      }
    }
  }
  EXPECT_GE(decoded, 40);
}

TEST(PngPictureCorpus, CopiedAndWritten_Should_KeepPixelsAndMetadata) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int copied = 0, written = 0;
  for (const std::string& path : PngFiles()) {
    SCOPED_TRACE(path);
    const ByteList file = Load(path);
    const auto pixels = TryDecode(file);
    if (!pixels) continue;
    const PictureHeader header = ReadPngHeader(file);
    PictureWriting writing;
    writing.form = header.form;
    writing.metadata = header.metadata;
    TMemoryStream copy;
    try {
      const WrittenPicture result = CopyPng(file, writing, copy);
      EXPECT_THAT(result.changes.losses, IsEmpty());
      copied++;
      const ByteList bytes = copy.TakeBytes();
      EXPECT_EQ(PixelChunks(bytes), PixelChunks(file));
      Metadata again = ReadPngHeader(bytes).metadata;
      EXPECT_EQ(again.profile != nullptr, header.metadata.profile != nullptr);
      again.profile = header.metadata.profile;
      // Those of color stand in front of the others.
      EXPECT_THAT(again.pngChunks, testing::UnorderedElementsAreArray(header.metadata.pngChunks));
      again.pngChunks = header.metadata.pngChunks;
      EXPECT_EQ(again, header.metadata);
      EXPECT_EQ(ReadPngHeader(bytes).hiddenOthers, header.hiddenOthers);
    } catch (const UnsupportedError&) {
      // Cut off or damaged.
      EXPECT_THAT(header.warnings, testing::Not(IsEmpty()));
    }
    TMemoryStream stream;
    WrittenPicture result = WritePng(*pixels, writing, stream);
    const ByteList bytes = stream.TakeBytes();
    written++;
    std::erase_if(result.changes.notes,
                  [](const std::string& note) { return note.find("hIST") != note.npos; });
    ExpectSamePixels(*pixels, DecodePngPixels(bytes));
    const PictureHeader after = ReadPngHeader(bytes);
    EXPECT_EQ(std::get<PngForm>(after.form), std::get<PngForm>(result.form));
    if (result.changes.notes.empty()) {
      EXPECT_EQ(after.form, header.form);
    } else {
      // A transparent color of 16 bits becomes an alpha channel.
      EXPECT_TRUE(header.layout.bits == 16 && header.layout.alpha == AlphaKind::transparentColor)
          << result.changes.notes[0];
    }
    EXPECT_EQ(after.metadata.exif, header.metadata.exif);
    EXPECT_EQ(after.metadata.xmp, header.metadata.xmp);
    EXPECT_EQ(after.metadata.iptc, header.metadata.iptc);
    EXPECT_EQ(after.metadata.texts, header.metadata.texts);
    EXPECT_EQ(after.metadata.comments, header.metadata.comments);
    EXPECT_EQ(after.metadata.resolution, header.metadata.resolution);
  }
  EXPECT_GE(copied, 40);
  EXPECT_GE(written, 40);
}

bool IsInstalled(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

std::string OutputOf(const std::string& command) {
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  char buffer[4096];
  while (size_t count = std::fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, count);
  pclose(pipe);
  return output;
}

Metadata PeerMetadata() {
  Metadata metadata;
  metadata.exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3,
                   0,   1,   0,  0, 0, 6, 0, 0, 0, 0, 0,    0, 0};
  metadata.xmp =
      "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
      "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
      "xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmp:Rating='4'/></rdf:RDF></x:xmpmeta>";
  metadata.iptc = {0x1C, 2, 5, 0, 4, 'H', 'a', 'u', 's'};
  // Resource 1034: copyrighted.
  metadata.photoshop = {'8', 'B', 'I', 'M', 4, 10, 0, 0, 0, 0, 0, 1, 1, 0};
  metadata.comments = {
      "Gr\xC3\xBC\xC3\x9F"
      "e"};
  metadata.profile = RgbProfile();
  metadata.resolution = {300, 300};
  PictureText text;
  text.keyword = "Title";
  text.text = "\xE2\x82\xAC";
  text.isInternational = true;
  metadata.texts = {text};
  return metadata;
}

TEST(PngPicturePeers, Exiftool_Should_FindEveryKind) {
  if (!IsInstalled("exiftool -ver")) GTEST_SKIP() << "exiftool is not installed";
  const TempFolder folder;
  TMemoryStream stream;
  PictureWriting writing;
  writing.metadata = PeerMetadata();
  WritePng(Pixels(GradientRaster(pf24bit, 30, 20)), writing, stream);
  const std::string file = folder.Write("a.png", stream.Bytes());
  const std::string found = OutputOf(
      "exiftool -s -n -a -warning -error -IFD0:Orientation -XMP:Rating -IPTC:ObjectName "
      "-Photoshop:CopyrightFlag -PNG:Comment -PNG:Title -PNG:PixelsPerUnitX "
      "-ICC_Profile:ProfileClass '" +
      file + "'");
  for (const char* line :
       {"Orientation                     : 6", "Rating                          : 4",
        "ObjectName                      : Haus", "CopyrightFlag                   : 1",
        "Comment                         : Gr\xC3\xBC\xC3\x9F"
        "e",
        "Title                           : \xE2\x82\xAC", "PixelsPerUnitX                  : 11811",
        "ProfileClass                    : mntr"}) {
    EXPECT_THAT(found, HasSubstr(line));
  }
  EXPECT_THAT(found, testing::Not(HasSubstr("Warning")));
  EXPECT_THAT(found, testing::Not(HasSubstr("Error")));
}

TEST(PngPicturePeers, Identify_Should_ReadEveryForm) {
  if (!IsInstalled("identify -version")) GTEST_SKIP() << "ImageMagick is not installed";
  const TempFolder folder;
  struct Case {
    PngForm form;
    const char* expected;
  };
  constexpr Case kCases[] = {{{1, 0, false}, "1 0 (Grayscale) 0"},
                             {{8, 3, true}, "8 3 (Indexed) 1"},
                             {{8, 4, false}, "8 4 (GrayAlpha) 0"},
                             {{16, 0, true}, "16 0 (Grayscale) 1"},
                             {{16, 6, false}, "16 6 (RGBA) 0"}};
  for (const Case& one : kCases) {
    SCOPED_TRACE(one.expected);
    constexpr int kBands[] = {1, 0, 3, 1, 2, 0, 4};
    const size_t rowBytes =
        static_cast<size_t>(16 * one.form.bits * kBands[one.form.colorType] / 8);
    ByteList rows(rowBytes * 4);
    for (size_t i = 0; i < rows.size(); i++) rows[i] = static_cast<uint8_t>(i * 37);
    ByteList palette(768);
    for (size_t i = 0; i < palette.size(); i++) palette[i] = static_cast<uint8_t>(i * 5);
    const ByteList before = one.form.colorType == 3 ? PngChunk("PLTE", palette) : ByteList();
    const ByteList source = PngFile(16, 4, one.form.bits, one.form.colorType, rows, before);
    PictureWriting writing;
    writing.form = one.form;
    TMemoryStream stream;
    WritePng(DecodePngPixels(source), writing, stream);
    const std::string first = folder.Write("source.png", source);
    const std::string second = folder.Write("written.png", stream.Bytes());
    EXPECT_THAT(OutputOf("identify -format '%[png:IHDR.bit_depth] %[png:IHDR.color_type] "
                         "%[png:IHDR.interlace_method]' '" +
                         second + "'"),
                testing::StartsWith(one.expected));
    const std::string same =
        OutputOf("compare -metric AE '" + first + "' '" + second + "' null: 2>&1");
    EXPECT_EQ(same, "0");
  }
}

}  // namespace
}  // namespace rasterkit::test
