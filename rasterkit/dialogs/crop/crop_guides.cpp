#include <rasterkit/dialogs/crop/crop_guides.h>

namespace rasterkit {

std::vector<GuideLine> GuideLines(CropGuide guide, const RDRect& rect) {
  const int parts = guide == CropGuide::thirds ? 3 : guide == CropGuide::center ? 2 : 1;
  std::vector<GuideLine> lines;
  for (int i = 1; i < parts; ++i) {
    const double x = rect.Left + rect.Width() * i / parts;
    lines.push_back({x, rect.Top, x, rect.Bottom});
  }
  for (int i = 1; i < parts; ++i) {
    const double y = rect.Top + rect.Height() * i / parts;
    lines.push_back({rect.Left, y, rect.Right, y});
  }
  return lines;
}

}  // namespace rasterkit
