#include <memory>

#include "tool/arguments/numbers.h"
#include "tool/command/command_line.h"
#include "tool/command/shared_options.h"
#include "tool/pages/draw_pages.h"
#include "tool/pages/page_list.h"
#include "tool/pictures/recorder.h"
#include "tool/reports/pdf_report.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

constexpr double kLeastDpi = 1, kMostDpi = 20000;

/// The options, and flags that are not yet part of them.
struct PdfArguments {
  PdfOptions options;
  bool gray = false, mono = false;
};

std::string CheckDpi(const std::string& text) {
  const auto dpi = ParseNumber(text);
  if (dpi && *dpi >= kLeastDpi && *dpi <= kMostDpi) return {};
  return "a resolution is 1 to 20000 pixels per inch, not '" + text + "'";
}

void AddPdfOptions(Verb& verb, PdfArguments& arguments) {
  PdfOptions& options = arguments.options;
  verb.Text("--page", "LIST", options.pages, CheckPages,
            "pages to draw, counted from 1: 3, or with --out-dir also 1-3,7 or 5- [1; all with "
            "--out-dir]");
  verb.Real("--dpi", "D", options.dpi, CheckDpi, "resolution in pixels per inch [150]");
  verb.OneOf("--rotate", "R", options.rotate, {-90, 0, 90, 180, 270},
             "turn by -90, 0, 90, 180 or 270 degrees; positive is counter-clockwise [0]");
  const Option gray = verb.Flag("--gray", arguments.gray, "write 8-bit gray");
  const Option mono = verb.Flag("--mono", arguments.mono, "write 1-bit black and white");
  gray.Excludes(mono);
  verb.Number("--threshold", "T", options.threshold, {0, 256},
              "lowest gray value that becomes white, 0 to 256 [125]")
      .Needs(mono);
  verb.Text("--password", "TEXT", options.password, {},
            "password of an encrypted file (other users of the machine may see the command line)");
}

int Run(const PdfArguments& arguments) {
  PdfOptions options = arguments.options;
  if (options.output.files.size() == 1 && options.output.outDir.empty()) {
    return ReportPages(options.output.files[0], options.password, options.dpi, options.output.json);
  }
  if (arguments.gray) options.colors = PageColors::gray;
  if (arguments.mono) options.colors = PageColors::mono;
  return DrawPages(options);
}

}  // namespace

VerbRunner AddPdfVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"pdf",
       "list or draw the pages of a PDF file",
       {"With one file and no output: lists the pages with their sizes.",
        "With an output: draws pages on white, with their annotations and stamps. The pictures "
        "state their resolution. With --out-dir the page number is added to each name: "
        "plan-1.png, plan-2.png and so on."},
       {"rasterkit pdf plan.pdf", "rasterkit pdf plan.pdf plan.png --page 3 --dpi 300",
        "rasterkit pdf letters.pdf --out-dir pages --format tif --mono --page 2-"}});
  const auto arguments = std::make_shared<PdfArguments>();
  PdfOptions& options = arguments->options;
  AddPdfOptions(verb, *arguments);
  AddOutputOptions(verb, options.output, "IN [OUT]");
  RefuseRecord(verb, "pages of PDF files are drawn; 'apply' takes the pictures");
  AddFormat(verb, options.output);
  AddQuality(verb, options.picture);
  AddCompression(verb, options.picture);
  AddThreads(verb, options.picture);
  return [arguments] { return Run(*arguments); };
}

}  // namespace rasterkit::tool
