#include <optional>

#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/pictures/change_colors.h"
#include "tool/pictures/transparency.h"
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
  if (!options.alpha)
    return ChangeColors(bitmap, [&](TBitmap& pixels) { RecolorPixels(pixels, options); });
  MakeAlphaChannel(bitmap);
  RecolorPixels(bitmap, options);
}

}  // namespace

VerbRunner AddRecolorVerb(CLI::App& app) {
  PictureVerb verb(app, "recolor", "give light or dark pixels a colour",
                   "Pixels whose grey value is above the threshold, with --darker those below it, "
                   "get the colour.\n"
                   "--alpha makes them more or less transparent as well; the output is then 32-bit "
                   "(PNG, TIFF, BMP).\n\n"
                   "Examples:\n"
                   "  rasterkit recolor plan.png red.png --threshold 128 --darker --color C00000\n"
                   "  rasterkit recolor scan.jpg faint.png --threshold 200 --color FFFFFF --alpha "
                   "0");
  const auto options = std::make_shared<RecolorOptions>();
  verb.Number("--threshold", "T", options->threshold, {0, 255}, "a grey value, 0 to 255",
              Need::required);
  verb.Color("--color", options->color, "the new colour", Need::required);
  verb.Flag("--darker", options->darker,
            "pixels darker than the threshold instead of lighter ones");
  verb.Number("--alpha", "A", options->alpha, {0, 255},
              "opacity of these pixels, 0 (transparent) to 255 (opaque) [as it is]");
  return verb.Changing([options](Subject& picture) { Recolor(*picture.bitmap, *options); });
}

}  // namespace rasterkit::tool
