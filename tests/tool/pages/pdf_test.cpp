#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

#include "tests/support/corpus.h"
#include "tests/support/pdf_file.h"
#include "tests/support/same_pixels.h"
#include "tests/support/sanitizers.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

#ifdef RASTERKIT_HAS_PDF
constexpr bool kHasPdf = true;
#else
constexpr bool kHasPdf = false;
#endif

class CliPdf : public testing::Test {
 protected:
  void SetUp() override {
    if (!kHasPdf) GTEST_SKIP() << "built without what draws PDF pages";
    WriteText(folder_ / "plan.pdf", PdfText({Page("1 0 0"), Page("0 1 0"), Page("0 0 1")}));
  }

  /// A page of 0.5 x 1 inch; its top left quarter inch is colored.
  static PdfPageText Page(const std::string& color) {
    return {"0 0 36 72", PdfRectangle(color, 0, 54, 18, 18)};
  }

  ToolResult Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "pdf");
    return RunTool(arguments);
  }

  std::string In(const std::string& name) const { return folder_ / name; }

  TempFolder folder_;
};

TEST_F(CliPdf, Page_Should_BeDrawn_When_OneOutputIsNamed) {
  const ToolResult result = Run({In("plan.pdf"), In("out.png"), "--page", "2", "--dpi", "200"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "rasterkit: " + In("plan.pdf") +
                            ": page 2 of 3: 100 x 200 pixels at 200 dpi, 1 MiB of memory\n");
  TBitmap expected;
  expected.SetPixelFormat(pf24bit);
  expected.SetSize(100, 200);
  expected.Canvas().Brush.Color = 0x00FF00;
  expected.Canvas().FillRect({0, 0, 50, 50});
  const Raster page = LoadFile(In("out.png"));
  EXPECT_TRUE(SamePixels(expected.Content(), page));
  EXPECT_NEAR(page.resolution.x, 200, 0.01);
}

TEST_F(CliPdf, FirstPage_Should_BeDrawnAt150Dpi_When_NothingIsSaid) {
  EXPECT_EQ(Run({In("plan.pdf"), In("out.bmp")}).code, 0);
  const Raster page = LoadFile(In("out.bmp"));
  EXPECT_EQ(page.Width(), 75);
  EXPECT_EQ(page.Height(), 150);
  EXPECT_EQ(page.PixelColor(10, 10), 0x0000FFu);
}

TEST_F(CliPdf, LargePage_Should_TakeFourBytesAPixelAtMost_When_ItIsDrawnAndWritten) {
  if (IsSanitized()) GTEST_SKIP() << "the sanitizers' own memory counts as well";
  const ToolResult result = Run({In("plan.pdf"), In("out.bmp"), "--dpi", "8000"});
  EXPECT_EQ(result.code, 0) << result.err;
  constexpr uint64_t kPixels = 4000 * 8000;
  EXPECT_EQ(std::filesystem::file_size(In("out.bmp")), 54 + 3 * kPixels);
  EXPECT_LE(result.peakMemory, 4 * kPixels + (uint64_t{64} << 20));
}

TEST_F(CliPdf, Pages_Should_BeNumbered_When_TheyGoIntoAFolder) {
  EXPECT_EQ(Run({In("plan.pdf"), "--out-dir", In("out")}).code, 0);
  EXPECT_TRUE(std::filesystem::exists(In("out/plan-1.png")));
  EXPECT_EQ(LoadFile(In("out/plan-3.png")).PixelColor(10, 10), 0xFF0000u);
  const ToolResult some = Run({In("plan.pdf"), "--out-dir", In("some"), "--page", "3,1-2", "--type",
                               "tif", "--json", "--jobs", "2"});
  EXPECT_EQ(some.code, 0) << some.err;
  const std::vector<json> lines = JsonLines(some.out);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0]["page"], 3);
  EXPECT_EQ(lines[0]["output"], In("some/plan-3.tif"));
  EXPECT_EQ(lines[0]["type"], "tiff");
  EXPECT_EQ(lines[0]["bits"], 24);
  EXPECT_EQ(lines[2]["page"], 2);
  EXPECT_THAT(some.err, HasSubstr("3 pages of 3, the largest: 75 x 150 pixels"));
}

