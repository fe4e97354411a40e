// The command line: which verbs there are, and what becomes of an error. Each verb has a file of
// its own.

#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "tool/command/exit_code.h"
#include "tool/command/help_format.h"
#include "tool/command/interruption.h"
#include "tool/command/standard_streams.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

/// A result that could not be printed was not delivered (a full disk behind stdout).
int WithFlushedOutput(int code) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return code;
  fmt::print(stderr, "rasterkit: the results could not be written to stdout\n");
  return code == exitDone ? exitOutputNotWritten : code;
}

int RunVerb(const VerbRunner& run) {
  try {
    return WithFlushedOutput(run());
  } catch (const Failure& failure) {
    fmt::print(stderr, "rasterkit: {}\n", failure.what());
    return failure.Code();
  } catch (const std::exception& error) {
    fmt::print(stderr, "rasterkit: {}\n", error.what());
    return exitOutputNotWritten;
  }
}

int Main(int argc, char** argv) {
  CLI::App app(
      "Rasterkit: sets photographs upright, turns pictures, converts between picture types, places "
      "plans on the map.",
      "rasterkit");
  app.set_version_flag("--version", "rasterkit " RASTERKIT_VERSION);
  app.require_subcommand(1);
  app.formatter(std::make_shared<HelpFormat>());
  app.set_help_flag("-h,--help", "print this text");
  app.footer(
      "rasterkit VERB --help explains a verb.\n\n"
      "Inputs come first, the output last. Results go to stdout, everything else to stderr.\n"
      "Exit codes: 0 done, 1 the answer is no, 2 wrong usage, 3 an input cannot be read, 4 an "
      "output\n"
      "was not written, 5 something was not carried over (with --strict), 130 interrupted.\n\n"
      "Example:\n"
      "  rasterkit convert photo.jpg upright.png");
  std::vector<std::pair<const CLI::App*, VerbRunner>> verbs;
  for (const auto add :
       {AddInfoVerb,   AddConvertVerb,   AddRotateVerb,  AddMirrorVerb,     AddCropVerb,
        AddResizeVerb, AddGrayVerb,      AddMonoVerb,    AddBrightnessVerb, AddContrastVerb,
        AddAdjustVerb, AddWhitenVerb,    AddRecolorVerb, AddKeyColorVerb,   AddPdfWhiteVerb,
        AddOpaqueVerb, AddSwapAlphaVerb, AddPaletteVerb, AddCombineVerb,    AddWatermarkVerb,
        AddIconVerb,   AddCompareVerb,   AddGeoTiffVerb, AddExifVerb,       AddPdfVerb,
        AddEditVerb,   AddSaveAsVerb}) {
    VerbRunner run = add(app);
    verbs.emplace_back(app.get_subcommands({}).back(), std::move(run));
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return WithFlushedOutput(app.exit(error) == 0 ? exitDone : exitWrongUsage);
  }
  CatchInterruption();
  for (const auto& [verb, run] : verbs)
    if (verb->parsed()) return RunVerb(run);
  return exitWrongUsage;
}

}  // namespace
}  // namespace rasterkit::tool

int main(int argc, char** argv) {
  rasterkit::tool::PrepareStandardStreams();
  try {
    return rasterkit::tool::Main(argc, argv);
  } catch (const std::exception& error) {
    // Only what happens before a verb runs comes here, such as having no memory for the options.
    std::fprintf(stderr, "rasterkit: %s\n", error.what());
    return rasterkit::tool::exitOutputNotWritten;
  }
}
