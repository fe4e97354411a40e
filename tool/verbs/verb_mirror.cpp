#include "tool/command/exit_code.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct Sides {
  bool horizontal = false, vertical = false;
};

PictureChange Mirroring(const Sides& sides) {
  if (!sides.horizontal && !sides.vertical) {
    throw Failure(exitWrongUsage, "mirror needs --horizontal or --vertical, or both");
  }
  return [sides](PictureWork& work) {
    if (sides.horizontal) work.Add(MirrorStep{MirrorAxis::leftRight});
    if (sides.vertical) work.Add(MirrorStep{MirrorAxis::topBottom});
  };
}

}  // namespace

VerbRunner AddMirrorVerb(CommandLine& line) {
  PictureVerb verb(line, {"mirror",
                          "swap left and right, or top and bottom",
                          {"Mirrors the upright picture. Pixels move but do not change, at any "
                           "depth. At least one of --horizontal and --vertical is required."},
                          {"rasterkit mirror slide.jpg readable.jpg --horizontal",
                           "rasterkit mirror plan.png flipped.png --vertical"}});
  const auto sides = std::make_shared<Sides>();
  verb.Flag("--horizontal", sides->horizontal, "swap left and right");
  verb.Flag("--vertical", sides->vertical, "swap top and bottom");
  return verb.ChangingAfter([sides] { return Mirroring(*sides); });
}

}  // namespace rasterkit::tool
