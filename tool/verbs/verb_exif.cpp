#include <algorithm>
#include <memory>
#include <utility>

#include <rasterkit/metadata/edit/edit_metadata.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/runtime/errors.h>

#include "tool/command/batch.h"
#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/output_file.h"
#include "tool/command/output_type.h"
#include "tool/command/shared_options.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/change_pages.h"
#include "tool/pictures/change_picture.h"
#include "tool/pictures/photo_sections.h"
#include "tool/pictures/recorder.h"
#include "tool/reports/exif_report.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

/// Slot of the picture of --copy-from in a recipe.
constexpr const char* kSlot = "metadata";

struct ExifOptions {
  std::string copyFrom;
  bool thumbnail = false;
  bool keepOrientation = false;
};

bool IsWriting(const ExifOptions& options, const MetadataEdit& edit) {
  return options.thumbnail || !options.copyFrom.empty() || !edit.IsEmpty();
}

std::string CheckSetting(const std::string& text) {
  const size_t sign = text.find('=');
  const bool ok = sign != std::string::npos && sign > 0;
  return ok ? std::string() : "must be TAG=VALUE, not '" + text + "'";
}

TagSetting SettingOf(const std::string& text) {
  const size_t sign = text.find('=');
  return {text.substr(0, sign), text.substr(sign + 1)};
}

/// "48.5,11.6" or "48.5,11.6,520"; nothing for other texts.
std::optional<GpsPosition> PositionOf(const std::string& text) {
  std::vector<double> numbers;
  size_t at = 0;
  while (at <= text.size()) {
    const size_t comma = std::min(text.find(',', at), text.size());
    const auto number = ReadReal(text.substr(at, comma - at));
    if (!number) return std::nullopt;
    numbers.push_back(*number);
    at = comma + 1;
  }
  if (numbers.size() != 2 && numbers.size() != 3) return std::nullopt;
  GpsPosition position{numbers[0], numbers[1], std::nullopt};
  if (numbers.size() == 3) position.altitude = numbers[2];
  return position;
}

std::string CheckPosition(const std::string& text) {
  return PositionOf(text) ? std::string() : "must be LAT,LON or LAT,LON,ALT, not '" + text + "'";
}

/// A wrong name or value is told before any file is read.
void CheckEdit(const MetadataEdit& edit) {
  Metadata nothing;
  Changes unused;
  try {
    EditMetadata(nothing, edit, {}, unused);
  } catch (const Error& error) {
    throw Failure(exitWrongUsage, error.Reason());
  }
}

std::optional<int> OrientationOf(const Picture& picture) {
  const std::vector<uint8_t>& exif = picture.GetMetadata().exif;
  return exif.empty() ? std::nullopt : rasterkit::OrientationOf(ExifBlock(exif));
}

/// Warns where viewers will turn the picture differently after metadata was copied.
void WarnOfTurn(PictureWork& work, int before, bool keepsOrientation) {
  const int after = OrientationOf(work.picture).value_or(1);
  if (after == before) return;
  const char* remedy =
      keepsOrientation ? "the photo has no orientation tag" : "--keep-orientation keeps it";
  work.warnings.push_back("the orientation is now " + std::to_string(after) + " and was " +
                          std::to_string(before) + "; viewers will turn the picture differently (" +
                          remedy + ")");
}

/// What neither the photo nor the picture gives to the output.
std::vector<std::string> NotCarriedOver(const std::vector<std::string>& photo,
                                        const std::vector<std::string>& before,
                                        const std::vector<std::string>& after) {
  const auto has = [](const std::vector<std::string>& list, const std::string& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
  };
  std::vector<std::string> lost;
  for (const auto* names : {&photo, &before}) {
    for (const std::string& name : *names) {
      if (!has(after, name) && !has(lost, name)) lost.push_back(name);
    }
  }
  return lost;
}

JobResult TakeThumbnail(const Job& job, const PictureOptions& options) {
  const Picture photo = OpenPicture(job.input, options);
  const ExifBlock block(photo.GetMetadata().exif);
  const std::span<const uint8_t> bytes = ThumbnailOf(block);
  if (bytes.empty()) {
    throw Failure(exitOutputNotWritten, job.input + ": the photo has no JPEG thumbnail");
  }
  const PhotoHeader header = ReadPhotoHeader(bytes);
  JobResult result;
  result.type = "jpeg";
  result.width = header.width;
  result.height = header.height;
  constexpr int kColorBits = 24;
  result.bits = kColorBits;
  result.output.file =
      WriteOutput(job.output, job.saving, [&](TStream& stream) { stream.Write(bytes); });
  return result;
}

