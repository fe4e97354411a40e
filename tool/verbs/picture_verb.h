#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tool/command/options.h"
#include "tool/pictures/change_picture.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {

/// The scaffold of the verbs that change pictures one by one. A verb states its name, its own
/// options, and the steps that it adds to a picture; the options about files and writing, the
/// losses and the exit codes are the same for all.
///
///     VerbRunner AddFadeVerb(CommandLine& line) {
///       PictureVerb verb(line, {"fade", "make a picture fainter", {}, {"rasterkit fade ..."}});
///       const auto percent = std::make_shared<int>(0);
///       verb.Number("--percent", "P", *percent, {0, 100}, "how much").Required();
///       return verb.Changing([percent](PictureWork& work) {
///         // --record writes what is added here.
///         work.Add(ChangeStep{Fade{*percent}});
///       });
///     }
class PictureVerb : public Verb {
 public:
  PictureVerb(CommandLine& line, const VerbHelp& help);

  /// An option whose value is a color; see ColorOf.
  Option Color(const std::string& name, std::string& value, const std::string& description);
  /// `--with FILE`: the second picture of a verb that needs one.
  void With(std::string& file);
  /// `--percent P`: how much, -100 to 100.
  void Percent(int& percent);
  /// The steps depend on the picture if the flag is set: --record then takes one picture.
  void DiffersByPicture(const bool& isSet) { individual_.push_back(&isSet); }
  /// `--dialog`: a window lets the user decide, for one picture after another.
  void Dialog(bool& isWanted, const std::string& description);

  /// --fill and --filter: the change uncovers corners.
  void UncoversCorners() { uncoversCorners_ = true; }
  /// --dpi and --size say how metafiles are drawn.
  void DrawsMetafiles() { drawsMetafiles_ = true; }
  /// The same, and outputs may be metafiles.
  void TakesMetafiles() {
    DrawsMetafiles();
    output_->takesMetafiles = true;
  }
  /// The outputs are small pictures to look at, in a type of --format, without metadata and
  /// position.
  void MakesPreviews();
  /// Files besides the inputs that are known when the verb has begun: --record must not replace
  /// them.
  void AlsoReads(std::function<std::vector<std::string>()> files) { others_ = std::move(files); }
  /// The options that all verbs share, for a verb that adds one of its own to them.
  const std::shared_ptr<PictureOptions>& Options() { return picture_; }

  /// What the verb does with one file and no output. Without this call, that is wrong usage.
  void AnsweringForOneFile(std::function<int(const std::string& file, bool json)> answer) {
    answer_ = std::move(answer);
  }
  /// What the verb does with several files and no output if `isWanted`.
  void AnsweringForFiles(
      const bool& isWanted,
      std::function<int(const std::vector<std::string>& files, bool json)> answer) {
    asksAboutFiles_ = &isWanted;
    answerForFiles_ = std::move(answer);
  }
  /// The files of the command line, known when the verb runs.
  const std::shared_ptr<OutputOptions>& Outputs() { return output_; }
  /// What the files are called in the help.
  void CallingFiles(const std::string& name, const std::string& description) {
    filesName_ = name;
    filesDescription_ = description;
  }
  /// Runs before the outputs get their names. It may change the options.
  void Beginning(std::function<void(OutputOptions& output, PictureOptions& picture)> begin) {
    begin_ = std::move(begin);
  }

  /// Adds the options that all these verbs share. The change runs once per picture, on several
  /// threads at the same time with --jobs.
  VerbRunner Changing(PictureChange change);

  /// The same for a verb that prepares something once for all pictures: it checks options that
  /// depend on each other, or opens a second picture.
  VerbRunner ChangingAfter(std::function<PictureChange()> prepare);

 private:
  void AddSharedOptions();

  std::function<int(const std::string& file, bool json)> answer_;
  std::function<int(const std::vector<std::string>& files, bool json)> answerForFiles_;
  const bool* asksAboutFiles_ = nullptr;
  const bool* asksUser_ = nullptr;
  std::string filesName_, filesDescription_;
  std::function<void(OutputOptions& output, PictureOptions& picture)> begin_;
  std::vector<const bool*> individual_;
  std::function<std::vector<std::string>()> others_;
  bool drawsMetafiles_ = false;
  bool uncoversCorners_ = false;
  bool makesPreviews_ = false;
  std::shared_ptr<OutputOptions> output_ = std::make_shared<OutputOptions>();
  std::shared_ptr<PictureOptions> picture_ = std::make_shared<PictureOptions>();
};

}  // namespace rasterkit::tool
