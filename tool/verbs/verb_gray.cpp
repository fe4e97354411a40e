#include <rasterkit/bitmaptools/pixels/gray_mono.h>

#include "tool/pictures/change_colors.h"
#include "tool/pictures/entry_rows.h"
#include "tool/pictures/transparency.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

void MakeGray(Subject& picture, bool trueColor) {
  TBitmap& bitmap = *picture.bitmap;
  const auto inPlace = [](TBitmap& pixels) { BitmapToGray(&pixels, true); };
  if (trueColor || HasIndexes(bitmap) || HasTransparency(bitmap))
    return ChangeColors(bitmap, inPlace);
  BitmapToGray(&bitmap, false);
  // A profile of colours says nothing about greys.
  bitmap.SetProfile({});
}

}  // namespace

VerbRunner AddGrayVerb(CLI::App& app) {
  PictureVerb verb(app, "gray", "make a picture grey",
                   "True colour becomes 8-bit grey. Pictures with a palette keep their depth and "
                   "get a grey palette;\n"
                   "pictures with transparency keep it and stay true colour.\n\n"
                   "Examples:\n"
                   "  rasterkit gray photo.jpg gray.jpg\n"
                   "  rasterkit gray photo.jpg gray.png --true-color");
  const auto trueColor = std::make_shared<bool>(false);
  verb.Flag("--true-color", *trueColor, "keep true colour: 24-bit, not 8-bit");
  return verb.Changing([trueColor](Subject& picture) { MakeGray(picture, *trueColor); });
}

}  // namespace rasterkit::tool
