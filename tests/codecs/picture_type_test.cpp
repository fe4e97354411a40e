#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/codecs/picture_type.h>

#include "tests/support/bmp_file.h"
#include "tests/support/corpus.h"

namespace rasterkit::test {
namespace {

using namespace std::string_literals;

PictureType Sniff(const std::string& bytes) {
  return SniffPictureType({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
}

/// `text` at `offset` of 64 zeros.
std::string At(size_t offset, const std::string& text, std::string bytes = std::string(64, '\0')) {
  return bytes.replace(offset, text.size(), text);
}

TEST(SniffPictureType, Should_KnowBmp_When_HeaderMakesSense) {
  for (const uint32_t headerBytes : {12u, 16u, 40u, 52u, 56u, 64u, 108u, 124u}) {
    const std::vector<uint8_t> bytes =
        BmpFile{.headerBytes = headerBytes, .pixels = {1, 2, 3, 4}}.Bytes();
    EXPECT_EQ(SniffPictureType(bytes), PictureType::bmp) << headerBytes;
    EXPECT_EQ(SniffPictureType(std::span(bytes).first(18)), PictureType::bmp)
        << "as far as it goes";
  }
}

TEST(SniffPictureType, Should_NotSayBmp_When_OnlyTheMarkIsThere) {
  EXPECT_EQ(Sniff("BM"), PictureType::unknown);
  EXPECT_EQ(Sniff("BMW builds motor cars, and this is a text about them."), PictureType::unknown);
  std::vector<uint8_t> bytes = BmpFile{.bits = 33, .pixels = {1, 2, 3, 4}}.Bytes();
  EXPECT_EQ(SniffPictureType(bytes), PictureType::unknown);
}

TEST(SniffPictureType, Should_KnowMarks_When_KindIsAny) {
  EXPECT_EQ(Sniff("\xFF\xD8\xFF\xE0"s), PictureType::jpeg);
  EXPECT_EQ(Sniff("\x89PNG\r\n\x1A\n"s), PictureType::png);
  EXPECT_EQ(Sniff("II*\0"s), PictureType::tiff);
  EXPECT_EQ(Sniff("MM\0*"s), PictureType::tiff);
  EXPECT_EQ(Sniff("II+\0"s), PictureType::tiff);
  EXPECT_EQ(Sniff("MM\0+"s), PictureType::tiff);
  EXPECT_EQ(Sniff("\xD7\xCD\xC6\x9A\0\0"s), PictureType::wmf);
  EXPECT_EQ(Sniff("\1\0\x09\0\0\3"s), PictureType::wmf);
  EXPECT_EQ(Sniff("\2\0\x09\0\0\1"s), PictureType::wmf);
  EXPECT_EQ(Sniff(At(40, " EMF", At(0, "\1\0\0\0"s))), PictureType::emf);
  EXPECT_EQ(Sniff("%PDF-1.7"), PictureType::pdf);
  EXPECT_EQ(Sniff("GIF87a"), PictureType::gif);
  EXPECT_EQ(Sniff("GIF89a"), PictureType::gif);
  EXPECT_EQ(Sniff(At(8, "WEBP", At(0, "RIFF"))), PictureType::webp);
}

TEST(SniffPictureType, Should_KnowPdf_When_OtherBytesComeFirst) {
  EXPECT_EQ(Sniff(std::string(1019, '\n') + "%PDF-1.4"), PictureType::pdf);
  EXPECT_EQ(Sniff(std::string(1020, '\n') + "%PDF-1.4"), PictureType::unknown);
}

TEST(SniffPictureType, Should_SayUnknown_When_MarksAreNearlyRight) {
  EXPECT_EQ(Sniff(""), PictureType::unknown);
  EXPECT_EQ(Sniff("II*\1"s), PictureType::unknown);
  EXPECT_EQ(Sniff("IM\0*"s), PictureType::unknown);
  EXPECT_EQ(Sniff("\x89PNG\n\x1A\n"s), PictureType::unknown) << "line ends were rewritten";
  EXPECT_EQ(Sniff("\xFF\xD8"s), PictureType::unknown);
  EXPECT_EQ(Sniff("\3\0\x09\0\0\3"s), PictureType::unknown);
  EXPECT_EQ(Sniff("\1\0\x09\0\0\2"s), PictureType::unknown);
  EXPECT_EQ(Sniff("\1\0\x08\0\0\3"s), PictureType::unknown);
  EXPECT_EQ(Sniff(At(40, " EMF", At(0, "\2\0\0\0"s))), PictureType::unknown);
  EXPECT_EQ(Sniff("GIF88a"), PictureType::unknown);
  EXPECT_EQ(Sniff(At(8, "WAVE", At(0, "RIFF"))), PictureType::unknown);
}

TEST(SniffPictureType, Should_NotReadBeyond_When_BytesAreFew) {
  const std::vector<uint8_t> whole = BmpFile{.headerBytes = 124, .pixels = {1, 2, 3, 4}}.Bytes();
  for (size_t size = 0; size < whole.size(); ++size) {
    const std::vector<uint8_t> bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_EQ(SniffPictureType(bytes), size < 18 ? PictureType::unknown : PictureType::bmp);
  }
}

TEST(PictureTypeName, Should_NameEveryKind_When_Asked) {
  EXPECT_STREQ(PictureTypeName(PictureType::unknown), "unknown");
  EXPECT_STREQ(PictureTypeName(PictureType::bmp), "bmp");
  EXPECT_STREQ(PictureTypeName(PictureType::jpeg), "jpeg");
  EXPECT_STREQ(PictureTypeName(PictureType::png), "png");
  EXPECT_STREQ(PictureTypeName(PictureType::tiff), "tiff");
  EXPECT_STREQ(PictureTypeName(PictureType::wmf), "wmf");
  EXPECT_STREQ(PictureTypeName(PictureType::emf), "emf");
  EXPECT_STREQ(PictureTypeName(PictureType::pdf), "pdf");
  EXPECT_STREQ(PictureTypeName(PictureType::gif), "gif");
  EXPECT_STREQ(PictureTypeName(PictureType::webp), "webp");
}

/// The kind that a corpus file is, from its folder or from what its name says it really is.
std::string KindOf(const std::string& path) {
  const std::string folder = path.substr(0, path.find('/'));
  if (folder == "wrongext") {
    const size_t from = path.rfind("_is_") + 4;
    return path.substr(from, path.find('.', from) - from);
  }
  if (folder == "exif") return "jpeg";
  if (folder == "geotiff") return "tiff";
  return folder;
}

TEST(SniffPictureType, Should_TellEveryFile_When_FilesAreReal) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no corpus";
  int files = 0;
  for (CorpusEntry entry : CorpusEntries()) {
    if (entry["expected"] != "loads") continue;
    const std::string kind = KindOf(entry["path"]);
    if (kind == "worldfile" || kind == "world") continue;
    std::ifstream in(CorpusFolder() / entry["path"], std::ios::binary);
    std::string bytes(64, '\0');
    in.read(bytes.data(), 64);
    bytes.resize(static_cast<size_t>(in.gcount()));
    EXPECT_EQ(PictureTypeName(Sniff(bytes)), kind) << entry["path"];
    ++files;
  }
  EXPECT_GT(files, 0);
}

}  // namespace
}  // namespace rasterkit::test
