#include <rasterkit/bitmaptools/engine/composition.h>

#include "tool/pictures/transparency.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

void Swap(Subject& picture) {
  if (!HasTransparency(*picture.bitmap))
    picture.Refuse("nothing in the picture is transparent; swapped, all of it would be");
  KeyToAlpha(*picture.bitmap);
  SwapAlpha(picture.bitmap.get());
}

}  // namespace

VerbRunner AddSwapAlphaVerb(CLI::App& app) {
  PictureVerb verb(app, "swap-alpha", "exchange transparent and visible",
                   "What is wholly transparent becomes visible; all else, also what is partly "
                   "transparent, becomes\n"
                   "transparent. Colours stay. A picture without transparency is refused (exit "
                   "code 4).\n\n"
                   "Example:\n"
                   "  rasterkit swap-alpha hole.png plug.png");
  return verb.Changing(Swap);
}

}  // namespace rasterkit::tool
