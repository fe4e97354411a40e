#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/pictures/recipes/recipe_output.h>

#include "tool/command/exit_code.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/change_pages.h"
#include "tool/pictures/recipe_input.h"
#include "tool/pictures/recipe_options.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct ApplyOptions {
  std::vector<std::string> with;
  bool anyRevision = false;
  /// Known when the verb begins.
  std::string file;
  Recipe recipe;
};

std::vector<SlotFile> SlotFilesOf(const ApplyOptions& options) {
  std::vector<SlotFile> files;
  for (const std::string& text : options.with) files.push_back(ParseSlotFile(text).value());
  return files;
}

/// The recipe is the first of the files.
void TakeRecipe(ApplyOptions& options, OutputOptions& output, PictureOptions& picture) {
  options.file = output.files.front();
  output.files.erase(output.files.begin());
  if (output.files.empty()) {
    throw Failure(exitWrongUsage, "apply needs a recipe and pictures: RECIPE IN OUT");
  }
  options.recipe = LoadRecipe(options.file, options.anyRevision);
  CheckSlots(options.recipe, SlotFilesOf(options));
  const Recipe& recipe = options.recipe;
  const bool isStretched = picture.stretch.kind != NumberStretch::Kind::automatic;
  if (isStretched) {
    std::erase_if(options.recipe.steps,
                  [](const RecipeStep& step) { return std::holds_alternative<StretchStep>(step); });
  }
  AddSave(picture, recipe.save);
  // What is to be gone must not be left on another page.
  picture.editOfOthers = StripsIn(recipe.steps);
  AddStrips(picture.editOfOthers, picture.edit);
  if (recipe.isAsStored) picture.isAsStored = picture.copiesPixels = true;
  // A name that is typed has its own type.
  const bool takesType = recipe.save.type && output.type.empty() &&
                         (!output.outDir.empty() || IsStandardStream(output.files.back()));
  if (takesType) output.type = std::string(FindCodec(*recipe.save.type)->extensions.front());
}

/// Errors of a step name the recipe and the step.
void Apply(const ApplyOptions& options, const RecipeSlots& slots, PictureWork& work) {
  Recipe steps = options.recipe;
  // The options have taken over how it is written.
  steps.save = {};
  try {
    ApplyRecipe(work.picture, steps, slots);
  } catch (const RangeError& error) {
    work.Refuse(options.file + ": " + error.Reason());
  }
  work.recipe.steps.insert(work.recipe.steps.end(), steps.steps.begin(), steps.steps.end());
}

}  // namespace

VerbRunner AddApplyVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"apply",
       "do what a recipe says to any number of pictures",
       {"A recipe is a list of steps, such as turn, crop and resize, and a way of saving, in a "
        "small text file (JSON). --record of 'edit' and of the verbs that change a picture writes "
        "one. So a change is made once, in a window or on the command line, and then applied to "
        "ten thousand files; the same input gives the same bytes.",
        "Each picture is turned upright first. Then the steps are made in their order. A step that "
        "does not fit a picture, such as a crop outside of it, is an error, and that picture is "
        "not written (exit code 4). What a step states in percent, millimeters or map units is "
        "worked "
        "out for each picture.",
        "Options win over what the recipe says about saving: --quality 80 counts, whatever quality "
        "the recipe states. With --out-dir, the outputs have the type of the recipe, or that of "
        "their input if it states none; --format wins over both. A single output has the type of "
        "its name, and --in-place keeps the type of each file.",
        "A recipe with a fault, or made by a version whose steps gave another result, is refused "
        "(exit code 3) before any picture is opened. So are slots without a file, and files for "
        "slots that the recipe does not have (exit code 2)."},
       {"rasterkit rotate scan1.tif straight.tif --angle 90 --record turn.json",
        "rasterkit apply turn.json scan2.tif straight2.tif",
        "rasterkit apply turn.json --out-dir straight --jobs 4 *.tif",
        "rasterkit apply stamp.json photo.jpg stamped.jpg --with mark=logo.png",
        "rasterkit apply turn.json --out-dir straight --dry-run *.tif"}});
  const auto options = std::make_shared<ApplyOptions>();
  verb.CallingFiles("RECIPE IN OUT",
                    "the recipe; then one input and the output, or with --out-dir or --in-place "
                    "any number of inputs and no output");
  verb.Texts("--with", "SLOT=FILE", options->with, CheckSlotFile,
             "the picture for a slot, which a step needs as its second picture; once for each "
             "slot of the recipe");
  verb.Flag("--any-revision", options->anyRevision,
            "take steps of a recipe as this version makes them, although their result has changed "
            "since it was made");
  verb.Flag("--shrink-on-load", verb.Options()->shrinksOnLoad,
            "decode a JPEG file smaller before it shrinks, as 'rasterkit resize' does");
  verb.DrawsMetafiles();
  verb.Beginning([options](OutputOptions& output, PictureOptions& picture) {
    TakeRecipe(*options, output, picture);
  });
  return verb.ChangingAfter([options]() -> PictureChange {
    return [options, slots = OpenSlots(options->recipe, SlotFilesOf(*options))](PictureWork& work) {
      Apply(*options, slots, work);
    };
  });
}

}  // namespace rasterkit::tool
