#include <rasterkit/bitmaptools/engine/composition.h>

#include "tool/pictures/alpha_channel.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

void Swap(Subject& picture) {
  if (!HasTransparency(*picture.bitmap)) {
    picture.Refuse("the picture has no transparency; swapping would hide all of it");
  }
  KeyToAlpha(*picture.bitmap);
  SwapAlpha(picture.bitmap.get());
}

}  // namespace

VerbRunner AddSwapAlphaVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"swap-alpha",
       "swap transparent and visible pixels",
       {"Fully transparent pixels become visible. All others become transparent, even if they are "
        "partly transparent. Colors do not change. A picture without transparency is refused (exit "
        "code 4)."},
       {"rasterkit swap-alpha hole.png plug.png"}});
  return verb.Changing(Swap);
}

}  // namespace rasterkit::tool
