#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>

#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct MonoOptions {
  int threshold = 125;
  std::string dark = "000000", light = "FFFFFF";
};

void MakeMono(Subject& picture, const MonoOptions& options) {
  picture.PaintTransparency();
  uint8_t red[2], green[2], blue[2];
  GetRGB(ColorOf(options.dark), red[0], green[0], blue[0]);
  GetRGB(ColorOf(options.light), red[1], green[1], blue[1]);
  ColorBmpTo1Bit(picture.bitmap.get(), options.threshold, red[0], green[0], blue[0], red[1],
                 green[1], blue[1]);
  picture.bitmap->SetProfile({});
}

}  // namespace

VerbRunner AddMonoVerb(CLI::App& app) {
  PictureVerb verb(app, "mono", "make a picture black and white",
                   "Pixels whose grey value is below the threshold become black, all others white; "
                   "the output is 1-bit.\n"
                   "At 0 everything is white, at 256 everything black.\n\n"
                   "Examples:\n"
                   "  rasterkit mono scan.jpg plan.tif --threshold 160\n"
                   "  rasterkit mono scan.jpg blueprint.png --dark 003080 --light F0F8FF");
  const auto options = std::make_shared<MonoOptions>();
  verb.Number("--threshold", "T", options->threshold, {0, 256},
              "grey value from which on a pixel is light, 0 to 256 [125]");
  verb.Color("--dark", options->dark, "colour of what is darker [000000]");
  verb.Color("--light", options->light, "colour of the rest [FFFFFF]");
  return verb.Changing([options](Subject& picture) { MakeMono(picture, *options); });
}

}  // namespace rasterkit::tool
