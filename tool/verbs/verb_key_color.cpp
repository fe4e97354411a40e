#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/arguments/color_argument.h"
#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/change_colors.h"
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

VerbRunner AddKeyColorVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"key-color",
       "replace the color of the bottom left pixel everywhere",
       {"If a picture marks no color as transparent, many programs use the color of the bottom "
        "left pixel: the key color. Every pixel of exactly that color gets the new color."},
       {"rasterkit key-color symbol.bmp on-white.bmp --color FFFFFF",
        "rasterkit key-color symbol.bmp symbol.png --color FF00FF --transparent"}});
  const auto options = std::make_shared<KeyOptions>();
  verb.Color("--color", options->color, "the new color").Required();
  verb.Flag("--transparent", options->transparent, "mark the new color as transparent (PNG)");
  return verb.Changing([options](Subject& picture) { ReplaceKey(*picture.bitmap, *options); });
}

}  // namespace rasterkit::tool
