#include <memory>

#include <fmt/core.h>

#include <rasterkit/pictures/reading/picture_size.h>

#include "tool/arguments/size_argument.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/pictures/resize_picture.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct ResizeOptions {
  /// Size as typed, already checked; or empty.
  std::string size;
  bool smooth = false;
  bool asksUser = false;
};

/// The given size, or else that of the picture.
PictureSize SizeFor(const std::string& typed, const TBitmap& bitmap) {
  const SizeArgument own{{bitmap.Width(), bitmap.Height()}};
  return ParseSizeArgument(typed).value_or(own).For(bitmap.Width(), bitmap.Height());
}

PictureSize AskForSize(const Desktop& desktop, PictureSize size, const Subject& picture) {
  desktop.EditSize(size.width, size.height, picture);
  if (!size.IsPossible()) {
    picture.Refuse(
        fmt::format("{} x {} is not a valid size: width and height must be from 1 to 1000000",
                    size.width, size.height));
  }
  return size;
}

PictureChange Prepare(const ResizeOptions& options) {
  if (options.size.empty() && !options.asksUser) {
    throw Failure(exitWrongUsage, "resize needs --size WxH or --dialog");
  }
  const auto desktop = options.asksUser ? std::make_shared<Desktop>() : nullptr;
  return [options, desktop](Subject& picture) {
    PictureSize size = SizeFor(options.size, *picture.bitmap);
    if (desktop) size = AskForSize(*desktop, size, picture);
    ResizePicture(picture, size, options.smooth);
  };
}

}  // namespace

VerbRunner AddResizeVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"resize",
       "change the number of pixels of a picture",
       {"True color and gray pictures are averaged when they shrink and interpolated when they "
        "grow. Other pictures with a palette, black and white included, keep it and use the "
        "nearest pixel, unless --smooth turns them into true color.",
        "The size on paper stays the same: half the pixels are half the dots per inch. Canceling "
        "the window of --dialog ends with exit code 1."},
       {"rasterkit resize photo.jpg small.jpg --size 1000x",
        "rasterkit resize plan.png preview.png --size 800x600 --smooth",
        "rasterkit resize photo.jpg small.jpg --dialog"}});
  const auto options = std::make_shared<ResizeOptions>();
  verb.Text("--size", "WxH", options->size, CheckSizeOrPercent,
            "width and height: pixels from 1 to 1000000 (800x600), one side alone to keep the "
            "proportions (800x, x600), or percent (50%, 50%x25%)");
  verb.Flag("--smooth", options->smooth, "average pictures with a palette as well");
  verb.Dialog(options->asksUser, "enter the size in a window that starts with the one of --size");
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