/// The output has the type of the input, because no pixel is encoded.
void RequireSameType(const PictureWork& work) {
  const PictureType type = work.picture.SourceType();
  const PictureType target =
      IsStandardStream(work.job.output) ? work.job.type.value_or(type) : work.TargetType();
  if (target == type) return;
  work.Refuse(std::string("this is a ") + PictureTypeName(type) +
              " file; 'exif' writes files of the type that it reads, and no pixel anew ('rasterkit "
              "convert' writes other types)");
}

/// Copied metadata is no part of an edit: a recipe names the picture that it comes from.
std::vector<RecipeStep> StepsOf(const MetadataEdit& edit, const ExifOptions& options) {
  if (options.copyFrom.empty()) return {EditStep{edit}};
  std::vector<RecipeStep> steps;
  MetadataEdit before, after = edit;
  before.stripAll = std::exchange(after.stripAll, false);
  before.stripProfile = std::exchange(after.stripProfile, false);
  if (!before.IsEmpty()) steps.emplace_back(EditStep{before});
  RecipeCopy copy;
  copy.slot = kSlot;
  copy.keepsOrientation = options.keepOrientation;
  steps.emplace_back(copy);
  if (!after.IsEmpty()) steps.emplace_back(EditStep{after});
  return steps;
}

int Show(const std::vector<std::string>& files, bool json) {
  int code = exitDone;
  for (const std::string& file : files) {
    StopIfInterrupted();
    if (!ReportExif(file, json)) code = exitInputUnreadable;
  }
  return code;
}

/// Other types hold no metadata of photographs.
std::vector<Job> PlanPhotoJobs(const OutputOptions& output, bool isThumbnail) {
  std::vector<Job> jobs = PlanJobs(output);
  for (const Job& job : jobs) {
    if (IsStandardStream(job.output)) continue;
    const PictureType type = WritableType(job.output);
    const bool holdsMetadata =
        type == PictureType::jpeg || type == PictureType::png || type == PictureType::tiff;
    if (isThumbnail && type != PictureType::jpeg) {
      throw Failure(exitWrongUsage, job.output + ": the output must end in .jpg or .jpeg");
    }
    if (!holdsMetadata) {
      throw Failure(exitWrongUsage, job.output +
                                        ": the output must end in .jpg, .jpeg, .png, .tif "
                                        "or .tiff; other files hold no metadata");
    }
  }
  return jobs;
}

int Write(const OutputOptions& output, const ExifOptions& options, PictureOptions picture) {
  picture.isAsStored = picture.copiesPixels = true;
  MetadataEdit edit = std::exchange(picture.edit, {});
  CheckEdit(edit);
  // What is to be gone must not be left on another page.
  picture.editOfOthers = StripsOf(edit);
  picture.editOfOthers.remove = edit.remove;
  const std::vector<Job> jobs = PlanPhotoJobs(output, options.thumbnail);
  if (options.thumbnail && !output.record.empty()) {
    throw Failure(exitWrongUsage,
                  "--record cannot be used with --thumbnail: no picture is changed");
  }
  if (options.thumbnail) {
    return RunJobs(output, jobs, [&](const Job& job) { return TakeThumbnail(job, picture); });
  }
  std::vector<std::string> photoKinds;
  RecipeSlots slots;
  if (!options.copyFrom.empty()) {
    const Picture photo = OpenPicture(options.copyFrom, picture);
    photoKinds = CopiedKinds(photo, options.copyFrom);
    slots.emplace(kSlot, photo);
  }
  const std::vector<RecipeStep> steps = StepsOf(edit, options);
  StartRecording(output, picture, jobs, {options.copyFrom});
  picture.showsProgress = jobs.size() == 1 && !output.quiet;
  const bool copies = !slots.empty();
  const int code = RunJobs(output, jobs, [&](const Job& job) {
    return ChangePicture(job, picture, output.dryRun, [&](PictureWork& work) {
      RequireSameType(work);
      const int before = OrientationOf(work.picture).value_or(1);
      const std::vector<std::string> had =
          copies ? CopiedKinds(work.picture, "") : std::vector<std::string>();
      try {
        for (const RecipeStep& step : steps) work.Add(step, slots);
      } catch (const FormatError& error) {
        throw Failure(exitInputUnreadable, job.input + ": " + error.Reason());
      }
      if (!copies) return;
      WarnOfTurn(work, before, options.keepOrientation);
      work.notCarriedOver = NotCarriedOver(photoKinds, had, CopiedKinds(work.picture, ""));
    });
  });
  return FinishRecording(output, picture, code);
}

