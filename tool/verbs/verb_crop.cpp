#include <charconv>
#include <memory>
#include <optional>

#include <fmt/core.h>

#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/pictures/crop_rows.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct Part {
  int left = 0, top = 0, width = 0, height = 0;

  TRect Rect() const { return {left, top, left + width, top + height}; }
};

struct CropOptions {
  /// Rectangle as typed, already checked; or empty.
  std::string rect;
  bool asksUser = false;
};

/// Parses exactly four integers with commas between them.
std::optional<Part> ParsePart(const std::string& text) {
  int numbers[4] = {};
  const char* at = text.data();
  const char* const end = at + text.size();
  for (int i = 0; i < 4; ++i) {
    const auto [rest, error] = std::from_chars(at, end, numbers[i]);
    if (error != std::errc() || numbers[i] < 0) return std::nullopt;
    const bool isLast = i == 3;
    if (isLast ? rest != end : rest == end || *rest != ',') return std::nullopt;
    at = rest + 1;
  }
  return Part{numbers[0], numbers[1], numbers[2], numbers[3]};
}

std::string CheckPart(const std::string& text) {
  const auto part = ParsePart(text);
  const bool ok = part && part->width > 0 && part->height > 0;
  return ok ? std::string()
            : "a rectangle is X,Y,W,H: whole numbers, X and Y at least 0, W and H at least 1, not "
              "'" +
                  text + "'";
}

/// Moves the top left corner on the map; the size of the pixels stays the same.
void MovePlace(std::optional<TiffGeoTags>& place, const Part& part) {
  if (!place) return;
  place->tiePoint[3] += part.left * place->pixelScale[0];
  place->tiePoint[4] -= part.top * place->pixelScale[1];
}

void CropTo(const Part& part, Subject& picture) {
  const TBitmap& bitmap = *picture.bitmap;
  const bool isInside = part.left < bitmap.Width() && part.width <= bitmap.Width() - part.left &&
                        part.top < bitmap.Height() && part.height <= bitmap.Height() - part.top;
  if (!isInside) {
    picture.Refuse(
        fmt::format("the rectangle {},{},{},{} is not inside the picture, which "
                    "has {} x {} pixels",
                    part.left, part.top, part.width, part.height, bitmap.Width(), bitmap.Height()));
  }
  Crop(*picture.bitmap, part.Rect());
  MovePlace(picture.place, part);
}

/// Starts with the rectangle `start` if it is inside the picture.
void AskAndCrop(const Desktop& desktop, const Part& start, Subject& picture) {
  TRect rect = start.Rect();
  desktop.ChooseCropRect(rect, picture);
  CropTo({rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top}, picture);
}

PictureChange Prepare(const CropOptions& options) {
  if (options.rect.empty() && !options.asksUser) {
    throw Failure(exitWrongUsage, "crop needs --rect X,Y,W,H or --dialog");
  }
  const Part part = ParsePart(options.rect).value_or(Part());
  if (!options.asksUser) return [part](Subject& picture) { CropTo(part, picture); };
  return [part, desktop = std::make_shared<Desktop>()](Subject& picture) {
    AskAndCrop(*desktop, part, picture);
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
  verb.Text("--rect", "X,Y,W,H", options->rect, CheckPart,
            "left, top, width and height of the part to keep, in pixels");
  verb.Dialog(options->asksUser,
              "choose the rectangle in a window that starts with the one of --rect");
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
