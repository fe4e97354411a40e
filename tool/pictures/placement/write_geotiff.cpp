#include "tool/pictures/placement/write_geotiff.h"

#include <algorithm>
#include <filesystem>

#include <fmt/core.h>

#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/tifftobmp/geotiff_writer.h>

#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/limit_options.h"
#include "tool/command/output_file.h"
#include "tool/pictures/convert_picture.h"
#include "tool/pictures/placement/geo_position.h"
#include "tool/pictures/placement/world_file.h"

namespace rasterkit::tool {
namespace {

/// A placement and its source.
struct Found {
  Placement placement;
  /// "worldfile", "geotiff" and so on; empty for the command line.
  std::string source;
  /// The position sources of the input that the output replaces; a warning is given if they
  /// disagree.
  std::vector<std::string> carriedOver;
  std::vector<std::string> warnings;
};

[[noreturn]] void Refuse(const std::string& file, const std::string& reason) {
  throw Failure(exitOutputNotWritten, file + ": " + reason);
}

/// The tags can only hold two positive sizes and a corner. Refuses any other position: a wrong one
/// would be worse than none.
Placement PlacementOf(const Affine& affine, const std::string& file) {
  const auto [perColumnX, perColumnY, perRowX, perRowY, x, y] = affine;
  const char* const tags = "which pixel scale and tie point cannot express";
  if (perColumnY != 0 || perRowX != 0) {
    Refuse(file, fmt::format("turns or skews the picture (y per column {}, x per row {}), {}",
                             perColumnY, perRowX, tags));
  }
  if (perColumnX == 0 || perRowY == 0) {
    Refuse(file, fmt::format("gives a pixel size of 0 (x per column {}, y per row {})", perColumnX,
                             perRowY));
  }
  if (perColumnX < 0) {
    Refuse(file, fmt::format("has columns that run west (x per column {}), {}", perColumnX, tags));
  }
  if (perRowY > 0) {
    Refuse(file, fmt::format("has rows that run north (y per row {}), {}", perRowY, tags));
  }
  const MapPoint corner = UpperLeftCorner(affine);
  return {corner.x, corner.y, perColumnX, -perRowY};
}

/// Why a file does not contain six numbers. A pipe cannot be read again.
std::string ReasonForNoNumbers(const std::string& name) {
  std::error_code ignored;
  try {
    if (!std::filesystem::is_fifo(ToPath(name), ignored)) const TFileStream opens(name);
  } catch (const Error& error) {
    return ReasonWithOption(error);
  }
  return "not a world file: it must begin with six numbers, one per line";
}

Found FromWorldFile(const std::string& name) {
  const auto worldFile = ReadWorldFile(name);
  if (!worldFile) throw Failure(exitInputUnreadable, name + ": " + ReasonForNoNumbers(name));
  Found found{
      PlacementOf(worldFile->affine, name), MetadataKindName(MetadataKind::worldFile), {}, {}};
  if (worldFile->hasDecimalCommas) {
    found.warnings.push_back(name + ": commas were read as decimal points");
  }
  return found;
}

/// Tags of the input itself; empty for anything except a readable TIFF file. Loading reports the
/// error later.
TiffFacts FactsOf(const std::string& file) {
  PictureReading reading;
  reading.withPixels = false;
  reading.isolation = ReadingIsolation();
  try {
    LoadedFrame picture;
    ReadPicture(picture, file, reading);
    return picture.tiff.value_or(TiffFacts());
  } catch (const Error&) {
    return {};
  }
}

/// The world file of --world-file may be another one than that beside the picture.
Found FromNamedFile(const std::string& name, const std::string& input) {
  Found found = FromWorldFile(name);
  const auto beside = FindWorldFile(input);
  std::error_code ignored;
  if (beside && std::filesystem::equivalent(ToPath(name), ToPath(*beside), ignored)) {
    found.carriedOver.emplace_back(MetadataKindName(MetadataKind::worldFile));
  }
  return found;
}

Found FromInput(const std::string& input) {
  const TiffFacts facts = FactsOf(input);
  Found found;
  if (const auto worldFile = FindWorldFile(input)) {
    found = FromWorldFile(*worldFile);
  } else if (const auto inTags = PositionsInTiff(facts); !inTags.empty()) {
    found = {PlacementOf(inTags[0].affine, input), inTags[0].source, {}, {}};
  } else {
    Refuse(input, "has no position; use --origin and --pixel-size, or a world file");
  }
  const std::vector<GeoPosition> positions = PositionsOf(input, facts);
  for (const GeoPosition& position : positions) found.carriedOver.push_back(position.source);
  if (const auto doubt =
          PositionDoubt(positions, static_cast<int>(facts.width), static_cast<int>(facts.height))) {
    found.warnings.push_back(*doubt);
  }
  return found;
}

Found FindPlacement(const std::string& input, const PlacementOptions& options) {
  if (options.given) return {*options.given, "", {}, {}};
  return options.worldFile.empty() ? FromInput(input) : FromNamedFile(options.worldFile, input);
}

/// World files and tags refer to columns and rows as stored.
void RequireStoredUpright(const LoadedPicture& picture, const Job& job, const Found& found) {
  const int orientation = picture.photo.orientation.value_or(1);
  if (found.source.empty() || orientation == 1) return;
  Refuse(job.input,
         fmt::format("orientation {} turns the picture, but its position refers to the rows as "
                     "stored; use --origin and --pixel-size of the upright picture",
                     orientation));
}

/// The library's routine silently omits the tags for small pixels.
constexpr double kSmallestScale = 0.01;

void WriteAnySize(const TBitmap& bitmap, TStream& stream, const Placement& placement) {
  TiffWriteOptions options;
  options.geo = {{placement.width, placement.height, 0}, {0, 0, 0, placement.x, placement.y, 0}};
  EncodeTiff(bitmap.Content(), stream, options);
}

void Write(TBitmap& bitmap, TStream& stream, const Placement& placement) {
  if (placement.width > kSmallestScale && placement.height > kSmallestScale) {
    WriteBitmapToTiff(bitmap, stream, false, placement.x, placement.y, placement.width,
                      placement.height);
    return;
  }
  if (bitmap.PixelFormat() == pf15bit || bitmap.PixelFormat() == pf16bit) {
    bitmap.SetPixelFormat(pf24bit);
  }
  WriteAnySize(bitmap, stream, placement);
}

}  // namespace

JobResult WriteGeoTiff(const Job& job, const PlacementOptions& options) {
  const Found found = FindPlacement(job.input, options);
  const PictureWriter write = [&](LoadedPicture& picture, const Job& written) {
    RequireStoredUpright(picture, written, found);
    return WriteOutput(written.output, written.saving,
                       [&](TStream& stream) { Write(*picture.bitmap, stream, found.placement); });
  };
  JobResult result = ConvertPicture(job, PictureOptions(), {{}, write, {}});
  auto& lost = result.notCarriedOver;
  for (const std::string& source : found.carriedOver) {
    lost.erase(std::remove(lost.begin(), lost.end(), source), lost.end());
  }
  result.warnings.insert(result.warnings.end(), found.warnings.begin(), found.warnings.end());
  return result;
}

}  // namespace rasterkit::tool
