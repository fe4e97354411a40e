#include "tool/pictures/metafile_output.h"

#include <new>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/metadata_kind.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"

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

void Load(TMetafile& metafile, const std::string& file) {
  try {
    const InterruptibleInput waiting(file);
    TFileStream stream(file);
    // Reject a large file of another type without reading it; a pipe must be read first.
    if (stream.Size() > 0) RequireMetafile(SniffPictureType(stream), file);
    const std::vector<uint8_t> bytes = stream.ReadToEnd();
    RequireMetafile(SniffPictureType(bytes), file);
    TSpanStream memory(bytes);
    metafile.LoadFromStream(memory);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  }
}

void Save(TMetafile& metafile, const std::string& file) {
  try {
    const WholeOutput whole;
    AtomicFile target(file);
    metafile.SaveToStream(target);
    target.Commit();
  } catch (const Error& error) {
    throw Failure(exitOutputNotWritten, file + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitOutputNotWritten, file + ": out of memory");
  }
}

bool IsForPixels(const PictureOptions& options) {
  return options.metafile.IsAsked() || options.bits != 0 ||
         options.background != PictureOptions().background;
}

}  // namespace

bool IsMetafileName(const std::string& file) {
  return IsEmfName(file) || UpperCase(ExtractFileExt(file)) == ".WMF";
}

JobResult ConvertMetafile(const Job& job, const PictureOptions& options) {
  if (options.angle != 0) {
    throw Failure(exitWrongUsage,
                  job.output +
                      ": a metafile cannot be turned; --angle requires an output of "
                      "pixels (.bmp, .jpg, .png, .tif)");
  }
  TMetafile metafile;
  Load(metafile, job.input);
  const bool wasEnhanced = metafile.Enhanced();
  metafile.SetEnhanced(IsEmfName(job.output));
  StopIfInterrupted();
  Save(metafile, job.output);
  JobResult result;
  result.type = metafile.Enhanced() ? "emf" : "wmf";
  result.width = metafile.Width();
  result.height = metafile.Height();
  result.warnings = metafile.Facts().warnings;
  if (IsForPixels(options)) {
    result.warnings.emplace_back(
        "--background, --bits, --dpi and --size apply only to outputs of pixels; a metafile is "
        "written unchanged");
  }
  // The WMF file holds pixels instead of the records.
  if (wasEnhanced && !metafile.Enhanced()) {
    result.notCarriedOver.emplace_back(MetadataKindName(MetadataKind::records));
  }
  return result;
}

}  // namespace rasterkit::tool
