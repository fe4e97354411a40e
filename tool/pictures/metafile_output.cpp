#include "tool/pictures/metafile_output.h"

#include <exception>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/pictures/reading/convert_metafile.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/limit_options.h"
#include "tool/command/output_file.h"
#include "tool/command/standard_input.h"

namespace rasterkit::tool {
namespace {

bool IsEmfName(const std::string& file) {
  return UpperCase(ExtractFileExt(file)) == ".EMF";
}

void RequireMetafile(PictureType type, const std::string& file) {
  if (type == PictureType::emf || type == PictureType::wmf) return;
  if (type == PictureType::unknown) throw FormatError("the data is not a picture of a known type");
  throw Failure(exitOutputNotWritten,
                file + ": a picture of pixels cannot be written as a metafile");
}

ConvertedMetafile Load(const std::string& file, bool toEnhanced) {
  const std::string name = ReadableName(file);
  try {
    const InterruptibleInput waiting(name);
    TFileStream stream(name);
    // Reject a large file of another type without reading it; a pipe must be read first.
    if (stream.Size() > 0) RequireMetafile(SniffPictureType(stream), file);
    const std::vector<uint8_t> bytes = stream.ReadToEnd();
    RequireMetafile(SniffPictureType(bytes), file);
    TSpanStream memory(bytes);
    return ConvertMetafile(memory, toEnhanced, ReadingIsolation(), ContinueUnlessInterrupted);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  }
}

bool IsForPixels(const PictureOptions& options) {
  return options.metafile.IsAsked() || options.bits != 0 || options.HasBackground();
}

}  // namespace

bool IsMetafileName(const std::string& file) {
  return IsEmfName(file) || UpperCase(ExtractFileExt(file)) == ".WMF";
}

JobResult ConvertMetafile(const Job& job, const PictureOptions& options, bool isDryRun) {
  if (options.angle != 0) {
    throw Failure(exitWrongUsage,
                  job.output +
                      ": a metafile cannot be turned; --angle requires an output of "
                      "pixels (.bmp, .jpg, .png, .tif)");
  }
  const bool toEnhanced = IsEmfName(job.output);
  const ConvertedMetafile metafile = Load(job.input, toEnhanced);
  StopIfInterrupted();
  JobResult result;
  const auto write = [&](TStream& stream) {
    if (metafile.error) std::rethrow_exception(metafile.error);
    stream.Write(metafile.bytes);
  };
  if (!isDryRun) result.output.file = WriteOutput(job.output, job.saving, write);
  result.bytes = metafile.bytes.size();
  result.type = toEnhanced ? "emf" : "wmf";
  result.width = metafile.width;
  result.height = metafile.height;
  result.warnings = metafile.warnings;
  if (IsForPixels(options)) {
    result.warnings.emplace_back(
        "--background, --bits, --dpi and --size apply only to outputs of pixels; a metafile is "
        "written unchanged");
  }
  // The WMF file holds pixels instead of the records.
  if (metafile.wasEnhanced && !toEnhanced) {
    result.losses.push_back(
        {LossKind::records, "the records of the drawing", "the WMF file holds a picture of them"});
  }
  return result;
}

}  // namespace rasterkit::tool
