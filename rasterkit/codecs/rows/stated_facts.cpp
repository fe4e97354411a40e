#include <algorithm>
#include <cmath>
#include <string>

#include <rasterkit/codecs/rows/stated_facts.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/image_resources.h>

namespace rasterkit::detail {
uint32_t DotsPerMeter(double dotsPerInch) {
  constexpr double kMetersPerInch = 0.0254;
  if (!(dotsPerInch > 0)) return 0;
  return static_cast<uint32_t>(
      std::clamp(std::round(dotsPerInch / kMetersPerInch), 1.0, 2147483647.0));
}

void TakeStatedFacts(PictureHeader& header, const Resolution& resolution, const char* format) {
  StatedResolutions stated;
  stated.header = resolution;
  if (!header.metadata.exif.empty()) {
    const ExifBlock exif(header.metadata.exif);
    header.orientation = OrientationOf(exif);
    stated.exif = ResolutionOf(exif);
    if (exif.IsDamaged()) {
      header.warnings.push_back(std::string(format) + ": the EXIF block is damaged");
    }
  }
  if (!header.metadata.photoshop.empty()) {
    stated.photoshop = ResolutionOf(ImageResources(header.metadata.photoshop));
  }
  header.metadata.resolution = ChooseResolution(stated);
}

}  // namespace rasterkit::detail
