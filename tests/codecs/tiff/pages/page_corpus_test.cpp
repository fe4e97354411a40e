// Real files: what the header says against other programs, copies against their sources, pixels
// written again against the first ones. Skipped without the corpus.

#include <cstdlib>
#include <optional>
#include <sstream>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/pages/page_pixels.h"
#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"
#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

/// The warnings about pixels; those about the directory have no cause in a copy.
std::vector<std::string> Damages(const CodecReport& report) {
  std::vector<std::string> damages;
  for (const std::string& text : report.warnings) {
    if (text.find("complete") != text.npos || text.find("damaged") != text.npos) {
      damages.push_back(text);
    }
  }
  return damages;
}

struct File {
  std::string path, name;
  std::vector<uint8_t> bytes;
};

std::vector<File> TiffFiles() {
  std::vector<File> files;
  for (const CorpusEntry& entry : CorpusEntries()) {
    const std::string& path = entry.at("path");
    if (!path.ends_with(".tif") && !path.ends_with(".tiff")) continue;
    const std::string name = (CorpusFolder() / path).string();
    TMemoryStream stream;
    stream.LoadFromFile(name);
    files.push_back({path, name, stream.TakeBytes()});
  }
  return files;
}

bool HasProgram(const std::string& name) {
  return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::string OutputOf(const std::string& command) {
  std::string text;
  FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
  if (!pipe) return text;
  char piece[4096];
  while (const size_t count = fread(piece, 1, sizeof piece, pipe)) text.append(piece, count);
  pclose(pipe);
  return text;
}

/// The pixels, or nothing for a file that is refused.
std::optional<Pixels> TryPixels(const std::vector<uint8_t>& bytes, CodecReport& report) {
  try {
    return PixelsOf(bytes, &report);
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::optional<PictureHeader> TryHeader(const std::vector<uint8_t>& bytes) {
  try {
    return HeaderOf(bytes);
  } catch (const Error&) {
    return std::nullopt;
  }
}

TEST(TiffPageCorpus, Should_SayInTheHeaderWhatIsDecoded_When_FileIsSound) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int decoded = 0;
  for (const File& file : TiffFiles()) {
    SCOPED_TRACE(file.path);
    CodecReport report;
    const std::optional<Pixels> pixels = TryPixels(file.bytes, report);
    if (!pixels) continue;
    decoded++;
    const std::optional<PictureHeader> header = TryHeader(file.bytes);
    ASSERT_TRUE(header);
    EXPECT_EQ(header->width, WidthOf(*pixels));
    EXPECT_EQ(header->height, HeightOf(*pixels));
    const auto* samples = std::get_if<Samples>(&*pixels);
    if (!samples) {
      EXPECT_EQ(header->layout.type, NumberType::uint8);
      EXPECT_LE(header->layout.bits, 8);
      continue;
    }
    EXPECT_EQ(samples->Layout().type, header->layout.type);
    EXPECT_EQ(samples->Layout().bands, header->layout.bands);
    EXPECT_EQ(samples->Layout().model, header->layout.model);
  }
  EXPECT_GE(decoded, 120);
}

/// Files that the frame decoder reads, this one reads, with the same damage.
TEST(TiffPageCorpus, Should_ReadWhatTheFrameDecoderReads_When_NotComplex) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  for (const File& file : TiffFiles()) {
    SCOPED_TRACE(file.path);
    TSpanStream stream(file.bytes);
    try {
      DecodeTiff(stream);
    } catch (const Error&) {
      continue;
    }
    try {
      PixelsOf(file.bytes);
    } catch (const UnsupportedError& error) {
      EXPECT_THAT(error.what(), testing::HasSubstr("complex"));
    } catch (const Error& error) {
      ADD_FAILURE() << error.what();
    }
  }
}

TEST(TiffPageCorpus, Should_GiveTheSameNumbers_When_WrittenInItsOwnForm) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int written = 0;
  for (const File& file : TiffFiles()) {
    SCOPED_TRACE(file.path);
    CodecReport report;
    const std::optional<Pixels> pixels = TryPixels(file.bytes, report);
    if (!pixels) continue;
    const PictureHeader header = HeaderOf(file.bytes);
    WrittenPicture result;
    const std::vector<uint8_t> bytes = Written(*pixels, WritingOf(header), &result);
    const bool isLossy = std::get<TiffForm>(result.form).compression == COMPRESSION_JPEG;
    CodecReport second;
    const Pixels back = PixelsOf(bytes, &second);
    EXPECT_THAT(second.warnings, testing::IsEmpty());
    if (!isLossy) {
      EXPECT_TRUE(SameNumbers(*pixels, back));
    }
    const PictureHeader again = HeaderOf(bytes);
    EXPECT_EQ(again.positionTags, header.positionTags);
    EXPECT_EQ(again.metadata.xmp, header.metadata.xmp);
    EXPECT_EQ(again.metadata.iptc, header.metadata.iptc);
    EXPECT_NEAR(again.metadata.resolution.x, header.metadata.resolution.x, 1e-4);
    written++;
  }
  EXPECT_GE(written, 120);
}

