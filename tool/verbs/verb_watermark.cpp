#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// Slot of the second picture in a recipe.
constexpr const char* kSlot = "mark";

}  // namespace

VerbRunner AddWatermarkVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"watermark",
       "put a second picture on a picture as a watermark",
       {"The second picture, the mark, is stretched over the whole picture. White parts of the "
        "mark change nothing. "
        "Under dark parts of the mark, light parts of the picture become darker and dark parts "
        "lighter.",
        "The output is 24-bit, or 32-bit if the picture has transparency."},
       {"rasterkit watermark photo.jpg marked.jpg --with copyright.png"}});
  const auto file = std::make_shared<std::string>();
  verb.With(*file);
  return verb.ChangingAfter([file]() -> PictureChange {
    return [slots = RecipeSlots{{kSlot, OpenPicture(*file)}}](PictureWork& work) {
      work.Add(RecipeCombine{kSlot,
                             {.mode = CombineMode::watermark, .align = CombineAlign::none},
                             work.StretchOfSecond()},
               slots);
    };
  });
}

}  // namespace rasterkit::tool
