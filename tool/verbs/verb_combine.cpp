#include <map>
#include <optional>

#include "tool/command/exit_code.h"
#include "tool/command/progress.h"
#include "tool/pictures/combine_pictures.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// Options as typed; the mode is already checked.
struct CombineArguments {
  std::string mode = "key", file;
  std::optional<int> percent;
  bool gray = false;
};

const std::map<std::string, CombineMode>& Modes() {
  static const std::map<std::string, CombineMode> kModes = {
      {"key", CombineMode::key},
      {"transparent", CombineMode::transparent},
      {"shadow", CombineMode::shadow},
      {"overwrite", CombineMode::overwrite},
      {"into-white", CombineMode::intoWhite}};
  return kModes;
}

CombineOptions OptionsOf(const CombineArguments& arguments) {
  CombineOptions options;
  options.mode = Modes().at(arguments.mode);
  const bool mixes =
      options.mode == CombineMode::transparent || options.mode == CombineMode::shadow;
  if (arguments.gray && !mixes) {
    throw Failure(exitWrongUsage, "--gray requires --mode transparent or --mode shadow");
  }
  if (arguments.percent && !mixes && options.mode != CombineMode::key) {
    throw Failure(exitWrongUsage, "--percent cannot be used with --mode " + arguments.mode);
  }
  constexpr int kHalf = 50;
  options.percent =
      arguments.percent.value_or(options.mode == CombineMode::transparent ? kHalf : 0);
  options.gray = arguments.gray;
  return options;
}

PictureChange Combining(const CombineArguments& arguments) {
  const CombineOptions options = OptionsOf(arguments);
  const std::shared_ptr<const TBitmap> over = LoadUpright(arguments.file);
  return [options, over](Subject& picture) {
    picture.PaintTransparency();
    OperationBar bar(picture.options.showsProgress);
    CombinePictures(*picture.bitmap, *over, options, picture.Threads(), bar.Event());
  };
}

}  // namespace

VerbRunner AddCombineVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"combine",
       "lay a second picture over a picture",
       {"The second picture is stretched over the whole first one. The output is 24-bit.",
        "The mode says which parts of the second picture are drawn and how. A pixel is near white "
        "if its red, green and blue are all above 250."},
       {"rasterkit combine aerial.jpg map.png --with plan.png",
        "rasterkit combine aerial.jpg map.png --with zones.png --mode transparent --percent 70"},
       {"Modes",
        {{"key",
          "draws all pixels except white ones, or except its own transparent ones; --percent 40 "
          "lets 40 % of the first picture show through [0]"},
         {"transparent",
          "mixes both pictures with --percent of the first one [50]; near white is skipped"},
         {"shadow",
          "shades the second picture with the first one, which --percent brightens before [0]; "
          "near white is skipped"},
         {"overwrite", "draws all pixels except near white"},
         {"into-white", "draws only where the first picture is near white"}}}});
  const auto arguments = std::make_shared<CombineArguments>();
  verb.With(arguments->file);
  verb.OneOf("--mode", "MODE", arguments->mode,
             {"key", "transparent", "shadow", "overwrite", "into-white"},
             "how the pictures are combined, see Modes [key]");
  verb.Number("--percent", "P", arguments->percent, {0, 100}, "0 to 100, see Modes");
  verb.Flag("--gray", arguments->gray,
            "in the modes transparent and shadow: use the gray values of the first picture");
  verb.WorksOnThreads();
  return verb.ChangingAfter([arguments] { return Combining(*arguments); });
}

}  // namespace rasterkit::tool
