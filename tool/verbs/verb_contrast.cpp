#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddContrastVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"contrast",
       "raise or lower the contrast of a picture",
       {"Every channel moves away from middle gray (above 0) or towards it (below 0); at -100 the "
        "whole picture has one gray value.",
        "Pictures with a palette keep the palette and their depth; all others become true color."},
       {"rasterkit contrast scan.jpg clear.jpg --percent 40",
        "rasterkit contrast aerial.png background.png --percent -50"}});
  const auto percent = std::make_shared<int>(0);
  verb.Percent(*percent);
  return verb.Changing(
      [percent](PictureWork& work) { work.Add(ChangeStep{AdjustColors{.contrast = *percent}}); });
}

}  // namespace rasterkit::tool
