#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>

#include "tool/pictures/alpha_channel.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// WaterMarkedBitmap uses only the red channel of the mark's palette. In a gray mark every color
/// counts by its darkness, and no color is lost in the conversion to a palette.
std::unique_ptr<TBitmap> LoadMark(const std::string& file) {
  std::unique_ptr<TBitmap> mark = LoadUpright(file);
  if (HasTransparency(*mark)) DropTransparency(mark, clWhite);
  mark->SetPixelFormat(pf24bit);
  BitmapToGray(mark.get(), false);
  return mark;
}

void Press(const TBitmap& mark, Subject& picture) {
  const AlphaPlane alphas(*picture.bitmap);
  // The routine converts its mark, so each picture needs a copy.
  const auto ownMark = mark.Clone();
  auto marked = WaterMarkedBitmap(*picture.bitmap, *ownMark);
  marked->CarryFrom(
      *picture.bitmap,
      {.palette = false, .alphaFormat = false, .transparency = CarriedTransparency::none});
  picture.bitmap = std::move(marked);
  alphas.Restore(*picture.bitmap);
}

}  // namespace

VerbRunner AddWatermarkVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"watermark",
       "put a second picture on a picture as a watermark",
       {"The second picture, the mark, is stretched over the whole picture. White parts of the "
        "mark change nothing. "
        "Under dark parts of the mark, light parts of the picture become darker and dark parts "
        "lighter.",
        "The output is 24-bit, or 32-bit if the picture has transparency."},
       {"rasterkit watermark photo.jpg marked.jpg --with copyright.png"}});
  const auto file = std::make_shared<std::string>();
  verb.With(*file);
  return verb.ChangingAfter([file]() -> PictureChange {
    const std::shared_ptr<const TBitmap> mark = LoadMark(*file);
    return [mark](Subject& picture) { Press(*mark, picture); };
  });
}

}  // namespace rasterkit::tool
