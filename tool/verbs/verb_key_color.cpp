#include "tool/arguments/color_argument.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddKeyColorVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"key-color",
       "replace the color of the bottom left pixel everywhere",
       {"If a picture marks no color as transparent, many programs use the color of the bottom "
        "left pixel: the key color. Every pixel of exactly that color gets the new color."},
       {"rasterkit key-color symbol.bmp on-white.bmp --color FFFFFF",
        "rasterkit key-color symbol.bmp symbol.png --color FF00FF --transparent"}});
  const auto color = std::make_shared<std::string>();
  const auto transparent = std::make_shared<bool>(false);
  verb.Color("--color", *color, "the new color").Required();
  verb.Flag("--transparent", *transparent, "mark the new color as transparent (PNG)");
  return verb.Changing([color, transparent](PictureWork& work) {
    work.Add(ChangeStep{ReplaceKeyColor{ColorOf(*color), *transparent}});
  });
}

}  // namespace rasterkit::tool
