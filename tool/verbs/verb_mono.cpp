#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>

#include "tool/arguments/color_argument.h"
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

VerbRunner AddMonoVerb(CommandLine& line) {
  PictureVerb verb(line,
                   {"mono",
                    "make a picture black and white",
                    {"Pixels with a gray value below the threshold become black, all others "
                     "white. The output is 1-bit. With threshold 0 everything is white, with 256 "
                     "everything is black."},
                    {"rasterkit mono scan.jpg plan.tif --threshold 160",
                     "rasterkit mono scan.jpg blueprint.png --dark 003080 --light F0F8FF"}});
  const auto options = std::make_shared<MonoOptions>();
  verb.Number("--threshold", "T", options->threshold, {0, 256},
              "lowest gray value that becomes white, 0 to 256 [125]");
  verb.Color("--dark", options->dark, "color instead of black [000000]");
  verb.Color("--light", options->light, "color instead of white [FFFFFF]");
  return verb.Changing([options](Subject& picture) { MakeMono(picture, *options); });
}

}  // namespace rasterkit::tool
