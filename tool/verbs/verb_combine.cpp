#include <map>
#include <optional>

#include "tool/command/exit_code.h"
#include "tool/command/progress.h"
#include "tool/pictures/combine_pictures.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// As typed; the mode is checked by then.
struct CombineArguments {
  std::string mode = "key", file;
  std::optional<int> percent;
  bool gray = false;
};

const std::map<std::string, CombineMode>& Modes() {
  static const std::map<std::string, CombineMode> modes = {
      {"key", CombineMode::key},
      {"transparent", CombineMode::transparent},
      {"shadow", CombineMode::shadow},
      {"overwrite", CombineMode::overwrite},
      {"into-white", CombineMode::intoWhite}};
  return modes;
}

CombineOptions OptionsOf(const CombineArguments& arguments) {
  CombineOptions options;
  options.mode = Modes().at(arguments.mode);
  const bool mixes =
      options.mode == CombineMode::transparent || options.mode == CombineMode::shadow;
  if (arguments.gray && !mixes)
    throw Failure(exitWrongUsage, "--gray goes with --mode transparent and --mode shadow");
  if (arguments.percent && !mixes && options.mode != CombineMode::key)
    throw Failure(exitWrongUsage, "--percent means nothing with --mode " + arguments.mode);
  constexpr int half = 50;
  options.percent = arguments.percent.value_or(options.mode == CombineMode::transparent ? half : 0);
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

VerbRunner AddCombineVerb(CLI::App& app) {
  PictureVerb verb(
      app, "combine", "lay another picture over a picture",
      "The other picture is stretched over the whole one. The output is 24-bit.\n"
      "Modes, which say what is seen of the other picture:\n"
      "  key          all but its white, or its own transparency; --percent 40 lets 40 % of what "
      "lies\n"
      "               below show through [0]\n"
      "  transparent  a mix, --percent of it from below [50]; near white is left out\n"
      "  shadow       shaded by what lies below, which --percent brightens first [0]; near white "
      "is\n"
      "               left out\n"
      "  overwrite    all but near white\n"
      "  into-white   only where the picture below is near white\n"
      "Near white has red, green and blue above 250.\n\n"
      "Examples:\n"
      "  rasterkit combine aerial.jpg map.png --with plan.png\n"
      "  rasterkit combine aerial.jpg map.png --with zones.png --mode transparent --percent 70");
  const auto arguments = std::make_shared<CombineArguments>();
  verb.With(arguments->file);
  verb.OneOf("--mode", "MODE", arguments->mode,
             {"key", "transparent", "shadow", "overwrite", "into-white"}, "how, see below [key]");
  verb.Number("--percent", "P", arguments->percent, {0, 100}, "0 to 100, see the modes");
  verb.Flag("--gray", arguments->gray,
            "transparent and shadow: what lies below counts by its grey values");
  verb.WorksOnThreads();
  return verb.ChangingAfter([arguments] { return Combining(*arguments); });
}

}  // namespace rasterkit::tool
