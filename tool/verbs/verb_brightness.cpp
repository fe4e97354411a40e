#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddBrightnessVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"brightness",
       "make a picture lighter or darker",
       {"Above 0 all colors become lighter, dark ones more than light ones. Below 0 they are "
        "scaled down; at -100 everything is black.",
        "Pictures with a palette keep the palette and their depth; all others become true color."},
       {"rasterkit brightness aerial.jpg background.jpg --percent 30",
        "rasterkit brightness faint.png stronger.png --percent -20"}});
  const auto percent = std::make_shared<int>(0);
  verb.Percent(*percent);
  return verb.Changing(
      [percent](PictureWork& work) { work.Add(ChangeStep{AdjustColors{.brightness = *percent}}); });
}

}  // namespace rasterkit::tool
