#include <memory>

#include <rasterkit/runtime/errors.h>

#include "tool/command/batch.h"
#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"
#include "tool/command/output_file.h"
#include "tool/command/output_type.h"
#include "tool/command/shared_options.h"
#include "tool/pictures/exif/exif_copy.h"
#include "tool/pictures/exif/exif_losses.h"
#include "tool/pictures/exif/exif_thumbnail.h"
#include "tool/pictures/exif/jpeg_header.h"
#include "tool/pictures/exif/jpeg_input.h"
#include "tool/reports/exif_report.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

using Bytes = std::vector<uint8_t>;

struct ExifOptions {
  std::string copyFrom;
  bool thumbnail = false;
  bool stripThumbnail = false;
  bool keepOrientation = false;

  bool IsWriting() const { return thumbnail || stripThumbnail || !copyFrom.empty(); }
};

/// Writes a JPEG file.
JobResult Saved(const Bytes& jpeg, const Job& job) {
  const JpegHeader header = ReadJpegHeader(jpeg);
  JobResult result;
  result.type = "jpeg";
  result.width = header.width;
  result.height = header.height;
  result.bits = header.components == 1 ? 8 : 24;
  result.output.file =
      WriteOutput(job.output, job.saving, [&](TStream& stream) { stream.Write(jpeg); });
  return result;
}

JobResult CopyFrom(const Bytes& photo, const ExifOptions& options, const Job& job) {
  const Bytes picture = ReadJpegInput(job.input);
  CopiedMetadata copied;
  try {
    copied = CopyMetadata(photo, picture, {options.keepOrientation, options.stripThumbnail});
  } catch (const FormatError& error) {
    throw Failure(exitInputUnreadable, job.input + ": " + ReasonWithOption(error));
  }
  JobResult result = Saved(copied.jpeg, job);
  result.warnings = std::move(copied.warnings);
  result.notCarriedOver = LostByCopying(photo, picture, copied.jpeg);
  return result;
}

JobResult StripThumbnail(const Job& job) {
  const Bytes jpeg = ReadJpegInput(job.input);
  const JpegHeader header = ReadJpegHeader(jpeg);
  const JpegSegment* exif = header.Find(MetadataKind::exif);
  if (exif == nullptr) return Saved(jpeg, job);
  std::string section;
  try {
    section = WithoutThumbnail(ExifBlock(SectionBytes(*exif)));
  } catch (const FormatError& error) {
    throw Failure(exitInputUnreadable, job.input + ": " + ReasonWithOption(error));
  }
  const auto place = [&jpeg](size_t at) { return jpeg.begin() + static_cast<std::ptrdiff_t>(at); };
  Bytes result(jpeg.begin(), place(exif->place + 2));
  result.insert(result.end(), section.begin(), section.end());
  result.insert(result.end(), place(exif->place + exif->Size()), jpeg.end());
  return Saved(result, job);
}

JobResult TakeThumbnail(const Job& job) {
  const Bytes jpeg = ReadJpegInput(job.input);
  const JpegHeader header = ReadJpegHeader(jpeg);
  const JpegSegment* exif = header.Find(MetadataKind::exif);
  const std::string bytes =
      exif != nullptr ? ThumbnailBytes(ExifBlock(SectionBytes(*exif))) : std::string();
  if (bytes.empty()) {
    throw Failure(exitOutputNotWritten, job.input + ": the photo has no JPEG thumbnail");
  }
  return Saved({bytes.begin(), bytes.end()}, job);
}

int Show(const std::vector<std::string>& files, bool json) {
  int code = exitDone;
  for (const std::string& file : files) {
    StopIfInterrupted();
    if (!ReportExif(file, json)) code = exitInputUnreadable;
  }
  return code;
}

/// Metadata can be written only into JPEG files.
std::vector<Job> PlanJpegJobs(const OutputOptions& output) {
  std::vector<Job> jobs = PlanJobs(output);
  for (const Job& job : jobs) {
    if (WritableType(job.output) != PictureType::jpeg) {
      throw Failure(exitWrongUsage, job.output + ": the output must end in .jpg or .jpeg");
    }
  }
  return jobs;
}

int Run(const OutputOptions& output, const ExifOptions& options) {
  if (!options.IsWriting()) {
    if (!output.outDir.empty()) {
      throw Failure(exitWrongUsage,
                    "--out-dir requires --copy-from, --thumbnail or --strip-thumbnail");
    }
    return Show(output.files, output.json);
  }
  const std::vector<Job> jobs = PlanJpegJobs(output);
  if (options.thumbnail) return RunJobs(output, jobs, TakeThumbnail);
  if (options.copyFrom.empty()) return RunJobs(output, jobs, StripThumbnail);
  const Bytes photo = ReadJpegInput(options.copyFrom);
  return RunJobs(output, jobs, [&](const Job& job) { return CopyFrom(photo, options, job); });
}

}  // namespace

VerbRunner AddExifVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"exif",
       "show and copy the metadata of JPEG photographs",
       {"Without an option that writes, the metadata of every file is shown: sections, fields, "
        "date, position, comments, thumbnail. Writing never encodes pixels again."},
       {"rasterkit exif photo.jpg", "rasterkit exif --copy-from photo.jpg edited.jpg complete.jpg",
        "rasterkit exif --thumbnail photo.jpg small.jpg",
        "rasterkit exif --strip-thumbnail --out-dir clean *.jpg"}});
  const auto output = std::make_shared<OutputOptions>();
  const auto options = std::make_shared<ExifOptions>();
  output->takesStreams = true;
  AddOutputOptions(verb, *output, "IN... [OUT]",
                   "files to show; with an option that writes, one input and the output");
  const Option copy = verb.Text("--copy-from", "PHOTO", options->copyFrom, {},
                                "write the input with the metadata of this photograph");
  verb.Flag("--keep-orientation", options->keepOrientation, "keep the orientation of the input")
      .Needs(copy);
  const Option strip = verb.Flag("--strip-thumbnail", options->stripThumbnail,
                                 "write the photograph without its thumbnail");
  verb.Flag("--thumbnail", options->thumbnail, "write the thumbnail of the photograph")
      .Excludes(copy)
      .Excludes(strip);
  return [output, options] { return Run(*output, *options); };
}

}  // namespace rasterkit::tool
