#include "tool/pictures/exif/exif_losses.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include <fmt/core.h>

#include <rasterkit/codecs/list_metadata.h>
#include <rasterkit/jpegexif/jpeg_sections.h>
#include <rasterkit/pictures/reading/photo_facts.h>

#include "tool/pictures/exif/exif_section.h"
#include "tool/pictures/exif/jpeg_header.h"

namespace rasterkit::tool {
namespace {

using Bytes = std::vector<uint8_t>;

bool Has(const std::vector<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

/// Lists the metadata of a file with the names used in reports of losses; unknown sections have the
/// name of their marker.
std::vector<std::string> KindsIn(const Bytes& jpeg) {
  std::vector<std::string> kinds = MetadataKindNames(ReadMetadata(jpeg).kinds);
  for (const JpegSegment& segment : ReadJpegHeader(jpeg).segments) {
    const std::optional<MetadataKind> kind = SegmentKind(segment);
    const bool isApp = segment.marker >= kMarkerApp0 && segment.marker <= kMarkerApp0 + 15;
    if (kind == MetadataKind::mpf) kinds.emplace_back(MetadataKindName(*kind));
    if (isApp && !kind) kinds.push_back(fmt::format("app{}", segment.marker - kMarkerApp0));
  }
  if (ReadPhotoFacts(jpeg).gps) kinds.emplace_back(MetadataKindName(MetadataKind::gps));
  return kinds;
}

/// Resolution of the JFIF header with its unit, pixels per inch (1) or per centimeter (2); nothing
/// if it states only a ratio.
std::optional<std::array<uint32_t, 2>> HeaderDensity(const JpegHeader& header) {
  const JpegSegment* jfif = header.Find(MetadataKind::jfif);
  constexpr size_t kUnitPlace = 7, kDensityPlace = 8;
  if (jfif == nullptr || jfif->payload.size() < kDensityPlace + 2) return std::nullopt;
  const auto& bytes = jfif->payload;
  if (bytes[kUnitPlace] == 0) return std::nullopt;
  return {{bytes[kDensityPlace] * 256u + bytes[kDensityPlace + 1], bytes[kUnitPlace]}};
}

/// Resolution of the EXIF section.
std::optional<std::array<uint32_t, 2>> ExifDensity(const JpegHeader& header) {
  constexpr uint16_t kXResolution = 282, kResolutionUnit = 296;
  const JpegSegment* exif = header.Find(MetadataKind::exif);
  if (exif == nullptr) return std::nullopt;
  const ExifBlock block(SectionBytes(*exif));
  const ExifDirectory* main = block.Find("main");
  const ExifEntry* value = main != nullptr ? main->Find(kXResolution) : nullptr;
  if (value == nullptr) return std::nullopt;
  const ExifEntry* unit = main->Find(kResolutionUnit);
  const double density = block.Value(*value);
  if (!(density >= 0 && density <= 65535)) return std::nullopt;
  return {
      {static_cast<uint32_t>(std::lround(density)), unit != nullptr ? block.Number(*unit) - 1 : 1}};
}

/// The EXIF section replaces the JFIF header with the resolution of the picture; it may state the
/// same resolution.
bool LosesResolution(const Bytes& picture, const Bytes& result) {
  const auto before = HeaderDensity(ReadJpegHeader(picture));
  const JpegHeader header = ReadJpegHeader(result);
  const auto after =
      header.Find(MetadataKind::jfif) != nullptr ? HeaderDensity(header) : ExifDensity(header);
  return before && before != after;
}

}  // namespace

std::vector<std::string> LostByCopying(const Bytes& photo, const Bytes& picture,
                                       const Bytes& result) {
  const std::vector<std::string> kept = KindsIn(result);
  std::vector<std::string> lost;
  for (const Bytes* source : {&photo, &picture}) {
    for (const std::string& kind : KindsIn(*source)) {
      if (!Has(kept, kind) && !Has(lost, kind)) lost.push_back(kind);
    }
  }
  if (LosesResolution(picture, result)) {
    lost.emplace_back(MetadataKindName(MetadataKind::resolution));
  }
  return lost;
}

}  // namespace rasterkit::tool
