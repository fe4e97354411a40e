#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <rasterkit/pictures/recipes/recipe.h>

#include "tool/command/batch.h"
#include "tool/command/options.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

struct PictureWork;

/// Makes the recipe of --record from what a verb does to its pictures.
class Recorder {
 public:
  /// `format`: the type of the outputs as typed; empty: that of each output's name.
  explicit Recorder(const std::string& format) : format_(format) {}

  /// Called for each picture, on several threads with --jobs, when all its steps are added.
  void Take(const PictureWork& work);
  /// A recipe that was made elsewhere.
  void Take(const Recipe& recipe);
  /// The recipe. Where no format was typed and the pictures disagree, it states no type. Throws
  /// Failure(exitOutputNotWritten) if the pictures have different ones, or if there were none.
  std::string Text(const std::string& file) const;

 private:
  std::string format_;
  mutable std::mutex mutex_;
  /// Of the first picture.
  Recipe recipe_;
  /// Without the type.
  std::string text_;
  bool isTaken_ = false, differs_ = false;
};

/// --record of a verb.
Option AddRecord(Verb& verb, std::string& file);
/// --record of a verb that has no recipe: it is refused, and `why` says the reason.
void RefuseRecord(Verb& verb, const std::string& why);

/// Throws Failure(exitOutputNotWritten) if the file of --record cannot be written, and
/// Failure(exitWrongUsage) if a job reads or writes it, or if it is one of `others`, which are read
/// as well; empty names are skipped.
void CheckRecord(const std::string& file, bool overwrite, const std::vector<Job>& jobs = {},
                 const std::vector<std::string>& others = {});

/// Checks the file of --record, if there is one, and lets `picture` record.
void StartRecording(const OutputOptions& output, PictureOptions& picture,
                    const std::vector<Job>& jobs, const std::vector<std::string>& others = {});

/// Writes the recipe if `code` says that all outputs were written, and names options that it does
/// not hold. Returns the exit code. Throws Failure(exitOutputNotWritten).
int FinishRecording(const OutputOptions& output, const PictureOptions& picture, int code);

/// Writes a recipe as a whole or not at all. Throws Failure(exitOutputNotWritten).
void WriteRecipeFile(const std::string& file, const std::string& text, const SaveRules& rules);

}  // namespace rasterkit::tool
