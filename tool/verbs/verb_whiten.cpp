#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddWhitenVerb(CommandLine& line) {
  PictureVerb verb(line, {"whiten",
                          "turn light pixels white",
                          {"Pixels with a gray value above the threshold become white, for example "
                           "the gray paper of a scan."},
                          {"rasterkit whiten scan.jpg clean.png --threshold 200",
                           "rasterkit whiten scan.jpg overlay.png --threshold 200 --transparent"}});
  const auto options = std::make_shared<WhitenLight>();
  verb.Number("--threshold", "T", options->threshold, {0, 255},
              "highest gray value that stays as it is, 0 to 255")
      .Required();
  verb.Flag("--transparent", options->makesTransparent, "mark white as transparent (PNG)");
  return verb.Changing([options](PictureWork& work) { work.Add(ChangeStep{*options}); });
}

}  // namespace rasterkit::tool
