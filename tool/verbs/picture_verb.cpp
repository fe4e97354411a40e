#include "tool/verbs/picture_verb.h"

#include <utility>

#include "tool/arguments/color_argument.h"
#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/shared_options.h"
#include "tool/pages/page_jobs.h"

namespace rasterkit::tool {

PictureVerb::PictureVerb(CommandLine& line, const VerbHelp& help) : Verb(line.AddVerb(help)) {}

Option PictureVerb::Color(const std::string& name, std::string& value,
                          const std::string& description) {
  return Text(name, "COLOR", value, CheckColor, description);
}

void PictureVerb::With(std::string& file) {
  Text("--with", "FILE", file, {}, "the second picture; it is turned upright as well").Required();
}

void PictureVerb::Percent(int& percent) {
  Number("--percent", "P", percent, {-100, 100}, "how much, -100 to 100").Required();
}

void PictureVerb::Dialog(bool& isWanted, const std::string& description) {
  Flag("--dialog", isWanted, description);
  asksUser_ = &isWanted;
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
  AddOutputOptions(*this, *output_, answer_ ? "IN [OUT]" : "IN OUT");
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
  if (output_->takesMetafiles) AddMetafileSize(*this, *picture_);
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
          answerForFiles = answerForFiles_, asksAboutFiles = asksAboutFiles_,
          prepare = std::move(prepare)] {
    if (asksUser != nullptr && *asksUser && output->jobs > 1) {
      throw Failure(exitWrongUsage,
                    "--dialog shows one picture at a time and cannot be used with --jobs");
    }
    const bool isQuestion = output->files.size() == 1 && output->outDir.empty() && !output->inPlace;
    const bool isAboutFiles =
        asksAboutFiles != nullptr && *asksAboutFiles && output->outDir.empty() && !output->inPlace;
    if (isAboutFiles) return answerForFiles(output->files, output->json);
    if (answer && isQuestion) return answer(output->files[0], output->json);
    const std::vector<Job> jobs = JobsOfPages(PlanJobs(*output), *output, *picture);
    picture->showsProgress = jobs.size() == 1 && !output->quiet;
    const PictureChange change = prepare();
    return RunJobs(*output, jobs, [&](const Job& job) {
      return ChangePicture(job, *picture, output->dryRun, change);
    });
  };
}

}  // namespace rasterkit::tool
