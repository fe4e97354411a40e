#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <string>

#include <fmt/format.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/arguments/numbers.h"
#include "tool/command/command_line.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/printable.h"
#include "tool/pages/pdf_file.h"
#include "tool/pictures/recorder.h"
#include "tool/reports/loss_report.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

constexpr int kMostPages = 1'000'000;
constexpr double kMostDpi = 20000;

struct EditOptions {
  std::string file;
  int page = 1;
  /// 0: as remembered.
  double dpi = 0;
  /// The file of --record, and whether it may be replaced.
  std::string record;
  bool overwrite = false;
};

/// A program that a desktop opens with any file reads it in a worker process.
Isolation EditIsolation() {
  return ReadingIsolation(Isolation::process);
}

std::string CheckDpi(const std::string& text) {
  const auto dpi = ParseNumber(text);
  if (dpi && *dpi >= 1 && *dpi <= kMostDpi) return {};
  return "a resolution is 1 to 20000 pixels per inch, not '" + text + "'";
}

void RequirePage(const std::string& file, int page, int count) {
  if (page <= count) return;
  throw Failure(exitInputUnreadable,
                fmt::format("{}: there is no page {}: the file has {}", file, page, count));
}

/// Reads headers alone. Throws Failure(exitInputUnreadable).
void RequireReadable(const std::string& file, int page) {
  if (IsPdfName(file)) return RequirePage(file, page, OpenPdf(file, "")->PageCount());
  OpenOptions options;
  options.isolation = EditIsolation();
  try {
    RequirePage(file, page, Picture::Open(file, options).Pages());
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": is not a readable picture: " + error.Reason());
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": out of memory");
  }
}

/// Also shows the error in a window: a user who chose the file in a window or in a desktop menu
/// sees no terminal.
void RequireReadableOrTell(const Desktop& desktop, const std::string& file, int page) {
  try {
    RequireReadable(file, page);
  } catch (const Failure& failure) {
    desktop.Tell(failure.what());
    throw;
  }
}

/// Prints what each file that is written lacks, and its name.
void SaySaved(const std::string& file, const Report& report) {
  JobResult result;
  result.losses = report.losses;
  const std::string lost = LossText(result);
  if (!lost.empty()) PrintMessage(fmt::format("{}: lost: {}", file, lost));
  fmt::print("{}\n", OnOneLine(file));
  // A program that reads along sees each file as soon as it is there.
  std::fflush(stdout);
}

/// A recipe is for one picture: 'apply' must be told which page and how it is drawn.
void SayWhatApplyNeeds(const EditedPicture& edited, const std::string& record) {
  std::vector<std::string> needs;
  if (edited.page > 1) needs.push_back(fmt::format("--page {}", edited.page));
  if (edited.dpi > 0) needs.push_back(fmt::format("--dpi {:.10g}", edited.dpi));
  if (needs.empty()) return;
  const char* const user = edited.sourceType == PictureType::pdf
                               ? "with which 'rasterkit pdf' draws the page for 'rasterkit apply'"
                               : "which 'rasterkit apply' needs too";
  PrintMessage(fmt::format("{}: does not hold {}, {}", record, fmt::join(needs, " "), user));
}

void Record(const EditedPicture& edited, const EditOptions& options, const std::string& record,
            const std::vector<Job>& saved) {
  Recorder recorder({});
  recorder.Take(edited.recipe);
  const std::string text = recorder.Text(record);
  // The window can write files that were not known when it opened.
  CheckRecord(record, options.overwrite, saved);
  WriteRecipeFile(record, text, {options.overwrite});
  SayWhatApplyNeeds(edited, record);
}

std::string FullName(const std::string& file) {
  return std::filesystem::absolute(ToPath(file)).string();
}

int Run(const EditOptions& options) {
  std::string file = options.file;
  // Check the files before a window opens.
  if (!file.empty() && !FileExists(file)) {
    throw Failure(exitInputUnreadable, file + ": no such file");
  }
  if (!options.record.empty()) CheckRecord(options.record, options.overwrite, {{file, file}});
  // A file dialog may change the current folder.
  const std::string record = options.record.empty() ? "" : FullName(options.record);
  const Desktop desktop;
  if (file.empty()) {
    file = desktop.ChooseFile();
    if (!record.empty()) CheckRecord(record, options.overwrite, {{file, file}});
  }
  file = FullName(file);
  RequireReadableOrTell(desktop, file, options.page);
  EditPictureOptions editing;
  editing.page = options.page;
  editing.dpi = options.dpi;
  editing.isolation = EditIsolation();
  std::vector<Job> jobs = {{file, file}};
  editing.onSaved = [&](const std::string& saved, const Recipe&, const Report& report) {
    jobs.push_back({saved, saved});
    SaySaved(saved, report);
  };
  const EditedPicture edited = desktop.EditPicture(file, editing);
  if (!record.empty()) Record(edited, options, record, jobs);
  return exitDone;
}

}  // namespace

VerbRunner AddEditVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"edit",
       "edit a picture or a page of a PDF file in a window",
       {"The window turns, mirrors, crops and resizes the picture and changes its colors, with "
        "undo and redo. A page of a PDF file and a metafile are drawn at the resolution that you "
        "choose.",
        "OK writes the file that was opened, after a question, with its type and quality; 'Save "
        "as' writes another one. A page of a PDF file is written as a picture. The name of each "
        "file "
        "that is written is printed on stdout, and what it lacks on stderr. If nothing was "
        "written, the exit code is 1.",
        "--record writes the steps that led to the file which was written last as a recipe: "
        "'rasterkit apply' does the same to any number of pictures.",
        "Without FILE a window lets you choose one. If the file cannot be opened, a window says "
        "so, and the exit code is 3.",
        "The file is read in a process of its own, which a damaged or hostile file cannot leave."},
       {"rasterkit edit photo.jpg", "rasterkit edit plan.pdf --page 3 --dpi 300",
        "rasterkit edit scan1.tif --record clean.json"}});
  const auto options = std::make_shared<EditOptions>();
  verb.File("FILE", options->file, "a picture or a PDF file", false);
  verb.Number("--page", "N", options->page, {1, kMostPages},
              "page of a PDF or TIFF file that is shown first, counted from 1 [1]");
  verb.Real("--dpi", "D", options->dpi, CheckDpi,
            "resolution at which a page of a PDF file or a metafile is drawn first, in pixels per "
            "inch [the one chosen last]");
  const Option record = AddRecord(verb, options->record);
  verb.Flag("--overwrite", options->overwrite, "replace an existing recipe of --record")
      .In("Files and results")
      .Needs(record);
  AddNoIsolate(verb);
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