TEST_F(CliPdf, Numbers_Should_HaveTheDigitsOfTheLast_When_ThereAreTen) {
  WriteText(In("ten.pdf"), PdfText(std::vector<PdfPageText>(10)));
  EXPECT_EQ(Run({In("ten.pdf"), "--out-dir", In("out"), "--page", "9-", "--dpi", "20"}).code, 0);
  EXPECT_TRUE(std::filesystem::exists(In("out/ten-09.png")));
  EXPECT_TRUE(std::filesystem::exists(In("out/ten-10.png")));
  EXPECT_FALSE(std::filesystem::exists(In("out/ten-08.png")));
}

TEST_F(CliPdf, Rotate_Should_TurnCounterClockwise_When_Positive) {
  EXPECT_EQ(Run({In("plan.pdf"), In("a.png"), "--rotate", "90", "--dpi", "100"}).code, 0);
  const Raster left = LoadFile(In("a.png"));
  EXPECT_EQ(left.Width(), 100);
  EXPECT_EQ(left.PixelColor(5, 45), 0x0000FFu);
  EXPECT_EQ(Run({In("plan.pdf"), In("b.png"), "--rotate", "-90", "--dpi", "100"}).code, 0);
  EXPECT_EQ(LoadFile(In("b.png")).PixelColor(95, 5), 0x0000FFu);
  EXPECT_EQ(Run({In("plan.pdf"), In("c.png"), "--rotate", "180", "--dpi", "100"}).code, 0);
  EXPECT_EQ(LoadFile(In("c.png")).PixelColor(45, 95), 0x0000FFu);
}

TEST_F(CliPdf, Colors_Should_GoDown_When_GrayOrMonoIsAsked) {
  EXPECT_EQ(Run({In("plan.pdf"), In("gray.png"), "--gray", "--dpi", "100"}).code, 0);
  const Raster gray = LoadFile(In("gray.png"));
  EXPECT_EQ(gray.Format(), pf8bit);
  EXPECT_EQ(gray.PixelColor(5, 5), 0x4B4B4Bu);
  EXPECT_EQ(Run({In("plan.pdf"), In("mono.png"), "--mono", "--dpi", "100"}).code, 0);
  const Raster mono = LoadFile(In("mono.png"));
  EXPECT_EQ(mono.Format(), pf1bit);
  EXPECT_EQ(mono.PixelColor(5, 5), 0x000000u);
  EXPECT_EQ(mono.PixelColor(45, 5), 0xFFFFFFu);
  EXPECT_EQ(
      Run({In("plan.pdf"), In("light.png"), "--mono", "--threshold", "60", "--dpi", "100"}).code,
      0);
  EXPECT_EQ(LoadFile(In("light.png")).PixelColor(5, 5), 0xFFFFFFu);
}

TEST_F(CliPdf, List_Should_ShowPointsMillimetersAndPixels_When_ThereIsNoOutput) {
  WriteText(In("two.pdf"), PdfText({{"0 0 595.276 841.89"}, {"0 0 72 144", "", "", "/Rotate 90"}}));
  const ToolResult text = Run({In("two.pdf")});
  EXPECT_EQ(text.code, 0) << text.err;
  EXPECT_EQ(text.out, In("two.pdf") +
                          ": 2 pages, at 150 dpi\n"
                          "  page 1: 595.276 x 841.89 points, 210.0 x 297.0 mm, 1240 x 1754 pixels,"
                          " 9 MiB\n"
                          "  page 2: 144 x 72 points, 50.8 x 25.4 mm, 300 x 150 pixels, 1 MiB\n");
  const std::vector<json> lines = JsonLines(Run({In("two.pdf"), "--json", "--dpi", "100"}).out);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0]["ok"], true);
  EXPECT_EQ(lines[0]["dpi"], 100);
  const json& page = lines[0]["pages"].at(0);
  EXPECT_EQ(page["page"], 1);
  EXPECT_EQ(page["points"], json({595.276, 841.89}));
  EXPECT_EQ(page["millimetres"], json({210.0, 297.0}));
  EXPECT_EQ(page["pixels"], json({827, 1169}));
  EXPECT_EQ(page["bytes"], 827 * 1169 * 4);
  EXPECT_EQ(page["error"], json());
}

