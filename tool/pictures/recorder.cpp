#include "tool/pictures/recorder.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/commit_queue.h"
#include "tool/command/exit_code.h"
#include "tool/command/output_file.h"
#include "tool/command/output_type.h"
#include "tool/command/printable.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/change_picture.h"
#include "tool/pictures/metafile_output.h"

namespace rasterkit::tool {
namespace {

constexpr const char* kFiles = "Files and results";

/// The type that a recipe states: the one that was typed, or that of an output that has another
/// type than its input.
std::optional<PictureType> TypeOf(const std::string& format, const PictureWork& work) {
  if (!format.empty()) return WritableType((format.starts_with('.') ? "x" : "x.") + format);
  if (work.job.type || IsStandardStream(work.job.output)) return work.job.type;
  const PictureType type = WritableType(work.job.output);
  return type == work.picture.SourceType() ? std::nullopt : std::optional(type);
}

bool IsSameFile(const std::string& a, const std::string& b) {
  if (IsStandardStream(a) || IsStandardStream(b)) return false;
  std::error_code error;
  if (std::filesystem::equivalent(ToPath(a), ToPath(b), error)) return true;
  return std::filesystem::weakly_canonical(ToPath(a), error) ==
         std::filesystem::weakly_canonical(ToPath(b), error);
}

/// Options that say how a picture is read, or that write files beside it: a recipe has no word for
/// them.
std::vector<std::string> OptionsBeside(const PictureOptions& options) {
  const PictureOptions usual;
  std::vector<std::string> names;
  const auto add = [&](bool isGiven, const char* name) {
    if (isGiven) names.emplace_back(name);
  };
  add(options.pages != usual.pages, "--page");
  add(options.positionFrom != usual.positionFrom, "--position-from");
  add(options.writesWorldFile, "--world-file");
  add(options.metafile.IsAsked(), "--dpi or --size");
  add(options.shrinksOnLoad, "--shrink-on-load");
  return names;
}

}  // namespace

void Recorder::Take(const PictureWork& work) {
  Recipe recipe = work.recipe;
  recipe.save.type = TypeOf(format_, work);
  recipe.isAsStored = work.options.isAsStored;
  Take(recipe);
}

void Recorder::Take(const Recipe& recipe) {
  Recipe own = recipe;
  own.madeWith = "rasterkit " RASTERKIT_VERSION;
  const std::optional<PictureType> type = std::exchange(own.save.type, std::nullopt);
  std::string text = WriteRecipe(own);
  const std::lock_guard lock(mutex_);
  if (std::exchange(isTaken_, true)) {
    differs_ = differs_ || text != text_;
    if (type != recipe_.save.type) recipe_.save.type.reset();
  } else {
    text_ = std::move(text);
    recipe_ = std::move(own);
    recipe_.save.type = type;
  }
}

std::string Recorder::Text(const std::string& file) const {
  const std::lock_guard lock(mutex_);
  if (differs_) {
    throw Failure(exitOutputNotWritten,
                  file +
                      ": not written: the pictures have different recipes; --record takes those "
                      "of one picture");
  }
  if (!isTaken_) throw Failure(exitOutputNotWritten, file + ": not written: there is no recipe");
  return WriteRecipe(recipe_);
}

Option AddRecord(Verb& verb, std::string& file) {
  return verb
      .Text("--record", "FILE", file, {},
            "write what is done as a recipe, with which 'rasterkit apply' does the same to other "
            "pictures")
      .In(kFiles);
}

void RefuseRecord(Verb& verb, const std::string& why) {
  const auto check = [why, name = verb.Name()](const std::string&) {
    return "cannot be used with '" + name + "': " + why;
  };
  verb.Parsed(
          "--record", "FILE", [](const std::string&) {}, check, "")
      .Hidden();
}

void CheckRecord(const std::string& file, bool overwrite, const std::vector<Job>& jobs,
                 const std::vector<std::string>& others) {
  if (IsStandardStream(file)) {
    throw Failure(exitWrongUsage, "--record needs the name of a file");
  }
  for (const Job& job : jobs) {
    if (!IsSameFile(file, job.input) && !IsSameFile(file, job.output)) continue;
    throw Failure(exitWrongUsage, file + ": is one of the pictures and cannot be the recipe");
  }
  for (const std::string& other : others) {
    if (other.empty() || !IsSameFile(file, other)) continue;
    throw Failure(exitWrongUsage, file + ": is read and cannot be the recipe of --record");
  }
  std::error_code error;
  const std::filesystem::path path = ToPath(file);
  if (std::filesystem::is_directory(path, error)) {
    throw Failure(exitOutputNotWritten, file + ": this is a folder");
  }
  if (std::filesystem::exists(path, error) && !overwrite) {
    throw Failure(exitOutputNotWritten, file + ": already exists (--overwrite replaces it)");
  }
  const std::filesystem::path folder = std::filesystem::absolute(path, error).parent_path();
  if (!std::filesystem::is_directory(folder, error)) {
    throw Failure(exitOutputNotWritten, file + ": its folder does not exist");
  }
}

void StartRecording(const OutputOptions& output, PictureOptions& picture,
                    const std::vector<Job>& jobs, const std::vector<std::string>& others) {
  if (output.record.empty()) return;
  CheckRecord(output.record, output.overwrite, jobs, others);
  for (const Job& job : jobs) {
    if (!IsMetafileName(job.output)) continue;
    throw Failure(exitWrongUsage, job.output +
                                      ": a metafile is written as it is, without a recipe "
                                      "for --record");
  }
  picture.recorder = std::make_shared<Recorder>(output.type);
}

int FinishRecording(const OutputOptions& output, const PictureOptions& picture, int code) {
  const bool isWritten = code == exitDone || code == exitNotCarriedOver;
  if (!picture.recorder || !isWritten || output.dryRun) return code;
  WriteRecipeFile(output.record, picture.recorder->Text(output.record),
                  {output.overwrite, !output.noSync, false});
  const std::vector<std::string> beside = OptionsBeside(picture);
  if (!beside.empty() && !output.quiet) {
    PrintMessage(fmt::format("{}: does not hold {}, which 'rasterkit apply' needs too",
                             output.record, fmt::join(beside, ", ")));
  }
  return code;
}

void WriteRecipeFile(const std::string& file, const std::string& text, const SaveRules& rules) {
  FinishedOutput output;
  output.file = WriteOutput(file, rules, [&](TStream& stream) {
    stream.Write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  });
  if (const std::exception_ptr error = CommitTogether({&output, 1}).front()) {
    throw Failure(exitOutputNotWritten, OutputError(file, error));
  }
}

}  // namespace rasterkit::tool
