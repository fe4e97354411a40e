#include "tool/verbs/picture_verb.h"

#include <utility>

#include "tool/arguments/color_argument.h"
#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/shared_options.h"
#include "tool/pages/page_jobs.h"
#include "tool/pictures/recorder.h"

namespace rasterkit::tool {
namespace {

void RequireOneRecipe(const std::vector<const bool*>& individual) {
  for (const bool* const isSet : individual) {
    if (!*isSet) continue;
    throw Failure(exitWrongUsage,
                  "--record takes one picture here: each picture gets steps of its own");
  }
}

}  // namespace

PictureVerb::PictureVerb(CommandLine& line, const VerbHelp& help) : Verb(line.AddVerb(help)) {}

Option PictureVerb::Color(const std::string& name, std::string& value,
                          const std::string& description) {
  return Text(name, "COLOR", value, CheckColor, description);
}

void PictureVerb::With(std::string& file) {
  Text("--with", "FILE", file, {}, "the second picture; it is turned upright as well").Required();
  AlsoReads([&file] { return std::vector{file}; });
}

void PictureVerb::Percent(int& percent) {
  Number("--percent", "P", percent, {-100, 100}, "how much, -100 to 100").Required();
}

void PictureVerb::Dialog(bool& isWanted, const std::string& description) {
  Flag("--dialog", isWanted, description);
  asksUser_ = &isWanted;
  DiffersByPicture(isWanted);
}

void PictureVerb::MakesPreviews() {
  makesPreviews_ = true;
  output_->hasInPlace = false;
  picture_->positionFrom = PositionFrom::none;
  picture_->onlyThisPage = true;
}

VerbRunner PictureVerb::Changing(PictureChange change) {
  return ChangingAfter([change = std::move(change)] { return change; });
}

void PictureVerb::AddSharedOptions() {
  output_->isForPictures = true;
  output_->takesStreams = true;
  if (filesName_.empty()) {
    AddOutputOptions(*this, *output_, answer_ ? "IN [OUT]" : "IN OUT");
  } else {
    AddOutputOptions(*this, *output_, filesName_, filesDescription_);
  }
  if (makesPreviews_) {
    RefuseRecord(*this, "how a thumbnail is made depends on each picture; 'resize' has a recipe");
  } else {
    AddRecord(*this, output_->record);
  }
  AddIsolate(*this);
  AddPages(*this, *picture_);
  AddFormat(*this, *output_);
  if (uncoversCorners_) {
    AddCorners(*this, *picture_);
  } else {
    AddBackground(*this, *picture_);
  }
  AddBits(*this, *picture_);
  AddStretch(*this, *picture_);
  AddQuality(*this, *picture_);
  AddSampling(*this, *picture_);
  AddPngLevel(*this, *picture_);
  AddLossless(*this, *picture_);
  AddCompression(*this, *picture_);
  if (drawsMetafiles_) AddMetafileSize(*this, *picture_);
  if (!makesPreviews_) {
    AddPosition(*this, *picture_);
    AddStrip(*this, *picture_);
  }
  AddThreads(*this, *picture_);
  AddFlow(*this, *picture_);
}

VerbRunner PictureVerb::ChangingAfter(std::function<PictureChange()> prepare) {
  AddSharedOptions();
  return [output = output_, picture = picture_, answer = answer_, asksUser = asksUser_,
          answerForFiles = answerForFiles_, asksAboutFiles = asksAboutFiles_, begin = begin_,
          individual = individual_, others = others_, prepare = std::move(prepare)] {
    if (begin) begin(*output, *picture);
    if (asksUser != nullptr && *asksUser && output->jobs > 1) {
      throw Failure(exitWrongUsage,
                    "--dialog shows one picture at a time and cannot be used with --jobs");
    }
    const bool isQuestion = output->files.size() == 1 && output->outDir.empty() && !output->inPlace;
    const bool isAboutFiles =
        asksAboutFiles != nullptr && *asksAboutFiles && output->outDir.empty() && !output->inPlace;
    if (isAboutFiles || (answer && isQuestion)) {
      if (!output->record.empty()) throw Failure(exitWrongUsage, "--record requires an output");
      return isAboutFiles ? answerForFiles(output->files, output->json)
                          : answer(output->files[0], output->json);
    }
    const std::vector<Job> jobs = JobsOfPages(PlanJobs(*output), *output, *picture);
    picture->showsProgress = jobs.size() == 1 && !output->quiet;
    if (jobs.size() > 1 && !output->record.empty()) RequireOneRecipe(individual);
    std::vector<std::string> read = others ? others() : std::vector<std::string>();
    read.push_back(picture->worldFile);
    StartRecording(*output, *picture, jobs, read);
    const PictureChange change = prepare();
    const int code = RunJobs(*output, jobs, [&](const Job& job) {
      return ChangePicture(job, *picture, output->dryRun, change);
    });
    return FinishRecording(*output, *picture, code);
  };
}

}  // namespace rasterkit::tool