TEST_F(CliPdf, WrongUsage_Should_Exit2AndWriteNothing) {
  const std::vector<std::vector<std::string>> lines = {
      {In("plan.pdf"), In("o.png"), "--page", "1-2"},
      {In("plan.pdf"), In("o.png"), "--page", "0"},
      {In("plan.pdf"), In("o.png"), "--page", "2-1"},
      {In("plan.pdf"), In("o.png"), "--page", "x"},
      {In("plan.pdf"), In("o.png"), "--page", ""},
      {In("plan.pdf"), In("o.png"), "--page", "1,"},
      {In("plan.pdf"), In("o.png"), "--dpi", "0"},
      {In("plan.pdf"), In("o.png"), "--dpi", "nan"},
      {In("plan.pdf"), In("o.png"), "--rotate", "45"},
      {In("plan.pdf"), In("o.png"), "--gray", "--mono"},
      {In("plan.pdf"), In("o.png"), "--threshold", "9"},
      {In("plan.pdf"), In("o.xyz")},
      {In("plan.pdf"), In("plan.pdf"), In("o.png")},
      {In("plan.pdf"), "--out-dir", In("o"), "--page", "1,1"}};
  for (const auto& line : lines) {
    const ToolResult result = Run(line);
    EXPECT_EQ(result.code, 2) << testing::PrintToString(line) << result.err;
    EXPECT_EQ(result.out, "");
  }
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"plan.pdf"});
}

TEST_F(CliPdf, BadFiles_Should_Exit3InWords) {
  WriteText(In("secret.pdf"), EncryptedPdf(PdfReader::withPassword));
  WriteText(In("empty.pdf"), "");
  WriteText(In("text.pdf"), "no PDF");
  WriteText(In("damaged.pdf"), "%PDF-1.7\nnothing");
  const std::pair<const char*, const char*> faults[] = {
      {"secret.pdf", "PDF: the file is encrypted and needs a password"},
      {"empty.pdf", "PDF: the file is empty"},
      {"text.pdf", "PDF: the file is not a PDF file"},
      {"damaged.pdf", "PDF: the file is damaged"},
      {"missing.pdf", "No such file"}};
  for (const auto& [name, fault] : faults) {
    for (const auto& line : {std::vector<std::string>{In(name)}, {In(name), In("o.png")}}) {
      const ToolResult result = Run(line);
      EXPECT_EQ(result.code, 3) << name;
      EXPECT_EQ(result.out, "");
      EXPECT_THAT(result.err, HasSubstr("rasterkit: " + In(name) + ": "));
      EXPECT_THAT(result.err, HasSubstr(fault));
    }
  }
  EXPECT_FALSE(std::filesystem::exists(In("o.png")));
  const std::vector<json> lines = JsonLines(Run({In("empty.pdf"), "--json"}).out);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0]["ok"], false);
  EXPECT_THAT(lines[0]["error"].get<std::string>(), HasSubstr("is empty"));
}

TEST_F(CliPdf, Password_Should_OpenTheFile_When_ItIsRight) {
  WriteText(In("secret.pdf"), EncryptedPdf(PdfReader::withPassword));
  EXPECT_EQ(Run({In("secret.pdf"), In("o.png"), "--password", "secret"}).code, 0);
  const ToolResult wrong = Run({In("secret.pdf"), In("p.png"), "--password", "other"});
  EXPECT_EQ(wrong.code, 3);
  EXPECT_THAT(wrong.err, HasSubstr("the password is wrong"));
}

TEST_F(CliPdf, Pages_Should_BeRefused_When_ThereIsNoneOrItIsTooLarge) {
  const ToolResult none = Run({In("plan.pdf"), In("o.png"), "--page", "9"});
  EXPECT_EQ(none.code, 4);
  EXPECT_THAT(none.err, HasSubstr("there is no page 9, the file has 3"));
  const ToolResult beyond =
      Run({In("plan.pdf"), "--out-dir", In("out"), "--page", "2-5", "--continue"});
  EXPECT_EQ(beyond.code, 4);
  EXPECT_THAT(beyond.err, HasSubstr("there is no page 4, the file has 3"));
  EXPECT_TRUE(std::filesystem::exists(In("out/plan-3.png")));
  WriteText(In("huge.pdf"), PdfText({{"0 0 14400 14400"}}));
  const ToolResult huge = Run({In("huge.pdf"), In("o.png"), "--dpi", "300"});
  EXPECT_EQ(huge.code, 4);
  EXPECT_THAT(huge.err, HasSubstr("60000 x 60000 pixels"));
  EXPECT_THAT(Run({In("huge.pdf"), "--dpi", "300"}).out, HasSubstr("cannot be drawn: "));
  EXPECT_FALSE(std::filesystem::exists(In("o.png")));
}

