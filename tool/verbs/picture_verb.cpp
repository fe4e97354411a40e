#include "tool/verbs/picture_verb.h"

#include <utility>

#include "tool/command/exit_code.h"
#include "tool/pictures/turn.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {

PictureVerb::PictureVerb(CLI::App& app, const std::string& name, const std::string& description,
                         const std::string& footer)
    : verb_(app.add_subcommand(name, description)) {
  verb_->group("Verbs");
  verb_->footer(footer);
}

void PictureVerb::Flag(const std::string& name, bool& value, const std::string& description) {
  verb_->add_flag(name, value, description);
}

void PictureVerb::Number(const std::string& name, const std::string& valueName, int& value,
                         const NumberRange& range, const std::string& description, Need need) {
  verb_->add_option(name, value, description)
      ->check(CLI::Range(range.least, range.most))
      ->required(need == Need::required)
      ->type_name(valueName);
}

void PictureVerb::Number(const std::string& name, const std::string& valueName,
                         std::optional<int>& value, const NumberRange& range,
                         const std::string& description) {
  verb_->add_option(name, value, description)
      ->check(CLI::Range(range.least, range.most))
      ->type_name(valueName);
}

void PictureVerb::Text(const std::string& name, const std::string& valueName, std::string& value,
                       const TextCheck& check, const std::string& description, Need need) {
  verb_->add_option(name, value, description)
      ->check(check)
      ->required(need == Need::required)
      ->type_name(valueName);
}

void PictureVerb::Texts(const std::string& name, const std::string& valueName,
                        std::vector<std::string>& values, const TextCheck& check,
                        const std::string& description) {
  verb_->add_option(name, values, description)
      ->check(check)
      ->allow_extra_args(false)
      ->type_name(valueName);
}

void PictureVerb::Color(const std::string& name, std::string& value, const std::string& description,
                        Need need) {
  Text(name, "RRGGBB", value, CheckColor, description, need);
}

void PictureVerb::OneOf(const std::string& name, const std::string& valueName, std::string& value,
                        const std::vector<std::string>& choices, const std::string& description) {
  verb_->add_option(name, value, description)->check(CLI::IsMember(choices))->type_name(valueName);
}

void PictureVerb::With(std::string& file) {
  verb_->add_option("--with", file, "the other picture, set upright as well")
      ->required()
      ->type_name("FILE");
}

void PictureVerb::Percent(int& percent) {
  Number("--percent", "P", percent, {-100, 100}, "how much, -100 to 100", Need::required);
}

void PictureVerb::Dialog(bool& isWanted, const std::string& description) {
  Flag("--dialog", isWanted, description);
  asksUser_ = &isWanted;
}

VerbRunner PictureVerb::Changing(PictureChange change) {
  return ChangingAfter([change = std::move(change)] { return change; });
}

VerbRunner PictureVerb::ChangingAfter(std::function<PictureChange()> prepare) {
  AddOutputOptions(*verb_, *output_);
  if (answer_) verb_->get_option("files")->type_name("IN [OUT]");
  AddType(*verb_, *output_);
  AddSolidBackground(*verb_, *picture_);
  AddQuality(*verb_, *picture_);
  AddCompression(*verb_, *picture_);
  if (worksOnThreads_) {
    AddThreads(*verb_, *picture_);
  } else {
    AddFileThreads(*verb_, *picture_);
  }
  return [output = output_, picture = picture_, answer = answer_, asksUser = asksUser_,
          prepare = std::move(prepare)] {
    if (asksUser != nullptr && *asksUser && output->jobs > 1)
      throw Failure(exitWrongUsage, "--dialog shows one picture at a time: without --jobs");
    if (answer && output->files.size() == 1 && output->outDir.empty())
      return answer(output->files[0], output->json);
    const std::vector<Job> jobs = PlanJobs(*output);
    picture->showsProgress = jobs.size() == 1;
    const PictureChange change = prepare();
    return RunJobs(*output, jobs, [&](const Job& job) {
      return ConvertPicture(job, *picture, {change, {}, {}});
    });
  };
}

std::unique_ptr<TBitmap> LoadUpright(const std::string& file) {
  LoadedPicture picture = LoadPicture(file);
  TurnUpright(picture.bitmap, picture.photo.orientation.value_or(1));
  return std::move(picture.bitmap);
}

}  // namespace rasterkit::tool