/// The smaller copies and masks of two files are the same.
void ExpectSameExtraPages(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  TSpanStream one(a), two(b);
  const size_t count = ReadTiffExtraPages(one).size();
  ASSERT_EQ(ReadTiffExtraPages(two).size(), count);
  for (size_t i = 0; i < count; i++) {
    one.SetPosition(0);
    two.SetPosition(0);
    try {
      EXPECT_TRUE(SameNumbers(DecodeTiffExtraPage(one, i), DecodeTiffExtraPage(two, i))) << i;
    } catch (const FormatError& error) {
      // Damaged in the source: the copy is damaged in the same way.
      two.SetPosition(0);
      EXPECT_THROW(DecodeTiffExtraPage(two, i), FormatError) << error.what();
    }
  }
}

TEST(TiffPageCorpus, Should_KeepEveryEncodedByte_When_Copied) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int copied = 0;
  for (const File& file : TiffFiles()) {
    SCOPED_TRACE(file.path);
    CodecReport report, copyReport;
    const std::optional<Pixels> pixels = TryPixels(file.bytes, report);
    if (!pixels) continue;
    const PictureHeader header = HeaderOf(file.bytes);
    std::vector<uint8_t> copy;
    try {
      copy = Copied(file.bytes, WritingOf(header));
    } catch (const FormatError& error) {
      // Damage that decoding reads around.
      EXPECT_THAT(report.warnings, testing::Not(testing::IsEmpty())) << error.what();
      continue;
    }
    copied++;
    EXPECT_TRUE(SameNumbers(*pixels, PixelsOf(copy, &copyReport)));
    EXPECT_EQ(Damages(report), Damages(copyReport));
    if (header.layout.bits == 8 * static_cast<int>(BytesOf(header.layout.type))) {
      // A tile that claims more bytes than the file has keeps those that its rows need.
      if (file.path != "geotiff/gdal__excessive-memory-TIFFFillTile.tif") {
        EXPECT_EQ(PackedStrips(copy), PackedStrips(file.bytes));
      }
    }
    const PictureHeader again = HeaderOf(copy);
    ExpectSameExtraPages(file.bytes, copy);
    EXPECT_EQ(again.smallerCopies, header.smallerCopies);
    EXPECT_EQ(again.masks, header.masks);
    EXPECT_EQ(Describe(std::get<TiffForm>(again.form)), Describe(std::get<TiffForm>(header.form)));
    EXPECT_EQ(again.metadata.tiffTags, header.metadata.tiffTags);
    EXPECT_EQ(again.metadata.xmp, header.metadata.xmp);
    EXPECT_EQ(again.positionTags, header.positionTags);
    // A copy of the copy is the copy.
    EXPECT_EQ(Copied(copy, WritingOf(again)), copy);
  }
  EXPECT_GE(copied, 115);
}

/// The value of a line "Name: value" of tiffinfo's first directory.
std::string Field(const std::string& text, const std::string& name) {
  const size_t at = text.find(name + ": ");
  if (at == std::string::npos) return "";
  const size_t from = at + name.size() + 2;
  return text.substr(from, text.find_first_of("\n", from) - from);
}

