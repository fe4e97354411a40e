#include <algorithm>
#include <array>
#include <iterator>

#include <rasterkit/codecs/rows/metadata_kind.h>

namespace rasterkit {
namespace {

struct KindName {
  MetadataKind kind;
  const char* name;
};

constexpr std::array kNames{
    KindName{MetadataKind::exif, "exif"},
    KindName{MetadataKind::xmp, "xmp"},
    KindName{MetadataKind::iptc, "iptc"},
    KindName{MetadataKind::comment, "comment"},
    KindName{MetadataKind::text, "text"},
    KindName{MetadataKind::profile, "profile"},
    KindName{MetadataKind::jfif, "jfif"},
    KindName{MetadataKind::jfxx, "jfxx"},
    KindName{MetadataKind::adobe, "adobe"},
    KindName{MetadataKind::mpf, "mpf"},
    KindName{MetadataKind::gps, "gps"},
    KindName{MetadataKind::grid, "grid"},
    KindName{MetadataKind::pages, "pages"},
    KindName{MetadataKind::records, "records"},
    KindName{MetadataKind::resolution, "resolution"},
    KindName{MetadataKind::transparency, "transparency"},
    KindName{MetadataKind::worldFile, "worldfile"},
    KindName{MetadataKind::geoTiff, "geotiff"},
    KindName{MetadataKind::geoTiffTransformation, "geotiff-transformation"},
    KindName{MetadataKind::tiePoints, "tie-points"},
    KindName{MetadataKind::coordinateSystem, "coordinate-system"},
    KindName{MetadataKind::noData, "nodata"},
};

/// The table has a row for each kind, in the order of the enumeration.
constexpr bool IsComplete() {
  for (size_t i = 0; i < kNames.size(); ++i) {
    if (static_cast<size_t>(kNames[i].kind) != i) return false;
  }
  return kNames.size() == static_cast<size_t>(MetadataKind::noData) + 1;
}
static_assert(IsComplete());

}  // namespace

const char* MetadataKindName(MetadataKind kind) {
  return kNames[static_cast<size_t>(kind)].name;
}

std::vector<std::string> MetadataKindNames(std::span<const MetadataKind> kinds) {
  std::vector<std::string> names;
  std::transform(kinds.begin(), kinds.end(), std::back_inserter(names), MetadataKindName);
  return names;
}

}  // namespace rasterkit
