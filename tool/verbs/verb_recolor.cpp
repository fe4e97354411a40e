#include "tool/arguments/color_argument.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddRecolorVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"recolor",
       "give light or dark pixels a new color",
       {"Pixels with a gray value above the threshold get the color; with --darker, pixels below "
        "it. --alpha also sets their opacity; the output is then 32-bit (PNG, TIFF, BMP)."},
       {"rasterkit recolor plan.png red.png --threshold 128 --darker --color C00000",
        "rasterkit recolor scan.jpg faint.png --threshold 200 --color FFFFFF --alpha 0"}});
  const auto options = std::make_shared<RecolorByGray>();
  const auto color = std::make_shared<std::string>();
  verb.Number("--threshold", "T", options->threshold, {0, 255}, "a gray value, 0 to 255")
      .Required();
  verb.Color("--color", *color, "the new color").Required();
  verb.Flag("--darker", options->darker, "change pixels below the threshold, not above it");
  verb.Number("--alpha", "A", options->alpha, {0, 255},
              "opacity of these pixels, 0 (transparent) to 255 (opaque) [unchanged]");
  return verb.Changing([options, color](PictureWork& work) {
    RecolorByGray change = *options;
    change.color = ColorOf(*color);
    work.Add(ChangeStep{change});
  });
}

}  // namespace rasterkit::tool