TEST(TiffPageCorpus, Should_AgreeWithTiffinfo_When_Installed) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  if (!HasProgram("tiffinfo")) GTEST_SKIP() << "tiffinfo is not installed";
  int compared = 0;
  for (const File& file : TiffFiles()) {
    SCOPED_TRACE(file.path);
    const std::optional<PictureHeader> header = TryHeader(file.bytes);
    const std::string text = OutputOf("tiffinfo -0 '" + file.name + "'");
    const size_t at = text.find("Image Width: ");
    if (!header || at == std::string::npos) continue;
    compared++;
    unsigned width = 0, height = 0;
    std::sscanf(text.c_str() + at, "Image Width: %u Image Length: %u", &width, &height);
    EXPECT_EQ(header->width, static_cast<int>(width));
    EXPECT_EQ(header->height, static_cast<int>(height));
    const TiffForm& form = std::get<TiffForm>(header->form);
    unsigned tileWidth = 0, tileHeight = 0;
    if (const size_t tile = text.find("Tile Width: "); tile != std::string::npos) {
      std::sscanf(text.c_str() + tile, "Tile Width: %u Tile Length: %u", &tileWidth, &tileHeight);
    }
    EXPECT_EQ(form.tileWidth, tileWidth);
    EXPECT_EQ(form.tileHeight, tileHeight);
    const std::string planar = Field(text, "Planar Configuration");
    if (!planar.empty() && header->layout.bands > 1 && header->layout.model != ColorModel::rgb) {
      EXPECT_EQ(form.isPlanar, planar.starts_with("separate"));
    }
    const std::string rows = Field(text, "Rows/Strip");
    if (!rows.empty() && rows[0] != '(') {
      EXPECT_EQ(form.rowsPerStrip, std::min<uint64_t>(std::stoull(rows), height));
    }
  }
  EXPECT_GE(compared, 120);
}

/// Programs that know the format best read copies and files written anew without a complaint that
/// they do not make about the source.
TEST(TiffPageCorpus, Should_SatisfyTiffcmp_When_CopiedOrWritten) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  if (!HasProgram("tiffcmp") || !HasProgram("tiffinfo")) GTEST_SKIP() << "not installed";
  TempFolder folder;
  int compared = 0;
  const auto save = [&](const char* name, const std::vector<uint8_t>& bytes) {
    const std::string text(bytes.begin(), bytes.end());
    return folder.Write(name, text);
  };
  const auto isSame = [](const std::string& a, const std::string& b) {
    // Tags of metadata may differ in type; -t leaves them out.
    return std::system(("tiffcmp -t '" + a + "' '" + b + "' >/dev/null 2>&1").c_str()) == 0;
  };
  for (const File& file : TiffFiles()) {
    SCOPED_TRACE(file.path);
    CodecReport report;
    const std::optional<Pixels> pixels = TryPixels(file.bytes, report);
    const std::optional<PictureHeader> header = TryHeader(file.bytes);
    if (!pixels || !header || !report.warnings.empty() || header->pages > 1) continue;
    if (!isSame(file.name, file.name)) continue;
    std::vector<uint8_t> copy;
    try {
      copy = Copied(file.bytes, WritingOf(*header));
    } catch (const Error& error) {
      ADD_FAILURE() << error.what();
      continue;
    }
    compared++;
    if (header->orientation.value_or(1) == 1) {
      EXPECT_TRUE(isSame(file.name, save("copy.tif", copy))) << "copy";
    }
    const std::vector<uint8_t> written = Written(*pixels, WritingOf(*header));
    const std::string name = save("written.tif", written);
    EXPECT_EQ(OutputOf("tiffinfo -D '" + name + "' 2>&1 >/dev/null | grep -v 'Unknown field'"), "");
  }
  EXPECT_GE(compared, 80);
}

/// What exiftool shows of each file, in their order.
std::vector<std::string> Shown(const std::vector<std::string>& names, const TempFolder& folder,
                               const std::string& without = "") {
  std::string list;
  for (const std::string& name : names) list += name + "\n";
  const std::string file = folder.Write("names.txt", list);
  // Places and sizes of the file itself differ; so do the tags that every copy states.
  const std::string text = OutputOf(
      "exiftool -G1 -s -n -u --File:all --System:all --ExifTool:all --Composite:all --StripOffsets "
      "--StripByteCounts --TileOffsets --TileByteCounts --Orientation --PreviewImageStart "
      "--JpgFromRawStart --OtherImageStart --ThumbnailOffset --ThumbnailTIFF --PreviewTIFF "
      "--FreeOffsets --FreeByteCounts --JPEGQTables --JPEGDCTables --JPEGACTables " +
      without + " -@ '" + file + "'");
  std::vector<std::string> parts;
  const std::string mark = "======== ";
  for (size_t at = text.find(mark); at != text.npos;) {
    const size_t line = text.find('\n', at), next = text.find(mark, line);
    parts.push_back(text.substr(line, next == text.npos ? next : next - line));
    at = next;
  }
  return parts;
}

