#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <fmt/core.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/batch.h"
#include "tool/command/command_line.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/output_type.h"
#include "tool/command/printable.h"
#include "tool/pictures/change_picture.h"
#include "tool/pictures/recipe_options.h"
#include "tool/pictures/recorder.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

struct SaveAsOptions {
  std::string file;
  bool asksForPixels = false;
  bool strict = false;
  bool noSync = false;
  /// The file of --record, and whether it may be replaced.
  std::string record;
  bool overwrite = false;
};

/// The name of the picture, with the extension of PNG, which is lossless, if files of its type are
/// not written.
std::string SuggestedName(const std::string& file, PictureType type) {
  const Codec* const codec = FindCodec(type);
  const bool isWritten = codec != nullptr && codec->encode != nullptr;
  if (!isWritten) return ChangeFileExt(file, ".png");
  if (WritableType(file) == type) return file;
  return ChangeFileExt(file, "." + std::string(codec->extensions.front()));
}

int Run(const SaveAsOptions& options) {
  const std::string file = std::filesystem::absolute(ToPath(options.file)).string();
  Picture picture = OpenPicture(file);
  if (!options.record.empty()) CheckRecord(options.record, options.overwrite, {{file, file}});
  const std::filesystem::path folder = std::filesystem::current_path();
  const Desktop desktop;
  std::optional<RecipeResize> size;
  if (options.asksForPixels) {
    size = desktop.ChooseSize(picture, {}, file);
    DoWork({file, file}, [&] { ApplyRecipeStep(picture, *size); });
  }
  SavingStart start;
  start.file = SuggestedName(file, picture.SourceType());
  const SavingChoice choice = desktop.ChooseSaving(picture, start, file);
  // A file dialog may change the current folder.
  std::filesystem::current_path(folder);
  OutputOptions output;
  output.overwrite = choice.mayReplace;
  output.strict = options.strict;
  output.noSync = options.noSync;
  OutputOptions recording = output;
  recording.overwrite = options.overwrite;
  recording.record = options.record;
  const std::vector<Job> jobs = {{file, choice.file, 0, output.Saving(), choice.save.type}};
  PictureOptions saving;
  AddSave(saving, choice.save);
  StartRecording(recording, saving, jobs);
  const auto save = [&](const Job& job) {
    return ChangePicture(job, saving, false, [&](PictureWork& work) {
      if (size) work.Add(*size);
    });
  };
  const int code = RunJobs(output, jobs, save);
  if (code == exitDone || code == exitNotCarriedOver) fmt::print("{}\n", OnOneLine(choice.file));
  return FinishRecording(recording, saving, code);
}

}  // namespace

VerbRunner AddSaveAsVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"save-as",
       "save a picture under a name chosen in a window",
       {"The window lets you choose folder, name, file type and settings such as depth and "
        "quality. They start with those of FILE. What would be lost, and the size of the file, are "
        "shown "
        "before you save.",
        "The picture is turned upright and written, and its name is printed. Canceling the window "
        "ends with exit code 1."},
       {"rasterkit save-as photo.jpg", "rasterkit save-as plan.tif --pixels"}});
  const auto options = std::make_shared<SaveAsOptions>();
  verb.File("FILE", options->file, "a picture", true);
  verb.Flag("--pixels", options->asksForPixels,
            "let a window choose another size in pixels before");
  verb.Flag("--no-sync", options->noSync,
            "do not wait until the output is on the disk; a power failure can lose it")
      .In("Files and results");
  verb.Flag("--strict", options->strict, "exit with code 5 if something of the input is lost")
      .In("Files and results");
  const Option record = AddRecord(verb, options->record);
  verb.Flag("--overwrite", options->overwrite, "replace an existing recipe of --record")
      .In("Files and results")
      .Needs(record);
  AddIsolate(verb);
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
