#include <memory>

#include "tool/command/numbers.h"
#include "tool/pages/draw_pages.h"
#include "tool/pages/page_list.h"
#include "tool/reports/pdf_report.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

constexpr double kLeastDpi = 1, kMostDpi = 20000;

/// (A range of the command line's library takes what is no number.)
std::string CheckDpi(const std::string& text) {
  const auto dpi = ParseNumber(text);
  if (dpi && *dpi >= kLeastDpi && *dpi <= kMostDpi) return {};
  return "pixels an inch are a number from 1 to 20000, not '" + text + "'";
}

void AddPdfOptions(CLI::App& verb, PdfOptions& options) {
  verb.add_option("--page", options.pages,
                  "pages to draw, counted from 1: 3, or 1-3,7 or 5- with --out-dir [1; all with "
                  "--out-dir]")
      ->check(CheckPages)
      ->type_name("LIST");
  verb.add_option("--dpi", options.dpi, "pixels an inch [150]")->check(CheckDpi)->type_name("D");
  verb.add_option("--rotate", options.rotate,
                  "turn by -90, 0, 90, 180 or 270 degrees, positive counter-clockwise [0]")
      ->check(CLI::IsMember({-90, 0, 90, 180, 270}))
      ->type_name("R");
  CLI::Option* const gray = verb.add_flag_callback(
      "--gray", [&options] { options.colors = PageColors::gray; }, "8-bit grey");
  CLI::Option* const mono = verb.add_flag_callback(
      "--mono", [&options] { options.colors = PageColors::mono; }, "1-bit black and white");
  gray->excludes(mono);
  verb.add_option("--threshold", options.threshold,
                  "of --mono: grey value from which on a pixel is white, 0 to 256 [125]")
      ->check(CLI::Range(0, 256))
      ->needs(mono)
      ->type_name("T");
  verb.add_option("--password", options.password,
                  "of an encrypted file (other users of the machine may see the command line)")
      ->type_name("TEXT");
}

int Run(const PdfOptions& options) {
  if (options.output.files.size() == 1 && options.output.outDir.empty())
    return ReportPages(options.output.files[0], options.password, options.dpi, options.output.json);
  return DrawPages(options);
}

}  // namespace

VerbRunner AddPdfVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("pdf", "list or draw the pages of a PDF file");
  verb.group("Verbs");
  verb.footer(
      "One file and no output: lists the pages with their sizes. Pages are drawn on white, with "
      "their notes and stamps,\n"
      "and bear their resolution. With --out-dir each page gets a number: plan-1.png, plan-2.png "
      "...\n\n"
      "Examples:\n"
      "  rasterkit pdf plan.pdf\n"
      "  rasterkit pdf plan.pdf plan.png --page 3 --dpi 300\n"
      "  rasterkit pdf letters.pdf --out-dir pages --type tif --mono --page 2-");
  const auto options = std::make_shared<PdfOptions>();
  AddPdfOptions(verb, *options);
  AddOutputOptions(verb, options->output);
  verb.get_option("files")->type_name("IN [OUT]");
  AddType(verb, options->output);
  AddQuality(verb, options->picture);
  AddCompression(verb, options->picture);
  AddThreads(verb, options->picture);
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
