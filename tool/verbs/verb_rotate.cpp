#include <cmath>

#include <fmt/format.h>

#include <rasterkit/bands/deskew/find_skew.h>

#include "tool/command/exit_code.h"
#include "tool/command/shared_options.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct TurnOptions {
  std::optional<double> angle;
  bool northUp = false, deskew = false;
};

/// Turns by the angle at which a scan lies. Smaller ones are within the accuracy of the search, and
/// turning would only blur the picture.
void Deskew(PictureWork& work) {
  constexpr double kLeastDegrees = 0.05;
  const Skew skew = FindSkew(work.Bitmap()->Content());
  if (!skew.isFound) {
    work.warnings.emplace_back("no angle was found; the picture is not turned");
  } else if (std::abs(skew.degrees) < kLeastDegrees) {
    work.notes.emplace_back("the scan lies straight: 0 degrees");
  } else {
    work.notes.push_back(fmt::format("the scan is turned by {} degrees", skew.degrees));
    work.Add(RotateStep{skew.degrees, work.Corners()});
  }
}

PictureChange Turning(const TurnOptions& options) {
  if (!options.angle && !options.northUp && !options.deskew) {
    throw Failure(exitWrongUsage, "rotate needs --angle A, --deskew or --north-up");
  }
  return [options](PictureWork& work) {
    if (options.angle) work.Add(RotateStep{*options.angle, work.Corners()});
    if (options.deskew) Deskew(work);
    if (options.northUp) work.Add(NorthUpStep{work.Corners()});
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
        "rows south.",
        "--deskew finds the angle of a scanned plan or text, less than 15 degrees, and turns it "
        "straight. A scan that lies straight within 0.05 degrees, and a picture without straight "
        "lines such "
        "as a photograph, are not turned."},
       {"rasterkit rotate plan.png turned.png --angle 30 --fill C0C0C0",
        "rasterkit rotate photo.jpg left.jpg --angle 90",
        "rasterkit rotate scan.tif map.tif --north-up --fill transparent",
        "rasterkit rotate scan.tif straight.tif --deskew --filter linear"}});
  const auto options = std::make_shared<TurnOptions>();
  verb.UncoversCorners();
  const Option angle = verb.Parsed(
      "--angle", "A", [options](const std::string& text) { options->angle = ReadReal(text); },
      CheckAngle, "turn by A degrees; positive is counter-clockwise");
  const Option deskew =
      verb.Flag("--deskew", options->deskew, "turn a scan so that its lines run across and down")
          .Excludes(angle);
  verb.Flag("--north-up", options->northUp, "turn so that north is up")
      .Excludes(angle)
      .Excludes(deskew);
  verb.DiffersByPicture(options->deskew);
  return verb.ChangingAfter([options] { return Turning(*options); });
}

}  // namespace rasterkit::tool
