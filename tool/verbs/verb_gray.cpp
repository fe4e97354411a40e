#include <rasterkit/bitmaptools/pixels/gray_mono.h>

#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/change_colors.h"
#include "tool/pictures/palette_indexes.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

void MakeGray(Subject& picture, bool trueColor) {
  TBitmap& bitmap = *picture.bitmap;
  const auto inPlace = [](TBitmap& pixels) { BitmapToGray(&pixels, true); };
  if (trueColor || HasIndexes(bitmap) || HasTransparency(bitmap)) {
    return ChangeColors(bitmap, inPlace);
  }
  BitmapToGray(&bitmap, false);
  // A color profile does not apply to gray pixels.
  bitmap.SetProfile({});
}

}  // namespace

VerbRunner AddGrayVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"gray",
       "make a picture gray",
       {"True color becomes 8-bit gray. Pictures with a palette keep their depth and "
        "get a gray palette. Pictures with transparency keep it and stay true color."},
       {"rasterkit gray photo.jpg gray.jpg", "rasterkit gray photo.jpg gray.png --true-color"}});
  const auto trueColor = std::make_shared<bool>(false);
  verb.Flag("--true-color", *trueColor, "keep true color: 24-bit instead of 8-bit");
  return verb.Changing([trueColor](Subject& picture) { MakeGray(picture, *trueColor); });
}

}  // namespace rasterkit::tool
