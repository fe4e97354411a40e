#include <rasterkit/jpegexif/exif_tags.h>

namespace rasterkit {

const TTagRow* detail::FindTagRow(TTagType group, uint16_t tag) {
  switch (group) {
    case tagExif:
    case tagThumb:
      for (size_t row = 1; row < kExifTable.size(); ++row) {
        if (kExifTable[row].Tag == tag) return &kExifTable[row];
      }
      return nullptr;
    case tagGPS:
      return tag < kGpsTable.size() ? &kGpsTable[tag] : nullptr;
    default:
      return nullptr;
  }
}

}  // namespace rasterkit
