#include <algorithm>
#include <array>

#include <rasterkit/codecs/jp2/jp2_picture.h>
#include <rasterkit/codecs/jp2/jp2_plan.h>
#include <rasterkit/codecs/rows/stated_facts.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

constexpr std::array<uint16_t, 8> kPositionTags = {33550, 33922, 34264, 34735,
                                                   34736, 34737, 42113, 50844};

/// The tags of the box, which is a TIFF file of one pixel.
void TakePosition(const detail::Jp2File& file, PictureHeader& header) {
  if (file.geoTiff.empty()) return;
  const ExifBlock block(file.geoTiff);
  if (block.IsDamaged()) header.warnings.emplace_back("JPEG 2000: the position box is damaged");
  for (TagValue& tag : block.All(ExifDirectoryId::main)) {
    if (std::find(kPositionTags.begin(), kPositionTags.end(), tag.tag) == kPositionTags.end()) {
      continue;
    }
    header.positionTags.push_back(std::move(tag));
  }
}

}  // namespace

PictureHeader ReadJp2Header(TStream& stream) {
  const LimitsScope limits;
  detail::Jp2File file = detail::ReadJp2File(stream);
  detail::Jp2Plan plan = detail::PlanOf(file);
  PictureHeader header;
  header.width = plan.width;
  header.height = plan.height;
  header.layout = plan.layout;
  header.frames = file.codestreams;
  header.metadata.profile = plan.layout.profile;
  header.metadata.exif = std::move(file.exif);
  header.metadata.xmp = std::move(file.xmp);
  header.metadata.iptc = std::move(file.iptc);
  header.metadata.comments = std::move(file.codestream.comments);
  header.hiddenOthers = std::move(file.others);
  header.unreadPosition = std::move(file.unreadPosition);
  header.warnings = std::move(file.warnings);
  header.warnings.insert(header.warnings.end(), plan.warnings.begin(), plan.warnings.end());
  TakePosition(file, header);
  detail::TakeStatedFacts(header, file.resolution, "JPEG 2000");
  return header;
}

}  // namespace rasterkit
