#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/change_colors.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct WhitenOptions {
  int threshold = 0;
  bool transparent = false;
};

void Whiten(TBitmap& bitmap, const WhitenOptions& options) {
  const auto threshold = static_cast<uint8_t>(options.threshold);
  ChangeColors(bitmap, [&](TBitmap& pixels) { SetToTransparent(&pixels, threshold); });
  if (options.transparent) MarkTransparent(bitmap, clWhite);
}

}  // namespace

VerbRunner AddWhitenVerb(CommandLine& line) {
  PictureVerb verb(line, {"whiten",
                          "turn light pixels white",
                          {"Pixels with a gray value above the threshold become white, for example "
                           "the gray paper of a scan."},
                          {"rasterkit whiten scan.jpg clean.png --threshold 200",
                           "rasterkit whiten scan.jpg overlay.png --threshold 200 --transparent"}});
  const auto options = std::make_shared<WhitenOptions>();
  verb.Number("--threshold", "T", options->threshold, {0, 255},
              "highest gray value that stays as it is, 0 to 255")
      .Required();
  verb.Flag("--transparent", options->transparent, "mark white as transparent (PNG)");
  return verb.Changing([options](Subject& picture) { Whiten(*picture.bitmap, *options); });
}

}  // namespace rasterkit::tool
