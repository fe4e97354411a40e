#include "tool/pictures/convert_picture.h"

#include <algorithm>
#include <cmath>
#include <thread>

#include <fmt/core.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/raster/format_of_bits.h>
#include <rasterkit/runtime/errors.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"
#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/metafile_output.h"
#include "tool/pictures/placement/map_placement.h"
#include "tool/pictures/save_picture.h"
#include "tool/pictures/turn.h"

namespace rasterkit::tool {
namespace {

TColor SolidBackground(const PictureOptions& options) {
  const TColor color = BackgroundColor(options.background);
  return color < 0 ? clWhite : color;
}

/// What happens to transparency that the output cannot hold. Alpha channels, and any transparency
/// in JPEG, are painted onto the background. A bitmap file keeps the pixels of a transparent color
/// but not the mark.
enum class Transparency { none, forgotten, painted };

Transparency LostTransparency(const TBitmap& bitmap, PictureType type, int bits) {
  const Codec* codec = FindCodec(type);
  if (bitmap.AlphaFormat() == afDefined) {
    const bool keepsAlpha = (codec == nullptr || codec->keepsAlpha) && (bits == 0 || bits == 32);
    return keepsAlpha ? Transparency::none : Transparency::painted;
  }
  if (!bitmap.Transparent() || (codec != nullptr && codec->keepsTransparentColor)) {
    return Transparency::none;
  }
  return type == PictureType::jpeg ? Transparency::painted : Transparency::forgotten;
}

void Remove(std::vector<std::string>& names, const std::string& name) {
  names.erase(std::remove(names.begin(), names.end(), name), names.end());
}

/// One thread per processor unless --threads is given.
int CodecThreads(const PictureOptions& options) {
  if (options.threads > 0) return options.threads;
  return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 64u));
}

/// True if rows and columns stay as stored, so that the map position of the input stays valid.
bool StaysAsStored(const LoadedPicture& picture, const PictureOptions& options) {
  return picture.photo.orientation.value_or(1) == 1 && std::remainder(options.angle, 360.0) == 0;
}

/// Lists metadata that no output of the tool can hold, and the sources of the input's map position.
std::vector<std::string> AtRisk(const LoadedPicture& picture, const MapPlacement& placement) {
  std::vector<std::string> names = MetadataKindNames(picture.metadata);
  if (picture.photo.gps) names.emplace_back(MetadataKindName(MetadataKind::gps));
  names.insert(names.end(), placement.sources.begin(), placement.sources.end());
  if (picture.grid) names.emplace_back(MetadataKindName(MetadataKind::grid));
  if (picture.Pictures() > 1) names.emplace_back(MetadataKindName(MetadataKind::pages));
  return names;
}

MetafileDrawing DrawingOf(const PictureOptions& options) {
  MetafileDrawing drawing = options.metafile;
  drawing.background = SolidBackground(options);
  return drawing;
}

void NoteUnusedSize(LoadedPicture& picture, const PictureOptions& options) {
  if (picture.metafile || !options.metafile.IsAsked()) return;
  picture.warnings.emplace_back(
      "--dpi and --size apply only to metafiles; this picture keeps its size");
}

void NotePages(const LoadedPicture& picture, JobResult& result) {
  if (picture.Pictures() <= 1) return;
  result.warnings.push_back(
      fmt::format("only the first of {} pictures is used", picture.Pictures()));
}

void Save(const LoadedPicture& picture, const Job& job, const PictureOptions& options,
          const MapPlacement& placement, JobResult& result) {
  SaveOptions saving{options.quality, options.compression, CodecThreads(options), {}};
  if (WritableType(job.output) == PictureType::tiff && placement.tags) {
    saving.geo = placement.tags;
    for (const std::string& source : placement.kept) Remove(result.notCarriedOver, source);
    if (placement.doubt) result.warnings.push_back(*placement.doubt);
  }
  SavePicture(*picture.bitmap, job.output, saving);
}

/// Removes transparency that the output cannot hold, and reports it.
void FitTransparency(Subject& picture, PictureType type) {
  const Transparency lost = LostTransparency(*picture.bitmap, type, picture.options.bits);
  if (lost == Transparency::painted) picture.PaintTransparency();
  if (lost == Transparency::forgotten) {
    picture.result.notCarriedOver.emplace_back(MetadataKindName(MetadataKind::transparency));
  }
}

JobResult Change(const Job& job, const PictureOptions& options, LoadedPicture& picture,
                 const PictureSteps& steps) {
  const PictureType type = WritableType(job.output);
  MapPlacement placement = PlacementOf(job.input, picture);
  JobResult result;
  result.warnings = picture.warnings;
  NotePages(picture, result);
  result.notCarriedOver = AtRisk(picture, placement);
  if (!StaysAsStored(picture, options)) placement.tags.reset();

  TurnUpright(picture.bitmap, picture.photo.orientation.value_or(1));
  StopIfInterrupted();
  Turn(picture.bitmap, options);
  Subject subject{picture.bitmap, placement.tags, job, options, result};
  if (steps.change) steps.change(subject);
  StopIfInterrupted();
  FitTransparency(subject, type);
  if (options.bits != 0) picture.bitmap->SetPixelFormat(FormatOfBits(options.bits));
  if (picture.bitmap->Profile()) {
    Remove(result.notCarriedOver, MetadataKindName(MetadataKind::profile));
  }

  StopIfInterrupted();
  if (steps.write) {
    steps.write(picture, job);
  } else {
    Save(picture, job, options, placement, result);
  }
  result.type = steps.typeName.empty() ? PictureTypeName(type) : steps.typeName;
  result.width = picture.bitmap->Width();
  result.height = picture.bitmap->Height();
  result.bits = picture.bitmap->StoredBits();
  return result;
}

}  // namespace

int Subject::Threads() const {
  return CodecThreads(options);
}

void Subject::PaintTransparency() {
  if (!HasTransparency(*bitmap)) return;
  DropTransparency(bitmap, SolidBackground(options));
  result.notCarriedOver.emplace_back(MetadataKindName(MetadataKind::transparency));
}

void Subject::Refuse(const std::string& reason) const {
  throw Failure(exitOutputNotWritten, job.input + ": " + reason);
}

JobResult ConvertPicture(const Job& job, const PictureOptions& options, const PictureSteps& steps) {
  if (IsMetafileName(job.output)) return ConvertMetafile(job, options);
  LoadedPicture picture = LoadPicture(job.input, CodecThreads(options), DrawingOf(options));
  NoteUnusedSize(picture, options);
  StopIfInterrupted();
  return ConvertLoaded(picture, job, options, steps);
}

JobResult ConvertLoaded(LoadedPicture& picture, const Job& job, const PictureOptions& options,
                        const PictureSteps& steps) {
  try {
    return Change(job, options, picture, steps);
  } catch (const Error& error) {
    throw Failure(exitOutputNotWritten, job.output + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitOutputNotWritten, job.output + ": out of memory");
  }
}

}  // namespace rasterkit::tool