TEST_F(CliPdf, GoodFiles_Should_BeDrawn_When_ABadOneIsBetweenThem) {
  WriteText(In("bad.pdf"), "no PDF");
  WriteText(In("last.pdf"), PdfText({Page("1 0 0")}));
  const ToolResult result =
      Run({In("plan.pdf"), In("bad.pdf"), In("last.pdf"), "--out-dir", In("out"), "--continue"});
  EXPECT_EQ(result.code, 3);
  EXPECT_TRUE(std::filesystem::exists(In("out/plan-3.png")));
  EXPECT_TRUE(std::filesystem::exists(In("out/last-1.png")));
  EXPECT_FALSE(std::filesystem::exists(In("out/bad-1.png")));
}

TEST_F(CliPdf, Output_Should_Stay_When_ItExistsAlready) {
  WriteText(In("o.png"), "old");
  EXPECT_EQ(Run({In("plan.pdf"), In("o.png")}).code, 4);
  EXPECT_EQ(ReadBytes(In("o.png")).size(), 3u);
  EXPECT_EQ(Run({In("plan.pdf"), In("o.png"), "--overwrite"}).code, 0);
}

TEST_F(CliPdf, Interruption_Should_EndAtOnceAndLeaveNothing_When_PageIsDrawn) {
  std::mt19937 random(3);
  const auto place = [&] { return random() % 720; };
  std::string content;
  for (int i = 0; i < 20000; ++i) {
    content += fmt::format("{} {} m {} {} {} {} {} {} c S ", place(), place(), place(), place(),
                           place(), place(), place(), place());
  }
  WriteText(In("slow.pdf"), PdfText({{"0 0 720 720", content}}));
  ToolProcess process({"pdf", In("slow.pdf"), In("o.png"), "--dpi", "600"});
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  process.Interrupt();
  EXPECT_EQ(process.Wait().code, 130);
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"plan.pdf", "slow.pdf"}));
}

TEST_F(CliPdf, Info_Should_CountThePages_When_FileIsAPdf) {
  const ToolResult result = RunTool({"info", "--json", In("plan.pdf")});
  EXPECT_EQ(result.code, 0) << result.err;
  const json facts = JsonLines(result.out).at(0);
  EXPECT_EQ(facts["type"], "pdf");
  EXPECT_EQ(facts["ok"], true);
  EXPECT_EQ(facts["pages"], 3);
  for (const char* name : {"width", "height", "bits", "palette_entries", "transparent", "dpi",
                           "orientation", "rotation", "grid"})
    EXPECT_EQ(facts[name], json()) << name;
  EXPECT_THAT(RunTool({"info", In("plan.pdf")}).out,
              HasSubstr("plan.pdf: pdf, 3 pages, the first 12.7 x 25.4 mm, "));
  WriteText(In("secret.pdf"), EncryptedPdf(PdfReader::withPassword));
  const ToolResult secret = RunTool({"info", "--json", In("secret.pdf")});
  EXPECT_EQ(secret.code, 3);
  EXPECT_EQ(JsonLines(secret.out).at(0)["type"], "pdf");
  EXPECT_EQ(JsonLines(secret.out).at(0)["error"],
            "PDF: the file is encrypted and needs a password");
}

TEST_F(CliPdf, Info_Should_RefuseAPdf_When_ItIsCalledAPicture) {
  for (const char* name : {"plan.tif", "plan", "plan.pdf.jpg"}) {
    std::filesystem::copy_file(In("plan.pdf"), In(name));
    const ToolResult result = RunTool({"info", "--json", In(name)});
    EXPECT_EQ(result.code, 3) << name;
    const json facts = JsonLines(result.out).at(0);
    EXPECT_EQ(facts["type"], "pdf") << name;
    EXPECT_EQ(facts["ok"], false) << name;
    EXPECT_THAT(std::string(facts["error"]), HasSubstr("must end in .pdf")) << name;
  }
  std::filesystem::copy_file(In("plan.pdf"), In("LARGE.PDF"));
  EXPECT_EQ(RunTool({"info", In("LARGE.PDF")}).code, 0);
}

