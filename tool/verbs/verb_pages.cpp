#include <memory>

#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/shared_options.h"
#include "tool/pages/arrange_pages.h"
#include "tool/pages/page_list.h"
#include "tool/pictures/recorder.h"
#include "tool/reports/document_report.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

int Run(const ArrangeOptions& options) {
  const bool isChange =
      !options.order.empty() || !options.removed.empty() || !options.picture.edit.IsEmpty();
  const bool isQuestion =
      options.output.files.size() == 1 && options.output.outDir.empty() && !options.output.inPlace;
  if (!isQuestion) return ArrangePages(options);
  if (isChange) {
    throw Failure(exitWrongUsage, "--order, --remove and --strip require an output, or --in-place");
  }
  return ReportDocument(options.output.files[0], options.output.json);
}

}  // namespace

VerbRunner AddPagesVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"pages",
       "list, split, join or reorder the pages of TIFF files",
       {"With one file and no output: lists its pages.",
        "With --out-dir: writes each page as a file, scan-1.tif, scan-2.tif and so on.",
        "With inputs and an output, which comes last: writes the pages of all inputs as one TIFF "
        "file. Inputs may be pictures of any type. --order and --remove choose among the pages of "
        "all inputs, counted through.",
        "Pages of TIFF files are copied: their compressed pixels byte for byte, with every tag and "
        "their smaller copies and masks. Other pictures are compressed without loss, black and "
        "white ones with CCITT G4, the others with Deflate."},
       {"rasterkit pages scans.tif", "rasterkit pages scans.tif --out-dir sheets",
        "rasterkit pages cover.png letter.tif photo.jpg all.tif",
        "rasterkit pages scans.tif sorted.tif --order 3,1-2,5-",
        "rasterkit pages scans.tif --in-place --remove 2"}});
  const auto options = std::make_shared<ArrangeOptions>();
  options->output.isForPictures = true;
  verb.Text("--order", "LIST", options->order, CheckOrder,
            "pages of the output in their order: 3,1-2,5- or last, or reverse; a page can be "
            "absent or given again [all]");
  verb.Text("--remove", "LIST", options->removed, CheckPages, "pages that the output lacks");
  AddOutputOptions(verb, options->output, "IN... [OUT]",
                   "one file to list it; or inputs, then the output; with --out-dir or --in-place "
                   "inputs alone");
  RefuseRecord(verb, "a recipe changes one picture; pages are copied");
  AddIsolate(verb);
  AddCompression(verb, options->picture);
  AddStrip(verb, options->picture);
  AddThreads(verb, options->picture);
  AddFlow(verb, options->picture);
  return [options] {
    options->picture.showsProgress = !options->output.quiet && options->output.outDir.empty();
    return Run(*options);
  };
}

}  // namespace rasterkit::tool
