#include <optional>

#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/arguments/color_argument.h"
#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/change_colors.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct RecolorOptions {
  int threshold = 0;
  std::string color;
  bool darker = false;
  std::optional<int> alpha;
};

void RecolorPixels(TBitmap& bitmap, const RecolorOptions& options) {
  uint8_t red, green, blue;
  GetRGB(ColorOf(options.color), red, green, blue);
  const auto recolor = options.darker ? SetColorBisGray : SetColorAbGray;
  recolor(&bitmap, static_cast<uint8_t>(options.threshold), red, green, blue,
          static_cast<uint8_t>(options.alpha.value_or(255)));
}

void Recolor(TBitmap& bitmap, const RecolorOptions& options) {
  if (!options.alpha) {
    return ChangeColors(bitmap, [&](TBitmap& pixels) { RecolorPixels(pixels, options); });
  }
  MakeAlphaChannel(bitmap);
  RecolorPixels(bitmap, options);
}

}  // namespace

VerbRunner AddRecolorVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"recolor",
       "give light or dark pixels a new color",
       {"Pixels with a gray value above the threshold get the color; with --darker, pixels below "
        "it. --alpha also sets their opacity; the output is then 32-bit (PNG, TIFF, BMP)."},
       {"rasterkit recolor plan.png red.png --threshold 128 --darker --color C00000",
        "rasterkit recolor scan.jpg faint.png --threshold 200 --color FFFFFF --alpha 0"}});
  const auto options = std::make_shared<RecolorOptions>();
  verb.Number("--threshold", "T", options->threshold, {0, 255}, "a gray value, 0 to 255")
      .Required();
  verb.Color("--color", options->color, "the new color").Required();
  verb.Flag("--darker", options->darker, "change pixels below the threshold, not above it");
  verb.Number("--alpha", "A", options->alpha, {0, 255},
              "opacity of these pixels, 0 (transparent) to 255 (opaque) [unchanged]");
  return verb.Changing([options](Subject& picture) { Recolor(*picture.bitmap, *options); });
}

}  // namespace rasterkit::tool