int Run(const OutputOptions& output, const ExifOptions& options, const PictureOptions& picture) {
  if (IsWriting(options, picture.edit)) return Write(output, options, picture);
  const bool writes = !output.outDir.empty() || output.inPlace || !output.record.empty();
  if (writes || output.dryRun) {
    throw Failure(
        exitWrongUsage,
        "--out-dir, --in-place, --dry-run and --record require an option that writes, such as "
        "--set, --copy-from or --strip");
  }
  return Show(output.files, output.json);
}

void AddEdits(Verb& verb, MetadataEdit& edit,
              const std::shared_ptr<std::vector<std::string>>& set) {
  verb.Texts(
      "--set", "TAG=VALUE", *set, CheckSetting,
      "set a tag; can be repeated (Artist, ISO, GPS:GPSMapDatum, IPTC:Keywords, dc:creator)");
  verb.Texts("--remove", "TAG", edit.remove, {},
             "remove a tag, or all of EXIF, GPS, XMP, IPTC, Comment, MakerNote, Thumbnail; can be "
             "repeated");
  verb.Parsed(
      "--gps", "LAT,LON[,ALT]", [&edit](const std::string& text) { edit.gps = PositionOf(text); },
      CheckPosition,
      "state where the photograph was taken: degrees, north and east positive, and meters above "
      "sea level");
  verb.Parsed(
      "--date", "DATE", [&edit](const std::string& text) { edit.date = text; }, {},
      "state when the photograph was taken, digitized and changed: 2019-07-04T13:05:09");
}

}  // namespace

VerbRunner AddExifVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"exif",
       "show, change and copy the metadata of photographs",
       {"Without an option that writes, the metadata of every file is shown: sections, fields, "
        "date, position, comments, thumbnail. With one, a file of the same type is written (JPEG, "
        "PNG or TIFF); the encoded pixels are copied byte for byte."},
       {"rasterkit exif photo.jpg",
        "rasterkit exif --set Artist=\"A. Person\" photo.jpg signed.jpg",
        "rasterkit exif --gps 48.1375,11.575,520 --in-place photo.jpg",
        "rasterkit exif --remove GPS --remove MakerNote photo.jpg clean.jpg",
        "rasterkit exif --copy-from photo.jpg edited.jpg complete.jpg",
        "rasterkit exif --thumbnail photo.jpg small.jpg",
        "rasterkit exif --strip-gps --out-dir clean *.jpg"}});
  const auto output = std::make_shared<OutputOptions>();
  const auto options = std::make_shared<ExifOptions>();
  const auto picture = std::make_shared<PictureOptions>();
  const auto set = std::make_shared<std::vector<std::string>>();
  output->isForPictures = true;
  output->takesStreams = true;
  AddOutputOptions(verb, *output, "IN... [OUT]",
                   "files to show; with an option that writes, one input and the output");
  AddRecord(verb, output->record);
  AddIsolate(verb);
  AddEdits(verb, picture->edit, set);
  const Option copy = verb.Text("--copy-from", "FILE", options->copyFrom, {},
                                "write the input with the metadata of this file");
  verb.Flag("--keep-orientation", options->keepOrientation, "keep the orientation of the input")
      .Needs(copy);
  AddStrip(verb, *picture);
  const Option strip = verb.Flag("--strip-thumbnail", picture->edit.stripThumbnail,
                                 "write the photograph without its thumbnail");
  verb.Flag("--thumbnail", options->thumbnail, "write the thumbnail of the photograph")
      .Excludes(copy)
      .Excludes(strip);
  return [output, options, picture, set] {
    for (const std::string& setting : *set) picture->edit.set.push_back(SettingOf(setting));
    return Run(*output, *options, *picture);
  };
}

}  // namespace rasterkit::tool
