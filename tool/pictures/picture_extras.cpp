#include "tool/pictures/picture_extras.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <new>

#include <fmt/format.h>

#include <rasterkit/codecs/metadata.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tool/command/printable.h"
#include "tool/pictures/placement/map_placement.h"
#include "tool/reports/photo_facts.h"

namespace rasterkit::tool {
namespace {

std::vector<std::string> ExtrasOfTiff(const std::string& file, TStream& stream) {
  const TiffFacts facts = ReadTiffFacts(stream);
  std::vector<std::string> names = MetadataKindNames(facts.metadata);
  const std::vector<std::string> sources = MapSources(file, facts);
  names.insert(names.end(), sources.begin(), sources.end());
  if (facts.pages - facts.secondaryPages > 1) {
    names.emplace_back(MetadataKindName(MetadataKind::pages));
  }
  return names;
}

std::vector<std::string> ExtrasOfBytes(const std::string& file, const std::vector<uint8_t>& bytes) {
  const PictureMetadata metadata = ReadMetadata(bytes);
  std::vector<std::string> names = MetadataKindNames(metadata.kinds);
  if (ReadExifFacts(metadata.exif).gps) names.emplace_back(MetadataKindName(MetadataKind::gps));
  const std::vector<std::string> sources = MapSources(file, {});
  names.insert(names.end(), sources.begin(), sources.end());
  if (metadata.pictures > 1) names.emplace_back(MetadataKindName(MetadataKind::pages));
  return names;
}

/// Bitmap files can be huge and have no metadata.
std::vector<std::string> ExtrasOf(const std::string& file) {
  TFileStream stream(file);
  const PictureType type = SniffPictureType(stream);
  if (type == PictureType::tiff) return ExtrasOfTiff(file, stream);
  if (type == PictureType::bmp) return MapSources(file, {});
  return ExtrasOfBytes(file, stream.ReadToEnd());
}

}  // namespace

std::vector<std::string> PictureExtras(const std::string& file) {
  try {
    return ExtrasOf(file);
  } catch (const Error&) {
    return {};
  } catch (const std::bad_alloc&) {
    return {};
  }
}

void SayWhatIsLost(const std::vector<std::string>& before, const std::string& output) {
  const std::vector<std::string> after = PictureExtras(output);
  std::vector<std::string> lost;
  std::copy_if(before.begin(), before.end(), std::back_inserter(lost), [&](const auto& name) {
    return std::find(after.begin(), after.end(), name) == after.end();
  });
  if (lost.empty()) return;
  PrintMessage(fmt::format("{}: not carried over: {}", output, fmt::join(lost, ", ")));
}

}  // namespace rasterkit::tool
