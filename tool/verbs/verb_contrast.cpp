#include "tool/pictures/adjust_values.h"
#include "tool/pictures/change_colors.h"
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
  verb.WorksOnThreads();
  return verb.Changing([percent](Subject& picture) {
    ChangeColors(*picture.bitmap,
                 [&](TBitmap& pixels) { ChangeContrast(pixels, *percent, picture.Threads()); });
  });
}

}  // namespace rasterkit::tool
