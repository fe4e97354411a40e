#include <rasterkit/jpegexif/exif_data.h>

namespace rasterkit {

int TExifData::AddTagToArray(const TTagEntry& nextTag) {
  constexpr int32_t kGrowth = 20;
  if (TagTypes.Contains(nextTag.TagType)) {
    if (FTagCount >= MaxTag - 1) {
      MaxTag += kGrowth;
      FTagArray.resize(static_cast<size_t>(MaxTag));
    }
    FTagArray[static_cast<size_t>(FTagCount++)] = nextTag;
  }
  return FTagCount - 1;
}

bool TExifData::HasThumbnail() const {
  constexpr int32_t kLeastStart = 22;
  constexpr int32_t kLeastLength = 257;
  return ThumbStart >= kLeastStart && ThumbLength >= kLeastLength;
}

}  // namespace rasterkit
