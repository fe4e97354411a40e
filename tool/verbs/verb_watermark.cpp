#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>

#include "tool/pictures/transparency.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// The library goes by the red of the mark's palette: as greys, every colour counts by its
/// darkness, and no colour is lost on the way to a palette.
std::unique_ptr<TBitmap> LoadMark(const std::string& file) {
  std::unique_ptr<TBitmap> mark = LoadUpright(file);
  if (HasTransparency(*mark)) DropTransparency(mark, clWhite);
  mark->SetPixelFormat(pf24bit);
  BitmapToGray(mark.get(), false);
  return mark;
}

void Press(const TBitmap& mark, Subject& picture) {
  const AlphaPlane alphas(*picture.bitmap);
  // The routine converts its mark, so that each picture needs one of its own.
  const auto ownMark = mark.Clone();
  auto marked = WaterMarkedBitmap(*picture.bitmap, *ownMark);
  marked->CarryFrom(
      *picture.bitmap,
      {.palette = false, .alphaFormat = false, .transparency = CarriedTransparency::none});
  picture.bitmap = std::move(marked);
  alphas.Restore(*picture.bitmap);
}

}  // namespace

VerbRunner AddWatermarkVerb(CLI::App& app) {
  PictureVerb verb(app, "watermark", "press a mark into a picture",
                   "The mark is stretched over the whole picture. Where it is white the picture "
                   "stays; where it is dark,\n"
                   "light parts of the picture become darker and dark parts lighter. The output is "
                   "24-bit, with the\n"
                   "transparency of the picture 32-bit.\n\n"
                   "Example:\n"
                   "  rasterkit watermark photo.jpg marked.jpg --with copyright.png");
  const auto file = std::make_shared<std::string>();
  verb.With(*file);
  return verb.ChangingAfter([file]() -> PictureChange {
    const std::shared_ptr<const TBitmap> mark = LoadMark(*file);
    return [mark](Subject& picture) { Press(*mark, picture); };
  });
}

}  // namespace rasterkit::tool
