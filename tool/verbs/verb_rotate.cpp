#include "tool/command/exit_code.h"
#include "tool/command/shared_options.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct TurnOptions {
  std::optional<double> angle;
  bool northUp = false;
};

PictureChange Turning(const TurnOptions& options) {
  if (!options.angle && !options.northUp) {
    throw Failure(exitWrongUsage, "rotate needs --angle A or --north-up");
  }
  return [options](PictureWork& work) {
    if (options.angle) work.picture.Rotate(*options.angle, work.Corners());
    if (options.northUp) work.picture.Apply(NorthUpStep{work.Corners()});
  };
}

}  // namespace

VerbRunner AddRotateVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"rotate",
       "turn a picture by any angle",
       {"The picture is turned as you see it: a photograph is turned upright first. Multiples of "
        "90 degrees move whole pixels and change none. Metadata and the position on the map "
        "follow.",
        "--north-up turns a picture that is placed on a map so that its columns run east and its "
        "rows south."},
       {"rasterkit rotate plan.png turned.png --angle 30 --fill C0C0C0",
        "rasterkit rotate photo.jpg left.jpg --angle 90",
        "rasterkit rotate scan.tif map.tif --north-up --fill transparent"}});
  const auto options = std::make_shared<TurnOptions>();
  verb.UncoversCorners();
  const Option angle = verb.Parsed(
      "--angle", "A", [options](const std::string& text) { options->angle = ReadReal(text); },
      CheckAngle, "turn by A degrees; positive is counter-clockwise");
  verb.Flag("--north-up", options->northUp, "turn so that north is up").Excludes(angle);
  return verb.ChangingAfter([options] { return Turning(*options); });
}

}  // namespace rasterkit::tool
