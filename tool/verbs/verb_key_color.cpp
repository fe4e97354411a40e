#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/pictures/change_colors.h"
#include "tool/pictures/transparency.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct KeyOptions {
  std::string color;
  bool transparent = false;
};

void ReplaceKey(TBitmap& bitmap, const KeyOptions& options) {
  const TColor color = ColorOf(options.color);
  ChangeColors(bitmap, [&](TBitmap& pixels) { SetTransColor(pixels, color); });
  if (options.transparent) MarkTransparent(bitmap, color);
}

}  // namespace

VerbRunner AddKeyColorVerb(CLI::App& app) {
  PictureVerb verb(
      app, "key-color", "replace the colour of the bottom left pixel everywhere",
      "The colour of the bottom left pixel is the one that programs take as "
      "transparent when none is\n"
      "marked: the key colour. Every pixel of exactly that colour gets the new one.\n\n"
      "Examples:\n"
      "  rasterkit key-color symbol.bmp on-white.bmp --color FFFFFF\n"
      "  rasterkit key-color symbol.bmp symbol.png --color FF00FF --transparent");
  const auto options = std::make_shared<KeyOptions>();
  verb.Color("--color", options->color, "the new colour", Need::required);
  verb.Flag("--transparent", options->transparent, "mark the new colour as transparent (PNG)");
  return verb.Changing([options](Subject& picture) { ReplaceKey(*picture.bitmap, *options); });
}

}  // namespace rasterkit::tool