TEST_F(CliPdf, EveryFile_Should_EndInWords_When_ItIsOfTheCorpus) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  for (const auto& entry : CorpusEntries("pdf")) {
    const ToolResult result = Run(
        {(CorpusFolder() / entry.at("path")).string(), In("c.png"), "--dpi", "40", "--overwrite"});
    const bool isSecret = entry.at("exercises").find("needs a password") != std::string::npos;
    EXPECT_TRUE(result.code == 3 || (result.code == 0 && !isSecret)) << entry.at("path");
    EXPECT_NE(result.err, "") << entry.at("path");
  }
}

/// The tool runs without the worker program, and without the PDF library; librasterkit alone is
/// found through the loader's path.
class CliPdfAbsent : public testing::TestWithParam<bool> {};

TEST_P(CliPdfAbsent, Pdf_Should_SayWhatIsMissing_When_APartIsNotInstalled) {
  if (IsSanitized()) GTEST_SKIP() << "libraries are looked for on the program's path";
  const TempFolder folder;
  const bool hasWorker = GetParam();
  if (hasWorker) std::filesystem::copy_file(RASTERKIT_WORKER_FILE, folder / "rasterkit-worker");
  WriteText(folder / "plan.pdf", PdfText({{}}));
  const std::filesystem::path tool = RASTERKIT_TOOL;
  std::filesystem::copy_file(tool, folder / "tool");
  std::filesystem::copy_file(std::filesystem::canonical(RASTERKIT_LIBRARY),
                             folder / "librasterkit.so.0");
  const std::string command =
      "cd " + folder.Path() + " && LD_LIBRARY_PATH=" + folder.Path() + " ./tool ";
  const int drawn = std::system((command + "pdf plan.pdf o.png 2> error.txt").c_str());
  EXPECT_EQ(WEXITSTATUS(drawn), 3);
  const std::vector<uint8_t> error = ReadBytes(folder / "error.txt");
  EXPECT_THAT(std::string(error.begin(), error.end()),
              AllOf(HasSubstr("plan.pdf: the component for PDF files is not installed"),
                    HasSubstr(hasWorker ? "there is no librasterkit-pdf.so" : "rasterkit-worker")));
  const int asked =
      std::system((command + "info --json plan.pdf > facts.json 2> error.txt").c_str());
  EXPECT_EQ(WEXITSTATUS(asked), 0);
  const std::vector<uint8_t> out = ReadBytes(folder / "facts.json");
  const json facts = json::parse(out.begin(), out.end());
  EXPECT_EQ(facts["type"], "pdf");
  EXPECT_EQ(facts["ok"], true);
  EXPECT_EQ(facts["pages"], json());
  EXPECT_EQ(facts["warnings"].size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(WithoutAndWithTheWorker, CliPdfAbsent, testing::Bool());

/// Few bytes that need endless memory; the tool's own limit is that of the process.
TEST_F(CliPdf, Draw_Should_EndInWords_When_TheFileIsABomb) {
  if (IsSanitized()) GTEST_SKIP() << "memory is not limited";
  WriteText(In("bomb.pdf"), NestedFormsPdf(12, 10));
  // A gibibyte for each process, so that the test does not take all memory of the machine.
  const std::string command = std::string("ulimit -v 1048576; exec ") + RASTERKIT_TOOL + " pdf " +
                              In("bomb.pdf") + " " + In("b.png") + " 2> " + In("error.txt");
  const int status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 4);
  const std::vector<uint8_t> error = ReadBytes(In("error.txt"));
  EXPECT_THAT(
      std::string(error.begin(), error.end()),
      HasSubstr("bomb.pdf: page 1: PDF: reading the file takes more memory than the limit"));
  EXPECT_FALSE(std::filesystem::exists(In("b.png")));
}

}  // namespace
}  // namespace rasterkit::test
