#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/pictures/recipes/recipe_output.h>
#include <rasterkit/runtime/errors.h>

#include "tool/command/exit_code.h"
#include "tool/command/limit_options.h"
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

bool ChangesMetadata(const RecipeStep& step) {
  return std::holds_alternative<EditStep>(step) || std::holds_alternative<RecipeCopy>(step);
}

/// Nothing in the steps or the options needs pixels that are encoded anew.
bool CopiesPixels(const Recipe& recipe, const PictureOptions& picture) {
  const bool isAsBefore = picture.bits == 0 && !picture.quality && picture.chromaX == 0 &&
                          !picture.pngLevel && !picture.compression;
  return recipe.isAsStored && isAsBefore &&
         std::all_of(recipe.steps.begin(), recipe.steps.end(), ChangesMetadata);
}

/// A picture as it is stored lies on its side in a file that states no orientation.
void RequireOrientation(const PictureWork& work) {
  const PictureType source = work.picture.SourceType();
  const PictureType target =
      IsStandardStream(work.job.output) ? work.job.type.value_or(source) : work.TargetType();
  const bool statesIt =
      target == source || target == PictureType::jpeg || target == PictureType::png;
  const std::vector<uint8_t>& exif = work.picture.GetMetadata().exif;
  if (statesIt || exif.empty() || OrientationOf(ExifBlock(exif)).value_or(1) == 1) return;
  work.Refuse(std::string("the recipe leaves the pixels as they are stored, and a ") +
              PictureTypeName(target) + " file cannot state how to turn them");
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
  picture.isAsStored = recipe.isAsStored;
  picture.copiesPixels = CopiesPixels(recipe, picture);
  // A name that is typed has its own type.
  const bool takesType = recipe.save.type && output.type.empty() &&
                         (!output.outDir.empty() || IsStandardStream(output.files.back()));
  if (!takesType) return;
  output.type = std::string(FindCodec(*recipe.save.type)->extensions.front());
  output.keepsExtension = true;
}

/// Errors of a step name the recipe and the step.
void Apply(const ApplyOptions& options, const RecipeSlots& slots, PictureWork& work) {
  Recipe steps = options.recipe;
  // The options have taken over how it is written.
  steps.save = {};
  if (steps.isAsStored) RequireOrientation(work);
  try {
    ApplyRecipe(work.picture, steps, slots);
  } catch (const CanceledError&) {
    throw;
  } catch (const FormatError& error) {
    throw Failure(exitInputUnreadable,
                  work.job.input + ": " + options.file + ": " + error.Reason());
  } catch (const Error& error) {
    work.Refuse(options.file + ": " + ReasonWithOption(error));
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
        "worked out for each picture.",
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
  verb.AlsoReads([options] {
    std::vector<std::string> files = {options->file};
    for (const SlotFile& slot : SlotFilesOf(*options)) files.push_back(slot.file);
    return files;
  });
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
