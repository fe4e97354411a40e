#include <map>
#include <optional>

#include "tool/arguments/fill_argument.h"
#include "tool/command/exit_code.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// Slot of the second picture in a recipe.
constexpr const char* kSlot = "over";

/// Options as typed; the mode is already checked.
struct CombineArguments {
  std::string mode = "auto", file, align = "auto", filter;
  std::optional<int> percent;
  bool gray = false;
};

const std::map<std::string, CombineMode>& Modes() {
  static const std::map<std::string, CombineMode> kModes = {
      {"auto", CombineMode::automatic},
      {"grid", CombineMode::grid},
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
  const bool isKey = options.mode == CombineMode::key || options.mode == CombineMode::automatic;
  if (arguments.percent && !mixes && !isKey) {
    throw Failure(exitWrongUsage, "--percent cannot be used with --mode " + arguments.mode);
  }
  constexpr int kHalf = 50;
  options.percent =
      arguments.percent.value_or(options.mode == CombineMode::transparent ? kHalf : 0);
  // A share of the first picture is one of colors.
  if (arguments.percent && isKey) options.mode = CombineMode::key;
  options.gray = arguments.gray;
  options.filter = FilterOf(arguments.filter);
  if (arguments.align == "map") options.align = CombineAlign::map;
  if (arguments.align == "none") options.align = CombineAlign::none;
  return options;
}

/// Both pictures are placed, so that the second one lies where the map says.
bool LiesOnTheMap(const PictureWork& work, const Picture& over, CombineAlign align) {
  return align != CombineAlign::none && work.picture.GetPlacement().affine &&
         over.GetPlacement().affine;
}

PictureChange Combining(const CombineArguments& arguments) {
  const CombineOptions options = OptionsOf(arguments);
  return [options, slots = RecipeSlots{{kSlot, OpenPicture(arguments.file)}}](PictureWork& work) {
    if (options.mode != CombineMode::grid) {
      work.PaintTransparent("the pictures become one without opacity");
    }
    if (LiesOnTheMap(work, slots.at(kSlot), options.align)) {
      work.notes.emplace_back("the pictures are aligned by their positions on the map");
    }
    work.Add(RecipeCombine{kSlot, options, work.StretchOfSecond()}, slots);
  };
}

}  // namespace

VerbRunner AddCombineVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"combine",
       "lay a second picture over a picture",
       {"If both pictures are placed on a map, the second one lies where the map says; else it is "
        "stretched over the whole first one. Pictures in different coordinate systems are refused "
        "(exit code 4) unless --align none is given. The output is 24-bit, but for grids, whose "
        "numbers stay.",
        "The mode says which parts of the second picture are drawn and how. A pixel is near white "
        "if its red, green and blue are all above 250."},
       {"rasterkit combine aerial.jpg map.png --with plan.png",
        "rasterkit combine aerial.jpg map.png --with zones.png --mode transparent --percent 70",
        "rasterkit combine terrain.tif both.tif --with survey.tif --filter linear"},
       {"Modes",
        {{"auto", "grid if both pictures are grids that are placed on a map, else key"},
         {"grid",
          "lays the numbers of the second grid over those of the first, which shows where the "
          "second one has no data; the number type, the position and the number for missing data "
          "are kept, and a wider type is used where only that holds the numbers of both"},
         {"key",
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
             {"auto", "grid", "key", "transparent", "shadow", "overwrite", "into-white"},
             "how the pictures are combined, see Modes [auto]");
  verb.Number("--percent", "P", arguments->percent, {0, 100}, "0 to 100, see Modes");
  verb.Flag("--gray", arguments->gray,
            "in the modes transparent and shadow: use the gray values of the first picture");
  verb.OneOf("--align", "HOW", arguments->align, {"auto", "map", "none"},
             "map: lay the second picture where the map says; none: stretch it over the whole "
             "picture; auto: map if both pictures are placed [auto]");
  verb.OneOf("--filter", "NAME", arguments->filter, {"nearest", "linear"},
             "grids with pixels of another size or place: nearest takes the nearest number, linear "
             "interpolates [nearest]");
  return verb.ChangingAfter([arguments] { return Combining(*arguments); });
}

}  // namespace rasterkit::tool
