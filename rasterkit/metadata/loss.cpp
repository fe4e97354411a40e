#include <rasterkit/metadata/loss.h>

namespace rasterkit {

const char* LossKindName(LossKind kind) {
  switch (kind) {
    case LossKind::bits:
      return "bits";
    case LossKind::colors:
      return "colors";
    case LossKind::chroma:
      return "chroma";
    case LossKind::alpha:
      return "alpha";
    case LossKind::transparentColor:
      return "transparent-color";
    case LossKind::noData:
      return "no-data";
    case LossKind::damage:
      return "damage";
    case LossKind::pages:
      return "pages";
    case LossKind::frames:
      return "frames";
    case LossKind::hiddenPictures:
      return "hidden-pictures";
    case LossKind::position:
      return "position";
    case LossKind::controlPoints:
      return "control-points";
    case LossKind::coordinateSystem:
      return "coordinate-system";
    case LossKind::sideFile:
      return "side-file";
    case LossKind::exif:
      return "exif";
    case LossKind::gps:
      return "gps";
    case LossKind::xmp:
      return "xmp";
    case LossKind::iptc:
      return "iptc";
    case LossKind::comment:
      return "comment";
    case LossKind::text:
      return "text";
    case LossKind::profile:
      return "profile";
    case LossKind::resolution:
      return "resolution";
    case LossKind::thumbnail:
      return "thumbnail";
    case LossKind::makerNote:
      return "maker-note";
    case LossKind::otherBlock:
      return "other-block";
    case LossKind::tiling:
      return "tiling";
    case LossKind::records:
      return "records";
  }
  return "";
}

}  // namespace rasterkit
