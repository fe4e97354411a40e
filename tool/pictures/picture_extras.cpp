#include "tool/pictures/picture_extras.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <new>

#include <fmt/format.h>

#include <rasterkit/codecs/rows/metadata_kind.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/runtime/errors.h>

#include "tool/command/printable.h"
#include "tool/pictures/placement/map_placement.h"

namespace rasterkit::tool {
namespace {

/// Throws Error if the file cannot be read.
std::vector<std::string> ExtrasOf(const std::string& file, Isolation isolation) {
  PictureReading reading;
  reading.withPixels = false;
  reading.isolation = isolation;
  LoadedFrame picture;
  ReadPicture(picture, file, reading);
  if (picture.type == PictureType::tiff && !picture.tiff) return {};
  std::vector<std::string> names = MetadataKindNames(picture.metadata);
  if (picture.photo.gps) names.emplace_back(MetadataKindName(MetadataKind::gps));
  const std::vector<std::string> sources = MapSources(file, picture.tiff.value_or(TiffFacts()));
  names.insert(names.end(), sources.begin(), sources.end());
  if (picture.Pictures() > 1) names.emplace_back(MetadataKindName(MetadataKind::pages));
  return names;
}

}  // namespace

std::vector<std::string> PictureExtras(const std::string& file, Isolation isolation) {
  try {
    return ExtrasOf(file, isolation);
  } catch (const Error&) {
    return {};
  } catch (const std::bad_alloc&) {
    return {};
  }
}

void SayWhatIsLost(const std::vector<std::string>& before, const std::string& output,
                   Isolation isolation) {
  const std::vector<std::string> after = PictureExtras(output, isolation);
  std::vector<std::string> lost;
  std::copy_if(before.begin(), before.end(), std::back_inserter(lost), [&](const auto& name) {
    return std::find(after.begin(), after.end(), name) == after.end();
  });
  if (lost.empty()) return;
  PrintMessage(fmt::format("{}: not carried over: {}", output, fmt::join(lost, ", ")));
}

}  // namespace rasterkit::tool
