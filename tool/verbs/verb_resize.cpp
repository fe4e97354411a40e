#include <memory>
#include <optional>

#include "tool/arguments/fill_argument.h"
#include "tool/arguments/size_argument.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/command/shared_options.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct SizeOptions {
  /// Size as typed, already checked; or empty.
  std::string size;
  /// The old name of --filter for pictures with a palette.
  bool smooth = false;
  bool asksUser = false;
};

Filter FilterFor(const SizeOptions& options, PictureWork& work, const RecipeResize& resize) {
  if (!options.smooth || !work.options.filter.empty()) return FilterOf(work.options.filter);
  work.notes.emplace_back("--smooth is an old name of --filter area and --filter linear");
  // A window begins with the size of the picture.
  if (resize.width == 0 && resize.height == 0) return Filter::automatic;
  const ResizeStep size = PixelsOf(resize, work.picture);
  const bool shrinks = size.width < work.picture.Width() || size.height < work.picture.Height();
  return shrinks ? Filter::area : Filter::linear;
}

PictureChange Prepare(const SizeOptions& options) {
  if (options.size.empty() && !options.asksUser) {
    throw Failure(exitWrongUsage, "resize needs --size WxH or --dialog");
  }
  const auto desktop = options.asksUser ? std::make_shared<Desktop>() : nullptr;
  const RecipeResize typed = ParseResize(options.size).value_or(RecipeResize());
  return [options, typed, desktop](PictureWork& work) {
    RecipeResize resize = typed;
    resize.options.filter = FilterFor(options, work, resize);
    if (desktop) resize = desktop->ChooseSize(work.picture, resize, work.job.input);
    work.Add(resize);
  };
}

}  // namespace

VerbRunner AddResizeVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"resize",
       "change the number of pixels of a picture",
       {"Pictures are averaged when they shrink and interpolated when they grow. Pictures with a "
        "palette keep it and use the nearest pixel, unless --filter turns them into true color. "
        "Black and white becomes gray when it shrinks; --bits 1 makes it black and white again.",
        "The size on paper stays the same: half the pixels are half the dots per inch. Canceling "
        "the window of --dialog ends with exit code 1."},
       {"rasterkit resize photo.jpg small.jpg --size 1000x",
        "rasterkit resize photo.jpg small.jpg --size 50%",
        "rasterkit resize plan.png preview.png --size 800x600 --filter area",
        "rasterkit resize photo.jpg small.jpg --dialog"}});
  const auto options = std::make_shared<SizeOptions>();
  verb.Text("--size", "WxH", options->size, CheckSizeOrPercent,
            "width and height: pixels from 1 to 1000000 (800x600), one side alone to keep the "
            "proportions (800x, x600), or percent (50%, 50%x25%)");
  verb.Flag("--shrink-on-load", verb.Options()->shrinksOnLoad,
            "decode a JPEG file at 1/2, 1/4 or 1/8 of its size, or take a smaller copy of a TIFF "
            "file, before it shrinks: fast, with slightly different colors; no effect with "
            "--filter nearest and linear");
  verb.Flag("--smooth", options->smooth, "average pictures with a palette as well").Hidden();
  // It grows one picture with another filter than it shrinks the next one.
  verb.DiffersByPicture(options->smooth);
  verb.Dialog(options->asksUser, "enter the size in a window that starts with the one of --size");
  AddFilter(verb, *verb.Options(),
            "nearest, linear or area [area when shrinking, linear when growing, nearest for "
            "palettes]",
            {"nearest", "linear", "area"});
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
