#include <functional>
#include <memory>
#include <optional>

#include <fmt/core.h>

#include "tool/arguments/rect_argument.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct CropOptions {
  /// Rectangles as typed, already checked; or empty.
  std::string rect, mapRect;
  bool asksUser = false;
};

/// Nothing without --rect and --map-rect.
std::optional<RecipeCrop> CropOf(const CropOptions& options) {
  return options.mapRect.empty() ? ParseRect(options.rect) : ParseMapRect(options.mapRect);
}

/// Says which pixels the map rectangle was rounded to.
void CropTo(const RecipeCrop& crop, PictureWork& work) {
  const CropStep part = PixelsOf(crop, work.picture);
  work.Add(crop);
  if (crop.unit != LengthUnit::map) return;
  work.notes.push_back(fmt::format("the rectangle on the map is {},{},{},{} in pixels", part.left,
                                   part.top, part.width, part.height));
}

/// Tells for a part of a JPEG file whether its compressed pixels are kept; nothing for others.
std::function<bool(const CropStep&)> LosslessJudge(const PictureWork& work) {
  const auto isLossless = [&work](const CropStep& part) {
    try {
      Picture picture = work.picture;
      const Report plan = work.Plan(picture.Crop(part));
      return plan.isMoved || plan.isCopied;
    } catch (const std::exception&) {
      return false;
    }
  };
  const bool isJpeg =
      work.picture.SourceType() == PictureType::jpeg && work.TargetType() == PictureType::jpeg;
  if (!isJpeg) return {};
  return isLossless;
}

/// Starts with the part of `start` that is inside the picture.
RecipeCrop Ask(const Desktop& desktop, const std::optional<RecipeCrop>& start,
               const PictureWork& work) {
  ChooseCropOptions options;
  options.start = start;
  if (start) {
    options.start->outside = Outside::clip;
    options.unit = start->unit;
  }
  options.isLossless = LosslessJudge(work);
  return desktop.ChooseCrop(*work.Bitmap(), work.picture, options, work.job.input);
}

PictureChange Prepare(const CropOptions& options) {
  if (options.rect.empty() && options.mapRect.empty() && !options.asksUser) {
    throw Failure(exitWrongUsage,
                  "crop needs --rect X,Y,W,H, --map-rect MINX,MINY,MAXX,MAXY or --dialog");
  }
  const auto desktop = options.asksUser ? std::make_shared<Desktop>() : nullptr;
  return [typed = CropOf(options), desktop](PictureWork& work) {
    CropTo(desktop ? Ask(*desktop, typed, work) : *typed, work);
  };
}

}  // namespace

VerbRunner AddCropVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"crop",
       "cut a rectangle out of a picture",
       {"Pixels are counted in the upright picture, from 0,0 at the top left. No pixel changes its "
        "color. A rectangle that is not inside the picture is refused (exit code 4).",
        "--map-rect takes the rectangle in map units. Each edge moves to the nearest pixel corner, "
        "and the result is printed; in a turned picture the part holds the whole rectangle.",
        "With --dialog a window shows the picture, and you draw the rectangle with the mouse. "
        "Canceling the window ends with exit code 1."},
       {"rasterkit crop plan.png legend.png --rect 1200,80,640,480",
        "rasterkit crop scan.jpg inner.jpg --rect 10%,10%,80%,80%",
        "rasterkit crop map.tif town.tif --map-rect 500000,5400000,501000,5400800",
        "rasterkit crop plan.png legend.png --dialog"}});
  const auto options = std::make_shared<CropOptions>();
  const Option rect = verb.Text(
      "--rect", "X,Y,W,H", options->rect, CheckRect,
      "left, top, width and height of the part to keep, in pixels or in percent of the picture "
      "(10%,10%,80%,80%)");
  const Option mapRect = verb.Text("--map-rect", "MINX,MINY,MAXX,MAXY", options->mapRect,
                                   CheckMapRect, "the part to keep in map units");
  mapRect.Excludes(rect);
  verb.Dialog(options->asksUser,
              "choose the rectangle in a window that starts with the one of --rect or --map-rect");
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