TEST(TiffPageCorpus, Should_ShowExiftoolTheSameTags_When_Copied) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  if (!HasProgram("exiftool")) GTEST_SKIP() << "exiftool is not installed";
  TempFolder folder;
  std::vector<std::string> sources, copies;
  for (const File& file : TiffFiles()) {
    const std::optional<PictureHeader> header = TryHeader(file.bytes);
    const bool isSound = header && header->warnings.empty() && header->pages == 1;
    if (!isSound || header->orientation.value_or(1) != 1) continue;
    try {
      const std::vector<uint8_t> copy = Copied(file.bytes, WritingOf(*header));
      copies.push_back(folder.Write(fmt::format("{:03}.tif", copies.size()),
                                    std::string(copy.begin(), copy.end())));
      sources.push_back(file.name);
    } catch (const Error&) {
    }
  }
  ASSERT_GE(sources.size(), 90u);
  const std::vector<std::string> before = Shown(sources, folder), after = Shown(copies, folder);
  ASSERT_EQ(before.size(), sources.size());
  ASSERT_EQ(after.size(), sources.size());
  for (size_t i = 0; i < sources.size(); i++) EXPECT_EQ(before[i], after[i]) << sources[i];
}

TEST(TiffPageCorpus, Should_ShowExiftoolTheSameMetadata_When_Written) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  if (!HasProgram("exiftool")) GTEST_SKIP() << "exiftool is not installed";
  TempFolder folder;
  std::vector<std::string> sources, targets;
  for (const File& file : TiffFiles()) {
    CodecReport report;
    const std::optional<Pixels> pixels = TryPixels(file.bytes, report);
    if (!pixels) continue;
    const PictureHeader header = HeaderOf(file.bytes);
    const bool isAlone = header.pages == 1 && header.smallerCopies == 0 && header.masks == 0;
    if (!isAlone || !header.warnings.empty()) continue;
    WrittenPicture result;
    const std::vector<uint8_t> bytes = Written(*pixels, WritingOf(header), &result);
    if (!result.changes.losses.empty()) continue;
    targets.push_back(folder.Write(fmt::format("{:03}.tif", targets.size()),
                                   std::string(bytes.begin(), bytes.end())));
    sources.push_back(file.name);
  }
  ASSERT_GE(sources.size(), 80u);
  const std::string options = "--IFD0:all";
  const std::vector<std::string> before = Shown(sources, folder, options),
                                 after = Shown(targets, folder, options);
  ASSERT_EQ(before.size(), sources.size());
  ASSERT_EQ(after.size(), sources.size());
  for (size_t i = 0; i < sources.size(); i++) EXPECT_EQ(before[i], after[i]) << sources[i];
}

/// What gdalinfo says about numbers and place of a file, a line each.
std::vector<std::string> Geography(const std::string& name) {
  std::vector<std::string> lines;
  std::istringstream text(OutputOf("gdalinfo -checksum -norat -noct '" + name + "'"));
  for (std::string line; std::getline(text, line);) {
    for (const char* wanted :
         {"Checksum=", "NoData Value=", "Origin = ", "Pixel Size = ", "EPSG", "Size is ",
          "GeoTransform", "GCP[", "AREA_OR_POINT", "METADATATYPE", "Offset: "}) {
      if (line.find(wanted) != line.npos) lines.push_back(line);
    }
  }
  return lines;
}

TEST(TiffPageCorpus, Should_GiveGdalTheSameNumbersAndPlace_When_Written) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  if (!HasProgram("gdalinfo")) GTEST_SKIP() << "gdalinfo is not installed";
  TempFolder folder;
  int compared = 0;
  for (const File& file : TiffFiles()) {
    if (!file.path.starts_with("geotiff/")) continue;
    SCOPED_TRACE(file.path);
    CodecReport report;
    const std::optional<Pixels> pixels = TryPixels(file.bytes, report);
    if (!pixels || !report.warnings.empty()) continue;
    const PictureHeader header = HeaderOf(file.bytes);
    const TiffForm& form = std::get<TiffForm>(header.form);
    // Without the world files and notes that lie beside the source.
    const auto save = [&](const char* name, const std::vector<uint8_t>& bytes) {
      return folder.Write(name, std::string(bytes.begin(), bytes.end()));
    };
    const std::vector<std::string> before = Geography(save("source.tif", file.bytes));
    // gdalinfo does not read a tile that claims more bytes than the file has.
    if (before.empty() || file.path == "geotiff/gdal__excessive-memory-TIFFFillTile.tif") continue;
    if (form.compression == COMPRESSION_JPEG || form.photometric == PHOTOMETRIC_YCBCR) continue;
    EXPECT_EQ(Geography(save("written.tif", Written(*pixels, WritingOf(header)))), before);
    compared++;
  }
  EXPECT_GE(compared, 30);
}

}  // namespace
}  // namespace rasterkit::test
