// The lists of formats outside the library agree with the codec table: the table of
// docs/formats.md, the fuzz targets, the folders of the codecs and the help of the tool.

#include <algorithm>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/gif/gif_signature.h>
#include <rasterkit/runtime/text.h>

#include "tests/docs/document_files.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Icons have a folder and a line of their own, but no row: they are not recognized by content.
constexpr std::string_view kIconFolder = "ico";
/// PDF files are read by Qt, which has its own tests, and HEIF files by a library that only the
/// worker process opens.
bool IsReadByOthers(PictureType type) {
  return type == PictureType::pdf || type == PictureType::heif;
}

/// True for formats with a folder of their own.
bool HasFolder(const Codec& codec) {
  return codec.IsDecoded() || codec.IsForPicturesOnly();
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// The cells of "| a | b |", without the spaces around them; nothing for other lines.
std::vector<std::string> CellsOf(const std::string& line) {
  std::vector<std::string> cells;
  if (!line.starts_with('|')) return cells;
  std::istringstream in(line.substr(1));
  for (std::string cell; std::getline(in, cell, '|');) cells.push_back(Trim(cell));
  return cells;
}

/// Columns of the first table of docs/formats.md.
enum Column { columnName, columnExtensions, columnRead, columnRefused, columnWritten, columnKept };

std::string ExtensionsOf(const Codec& codec) {
  std::string text;
  for (const std::string_view extension : codec.extensions)
    if (!extension.empty())
      text.append(text.empty() ? "" : ", ").append("`.").append(extension).append("`");
  return text;
}

bool IsDescribed(const Codec& codec, const std::vector<std::string>& cells) {
  if (cells.size() != columnKept + 1) return false;
  if (!cells[columnName].starts_with(std::string("`").append(codec.name).append("`"))) return false;
  const bool isWritten = !cells[columnWritten].starts_with("no");
  // Formats without a decoder in the table are written by the rooms that draw them, or not at all.
  if (HasFolder(codec) && isWritten != (codec.encode != nullptr)) return false;
  return cells[columnExtensions] == ExtensionsOf(codec) && !cells[columnRead].empty();
}

/// Names of formats that the page does not describe as their rows are.
std::vector<std::string> FindUndocumented(std::span<const Codec> codecs, const std::string& page) {
  const std::vector<std::string> lines = LinesOf(page);
  std::vector<std::string> names;
  for (const Codec& codec : codecs)
    if (std::none_of(lines.begin(), lines.end(),
                     [&](const std::string& line) { return IsDescribed(codec, CellsOf(line)); }))
      names.emplace_back(codec.name);
  return names;
}

/// Names of formats whose readers have no fuzz target. `targets` has one line per target,
/// "ROOM/NAME".
std::vector<std::string> FindUnfuzzed(std::span<const Codec> codecs, const std::string& targets) {
  const std::vector<std::string> lines = LinesOf(targets);
  std::vector<std::string> names;
  for (const Codec& codec : codecs) {
    const std::string room = HasFolder(codec) ? "codecs/" : "metafiles/";
    const bool isListed = std::find(lines.begin(), lines.end(), room + codec.name) != lines.end();
    if (!IsReadByOthers(codec.type) && !isListed) names.emplace_back(codec.name);
  }
  return names;
}

/// A format that was added to the table alone.
std::vector<Codec> WithInventedRow() {
  const std::span<const Codec> table = CodecTable();
  std::vector<Codec> codecs(table.begin(), table.end());
  codecs.push_back({.type = PictureType::gif,
                    .name = "invented",
                    .extensions = {"inv"},
                    .matches = detail::IsGif,
                    .decodeBytes = DecodeGif});
  return codecs;
}

std::string FuzzTargets() {
  return ReadDocument("fuzz/targets.txt");
}

TEST(DocsFormats, Page_Should_DescribeEachRowOfTheTable) {
  EXPECT_THAT(FindUndocumented(CodecTable(), ReadDocument("docs/formats.md")), IsEmpty());
}

TEST(DocsFormats, Page_Should_BeFoundIncomplete_When_ARowIsNew) {
  EXPECT_THAT(FindUndocumented(WithInventedRow(), ReadDocument("docs/formats.md")),
              ElementsAre("invented"));
  const std::string readOnly = "| `invented`: a format | `.inv` | all of it | | no | nothing |\n";
  const std::string written =
      "| `invented`: a format | `.inv` | all of it | | 8 bits | nothing |\n";
  const std::vector<Codec> codecs = WithInventedRow();
  const std::span<const Codec> invented = std::span(codecs).last(1);
  EXPECT_THAT(FindUndocumented(invented, readOnly), IsEmpty());
  EXPECT_THAT(FindUndocumented(invented, written), ElementsAre("invented"));
}

TEST(DocsFormats, FuzzTargets_Should_CoverEachRowOfTheTable) {
  EXPECT_THAT(FindUnfuzzed(CodecTable(), FuzzTargets()), IsEmpty());
  for (const std::string& target : LinesOf(FuzzTargets()))
    EXPECT_TRUE(std::filesystem::exists(SourceFolder() / "fuzz" /
                                        std::filesystem::path(target + "_fuzzer.cpp")))
        << target;
}

TEST(DocsFormats, FuzzTargets_Should_BeFoundIncomplete_When_ARowIsNew) {
  EXPECT_THAT(FindUnfuzzed(WithInventedRow(), FuzzTargets()), ElementsAre("invented"));
  EXPECT_THAT(FindUnfuzzed(WithInventedRow(), FuzzTargets() + "codecs/invented\n"), IsEmpty());
}

TEST(DocsFormats, Folders_Should_EachHaveARow) {
  std::set<std::string> named = {"g4", "messages", "rows", std::string(kIconFolder)}, folders;
  for (const Codec& codec : CodecTable())
    if (HasFolder(codec)) named.insert(codec.name);
  for (const auto& entry :
       std::filesystem::directory_iterator(SourceFolder() / "rasterkit" / "codecs"))
    if (entry.is_directory()) folders.insert(entry.path().filename().string());
  EXPECT_EQ(folders, named);
}

TEST(DocsFormats, InfoTypes_Should_BeTheNamesOfTheTable) {
  const std::vector<std::string> rows =
      FindAll(ReadDocument("docs/cli.md"), "\n(\\| `type` \\|[^\n]*)");
  ASSERT_FALSE(rows.empty());
  for (const Codec& codec : CodecTable())
    EXPECT_THAT(rows.front(), HasSubstr(std::string("`").append(codec.name).append("`")));
}

TEST(DocsFormats, HelpOfConvert_Should_NameTheFormats) {
  const std::string help = UpperCase(OutputOf(RASTERKIT_TOOL " convert --help"));
  for (const Codec& codec : CodecTable()) {
    if (!HasFolder(codec)) continue;
    const std::string extension = std::string(".").append(UpperCase(codec.extensions.front()));
    EXPECT_THAT(help, HasSubstr(codec.encode != nullptr ? extension : UpperCase(codec.name)));
  }
}

TEST(DocsFormats, RefusedOutput_Should_NameTheExtensionsThatAreWritten) {
  const std::string message = OutputOf(RASTERKIT_TOOL " convert in.png out.invented 2>&1");
  for (const Codec& codec : CodecTable())
    for (const std::string_view extension : codec.extensions) {
      if (codec.encode == nullptr || extension.empty()) continue;
      EXPECT_THAT(message, HasSubstr(std::string(".").append(extension)));
    }
}

}  // namespace
}  // namespace rasterkit::test
