#include "tool/arguments/color_argument.h"
#include "tool/arguments/numbers.h"
#include "tool/command/desktop.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

constexpr const char* kByPicture = "otsu";

struct MonoOptions {
  /// Nothing: chosen for each picture.
  std::optional<int> threshold = 125;
  std::string dark = "000000", light = "FFFFFF";
  bool asksUser = false;
};

std::optional<int> ParseThreshold(const std::string& text) {
  constexpr int kMost = 256;
  const auto number = ParseNumber(text);
  const bool ok =
      number && *number >= 0 && *number <= kMost && *number == static_cast<int>(*number);
  return ok ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

std::string CheckThreshold(const std::string& text) {
  const bool ok = text == kByPicture || ParseThreshold(text);
  return ok ? std::string() : "must be a whole number from 0 to 256, or otsu, not '" + text + "'";
}

PictureChange Prepare(const MonoOptions& options) {
  const MakeMono typed{options.threshold, ColorOf(options.dark), ColorOf(options.light)};
  const auto desktop = options.asksUser ? std::make_shared<Desktop>() : nullptr;
  return [typed, desktop](PictureWork& work) {
    work.PaintTransparent("black and white has no opacity");
    MakeMono change = typed;
    if (desktop) change = desktop->ChooseThreshold(*work.Bitmap(), typed, work.job.input);
    work.Add(ChangeStep{change});
  };
}

}  // namespace

VerbRunner AddMonoVerb(CommandLine& line) {
  PictureVerb verb(line,
                   {"mono",
                    "make a picture black and white",
                    {"Pixels with a gray value below the threshold become black, all others "
                     "white. The output is 1-bit. With threshold 0 everything is white, with 256 "
                     "everything is black. With otsu the threshold is chosen for each picture: the "
                     "one that best divides its grays into dark and light.",
                     "With --dialog a window shows the picture in black and white, and how many "
                     "pixels have each gray value. Canceling the window ends with exit code 1."},
                    {"rasterkit mono scan.jpg plan.tif --threshold 160",
                     "rasterkit mono scan.jpg plan.tif --threshold otsu",
                     "rasterkit mono scan.jpg blueprint.png --dark 003080 --light F0F8FF",
                     "rasterkit mono scan.jpg plan.tif --dialog"}});
  const auto options = std::make_shared<MonoOptions>();
  verb.Parsed(
      "--threshold", "T|otsu",
      [options](const std::string& text) { options->threshold = ParseThreshold(text); },
      CheckThreshold, "lowest gray value that becomes white, 0 to 256, or otsu [125]");
  verb.Color("--dark", options->dark, "color instead of black [black]");
  verb.Color("--light", options->light, "color instead of white [white]");
  verb.Dialog(options->asksUser,
              "choose the threshold in a window that starts with the one of --threshold");
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
