#include "tool/pictures/adjust_values.h"
#include "tool/pictures/change_colors.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddBrightnessVerb(CLI::App& app) {
  PictureVerb verb(app, "brightness", "make a picture lighter or darker",
                   "Above 0 all colours become lighter, dark ones more than light ones; below 0 "
                   "they are scaled, and at\n"
                   "-100 all is black. Pictures with a palette keep it and their depth, all others "
                   "become true colour.\n\n"
                   "Examples:\n"
                   "  rasterkit brightness aerial.jpg background.jpg --percent 30\n"
                   "  rasterkit brightness faint.png stronger.png --percent -20");
  const auto percent = std::make_shared<int>(0);
  verb.Percent(*percent);
  verb.WorksOnThreads();
  return verb.Changing([percent](Subject& picture) {
    ChangeColors(*picture.bitmap,
                 [&](TBitmap& pixels) { ChangeBrightness(pixels, *percent, picture.Threads()); });
  });
}

}  // namespace rasterkit::tool
