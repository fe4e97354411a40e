#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/pictures/change_colors.h"
#include "tool/pictures/transparency.h"
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

VerbRunner AddWhitenVerb(CLI::App& app) {
  PictureVerb verb(app, "whiten", "turn light pixels white",
                   "Pixels whose grey value is above the threshold become white: the grey paper of "
                   "a scan, for instance.\n\n"
                   "Examples:\n"
                   "  rasterkit whiten scan.jpg clean.png --threshold 200\n"
                   "  rasterkit whiten scan.jpg overlay.png --threshold 200 --transparent");
  const auto options = std::make_shared<WhitenOptions>();
  verb.Number("--threshold", "T", options->threshold, {0, 255},
              "grey value above which a pixel becomes white, 0 to 255", Need::required);
  verb.Flag("--transparent", options->transparent, "mark white as transparent (PNG)");
  return verb.Changing([options](Subject& picture) { Whiten(*picture.bitmap, *options); });
}

}  // namespace rasterkit::tool
