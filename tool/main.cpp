// The list of verbs, and what happens to an error. Each verb has a file of its own.

#include <cstdio>
#include <exception>
#include <new>
#include <set>
#include <string_view>
#include <vector>

#include "tool/arguments/color_argument.h"
#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"
#include "tool/command/printable.h"
#include "tool/command/standard_streams.h"
#include "tool/reports/worker_report.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

/// Turns success into a failure if the results could not be printed, for example on a full disk.
int WithFlushedOutput(int code) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return code;
  PrintMessage("the results could not be written to stdout");
  return code == exitDone ? exitOutputNotWritten : code;
}

int RunVerb(const VerbRunner& run, const LimitOptions& limits) {
  try {
    SetDefaultLimits(LimitsOf(limits));
    const int code = WithFlushedOutput(run());
    // It can come when every output is complete.
    if (IsInterrupted()) SayInterrupted();
    return code;
  } catch (const Failure& failure) {
    if (failure.Code() == exitInterrupted) {
      SayInterrupted();
    } else {
      PrintMessage(failure.what());
    }
    return failure.Code();
  } catch (const std::bad_alloc&) {
    PrintMessage("out of memory");
    return exitOutputNotWritten;
  } catch (const std::exception& error) {
    PrintMessage(MessageWithOption(error));
    return exitOutputNotWritten;
  }
}

HelpPage ToolHelp() {
  HelpPage help;
  help.description =
      "Rasterkit turns, edits and converts raster pictures, and places them on the map.";
  help.usage = "rasterkit VERB [OPTIONS] FILES";
  help.paragraphs = {
      "Inputs come first, the output comes last. Results go to stdout, everything else to stderr. "
      "'rasterkit VERB --help' explains a verb."};
  help.sections = {
      {"Values",
       {{"COLOR", "RRGGBB or #RRGGBB in hexadecimal digits, or a name: " + ColorNames()},
        {"percent", "a number and %, such as 50% or 12.5%"}}},
      {"Exit codes",
       {{"0", "done"},
        {"1", "the answer is no, or a window was canceled"},
        {"2", "wrong usage"},
        {"3", "an input cannot be read"},
        {"4", "an output was not written"},
        {"5", "something of the input is lost (with --strict)"},
        {"130", "interrupted"}}}};
  help.examples = {"rasterkit convert photo.jpg upright.png"};
  return help;
}

/// `--version -v` in any order.
bool IsLongVersion(int argc, char** argv) {
  const std::set<std::string_view> words(argv + 1, argv + argc);
  return argc == 3 && words == std::set<std::string_view>{"--version", "-v"};
}

int Main(int argc, char** argv) {
  if (IsLongVersion(argc, argv)) {
    std::printf("rasterkit " RASTERKIT_VERSION "\n%s", WorkerReport().c_str());
    return WithFlushedOutput(exitDone);
  }
  CommandLine line(ToolHelp(), "rasterkit " RASTERKIT_VERSION);
  std::vector<VerbRunner> verbs;
  for (const auto add :
       {AddInfoVerb,       AddConvertVerb,   AddApplyVerb,     AddRotateVerb,    AddMirrorVerb,
        AddCropVerb,       AddResizeVerb,    AddThumbnailVerb, AddGrayVerb,      AddMonoVerb,
        AddBrightnessVerb, AddContrastVerb,  AddAdjustVerb,    AddWhitenVerb,    AddRecolorVerb,
        AddKeyColorVerb,   AddPdfWhiteVerb,  AddOpaqueVerb,    AddSwapAlphaVerb, AddPaletteVerb,
        AddCombineVerb,    AddWatermarkVerb, AddIconVerb,      AddCompareVerb,   AddGeoTiffVerb,
        AddExifVerb,       AddPagesVerb,     AddPdfVerb,       AddEditVerb,      AddSaveAsVerb}) {
    verbs.push_back(add(line));
  }
  LimitOptions limits;
  line.AddToAllVerbs([&](Verb& verb) { AddLimits(verb, limits); });
  if (const auto code = line.Parse(argc, argv)) return WithFlushedOutput(*code);
  CatchInterruption();
  return RunVerb(verbs.at(line.ChosenVerb()), limits);
}

}  // namespace
}  // namespace rasterkit::tool

int main(int argc, char** argv) {
  rasterkit::tool::PrepareStandardStreams();
  try {
    return rasterkit::tool::Main(argc, argv);
  } catch (const std::exception& error) {
    // Errors before a verb runs, such as too little memory for the options.
    std::fprintf(stderr, "rasterkit: %s\n", error.what());
    return rasterkit::tool::exitOutputNotWritten;
  }
}
