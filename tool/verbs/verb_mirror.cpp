#include <rasterkit/bitmaptools/rotation/orient.h>

#include "tool/command/exit_code.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct Sides {
  bool horizontal = false, vertical = false;
};

PictureChange Mirroring(const Sides& sides) {
  if (!sides.horizontal && !sides.vertical)
    throw Failure(exitWrongUsage, "--horizontal or --vertical is wanted, or both");
  return [sides](Subject& picture) {
    if (sides.horizontal) Reorient(*picture.bitmap, Orientation::FlipHorizontally);
    if (sides.vertical) Reorient(*picture.bitmap, Orientation::FlipVertically);
    picture.place.reset();
  };
}

}  // namespace

VerbRunner AddMirrorVerb(CLI::App& app) {
  PictureVerb verb(app, "mirror", "exchange left and right, or top and bottom",
                   "Every pixel of the upright picture moves, none is changed, in any depth.\n\n"
                   "Examples:\n"
                   "  rasterkit mirror slide.jpg readable.jpg --horizontal\n"
                   "  rasterkit mirror plan.png flipped.png --vertical");
  const auto sides = std::make_shared<Sides>();
  verb.Flag("--horizontal", sides->horizontal, "left becomes right");
  verb.Flag("--vertical", sides->vertical, "top becomes bottom");
  return verb.ChangingAfter([sides] { return Mirroring(*sides); });
}

}  // namespace rasterkit::tool
