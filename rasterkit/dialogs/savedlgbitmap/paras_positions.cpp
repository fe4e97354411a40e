#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/dialogs/savedlgbitmap/paras_positions.h>

namespace rasterkit {

int32_t GraphicTypeAt(int position) {
  switch (position) {
    case 0:
      return gtBmp;
    case 1:
      return gtJpg;
    case 3:
      return gtTif;
    default:
      return gtPng;
  }
}

int PositionOfGraphicType(int32_t type) {
  switch (type) {
    case gtBmp:
      return 0;
    case gtJpg:
      return 1;
    case gtTif:
      return 3;
    default:
      return 2;
  }
}

int32_t ColorDepthAt(int position) {
  switch (position) {
    case 0:
      return 1;
    case 1:
      return 4;
    case 2:
      return 8;
    default:
      return 24;
  }
}

int PositionOfColorDepth(int32_t bits) {
  switch (bits) {
    case 1:
      return 0;
    case 4:
      return 1;
    case 8:
      return 2;
    default:
      return 3;
  }
}

}  // namespace rasterkit
