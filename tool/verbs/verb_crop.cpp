#include <memory>

#include <fmt/core.h>

#include "tool/arguments/rect_argument.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/pictures/crop_rows.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

TRect RectOf(const CropStep& part) {
  return {part.left, part.top, part.left + part.width, part.top + part.height};
}

struct CropOptions {
  /// Rectangle as typed, already checked; or empty.
  std::string rect;
  bool asksUser = false;
};

/// Moves the top left corner on the map; the size of the pixels stays the same.
void MovePlace(std::optional<TiffGeoTags>& place, const CropStep& part) {
  if (!place) return;
  place->tiePoint[3] += part.left * place->pixelScale[0];
  place->tiePoint[4] -= part.top * place->pixelScale[1];
}

void CropTo(const CropStep& part, Subject& picture) {
  const TBitmap& bitmap = *picture.bitmap;
  const bool isInside = part.left < bitmap.Width() && part.width <= bitmap.Width() - part.left &&
                        part.top < bitmap.Height() && part.height <= bitmap.Height() - part.top;
  if (!isInside) {
    picture.Refuse(
        fmt::format("the rectangle {},{},{},{} is not inside the picture, which "
                    "has {} x {} pixels",
                    part.left, part.top, part.width, part.height, bitmap.Width(), bitmap.Height()));
  }
  Crop(*picture.bitmap, RectOf(part));
  MovePlace(picture.place, part);
}

/// Starts with the rectangle `start` if it is inside the picture.
void AskAndCrop(const Desktop& desktop, const CropStep& start, Subject& picture) {
  TRect rect = RectOf(start);
  desktop.ChooseCropRect(rect, picture);
  CropTo({rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top}, picture);
}

PictureChange Prepare(const CropOptions& options) {
  if (options.rect.empty() && !options.asksUser) {
    throw Failure(exitWrongUsage, "crop needs --rect X,Y,W,H or --dialog");
  }
  const RectArgument rect = ParseRect(options.rect).value_or(RectArgument());
  const auto desktop = options.asksUser ? std::make_shared<Desktop>() : nullptr;
  return [rect, desktop](Subject& picture) {
    const CropStep part = rect.For(picture.bitmap->Width(), picture.bitmap->Height());
    if (desktop) return AskAndCrop(*desktop, part, picture);
    CropTo(part, picture);
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
        "With --dialog a window shows the picture, and you draw the rectangle with the mouse. "
        "Canceling the window ends with exit code 1."},
       {"rasterkit crop plan.png legend.png --rect 1200,80,640,480",
        "rasterkit crop plan.png legend.png --dialog"}});
  const auto options = std::make_shared<CropOptions>();
  verb.Text("--rect", "X,Y,W,H", options->rect, CheckRect,
            "left, top, width and height of the part to keep, in pixels or in percent of the "
            "picture (10%,10%,80%,80%)");
  verb.Dialog(options->asksUser,
              "choose the rectangle in a window that starts with the one of --rect");
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
