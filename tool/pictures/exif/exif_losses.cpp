#include "tool/pictures/exif/exif_losses.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include <fmt/format.h>

#include <rasterkit/codecs/metadata.h>
#include <rasterkit/jpegexif/jpeg_sections.h>

#include "tool/pictures/exif/exif_block.h"
#include "tool/pictures/exif/jpeg_header.h"
#include "tool/reports/photo_facts.h"

namespace rasterkit::tool {
namespace {

using Bytes = std::vector<uint8_t>;

bool Has(const std::vector<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

/// What a file tells beside its pixels, in the words of the list of losses; sections that nobody
/// here knows by the name of their marker.
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

/// Pixels an inch (1) or a centimetre (2) as the JFIF header states them, in a row with their unit;
/// nothing where they are but a ratio.
std::optional<std::array<uint32_t, 2>> HeaderDensity(const JpegHeader& header) {
  const JpegSegment* jfif = header.Find(MetadataKind::jfif);
  constexpr size_t unitPlace = 7, densityPlace = 8;
  if (jfif == nullptr || jfif->payload.size() < densityPlace + 2) return std::nullopt;
  const auto& bytes = jfif->payload;
  if (bytes[unitPlace] == 0) return std::nullopt;
  return {{bytes[densityPlace] * 256u + bytes[densityPlace + 1], bytes[unitPlace]}};
}

/// The same of the EXIF section.
std::optional<std::array<uint32_t, 2>> ExifDensity(const JpegHeader& header) {
  constexpr uint16_t xResolution = 282, resolutionUnit = 296;
  const JpegSegment* exif = header.Find(MetadataKind::exif);
  if (exif == nullptr) return std::nullopt;
  const ExifBlock block(SectionBytes(*exif));
  const ExifDirectory* main = block.Find("main");
  const ExifEntry* value = main != nullptr ? main->Find(xResolution) : nullptr;
  if (value == nullptr) return std::nullopt;
  const ExifEntry* unit = main->Find(resolutionUnit);
  const double density = block.Value(*value);
  if (!(density >= 0 && density <= 65535)) return std::nullopt;
  return {
      {static_cast<uint32_t>(std::lround(density)), unit != nullptr ? block.Number(*unit) - 1 : 1}};
}

/// The EXIF section displaces the header that states the picture's resolution; it may state the
/// same.
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
  for (const Bytes* source : {&photo, &picture})
    for (const std::string& kind : KindsIn(*source))
      if (!Has(kept, kind) && !Has(lost, kind)) lost.push_back(kind);
  if (LosesResolution(picture, result))
    lost.emplace_back(MetadataKindName(MetadataKind::resolution));
  return lost;
}

}  // namespace rasterkit::tool
