#include <memory>

#include <fmt/format.h>

#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/pictures/picture_size.h"
#include "tool/pictures/resize_picture.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct ResizeOptions {
  /// As typed; checked by then, or empty.
  std::string size;
  bool smooth = false;
  bool asksUser = false;
};

/// The size that was typed, else the picture's own.
PictureSize SizeFor(const std::string& typed, const TBitmap& bitmap) {
  const PictureSize own{bitmap.Width(), bitmap.Height()};
  return ParseSize(typed).value_or(own).For(own.width, own.height);
}

PictureSize AskForSize(const Desktop& desktop, PictureSize size, const Subject& picture) {
  desktop.EditSize(size.width, size.height, picture);
  if (!size.IsPossible())
    picture.Refuse(fmt::format("{} x {} is no size: width and height are from 1 to 1000000",
                               size.width, size.height));
  return size;
}

PictureChange Prepare(const ResizeOptions& options) {
  if (options.size.empty() && !options.asksUser)
    throw Failure(exitWrongUsage, "resize needs --size WxH or --dialog");
  const auto desktop = options.asksUser ? std::make_shared<Desktop>() : nullptr;
  return [options, desktop](Subject& picture) {
    PictureSize size = SizeFor(options.size, *picture.bitmap);
    if (desktop) size = AskForSize(*desktop, size, picture);
    ResizePicture(picture, size, options.smooth);
  };
}

}  // namespace

VerbRunner AddResizeVerb(CLI::App& app) {
  PictureVerb verb(app, "resize", "give a picture another number of pixels",
                   "Photographs and greys are averaged when they shrink and interpolated when they "
                   "grow. Pictures with a\n"
                   "palette, black and white too, keep it and take the nearest pixel, unless "
                   "--smooth makes them true\n"
                   "colour. The size on paper stays: half the pixels are half the dots per inch. "
                   "Who cancels the "
                   "dialog\n"
                   "gets exit code 1.\n\n"
                   "Examples:\n"
                   "  rasterkit resize photo.jpg small.jpg --size 1000x\n"
                   "  rasterkit resize plan.png preview.png --size 800x600 --smooth\n"
                   "  rasterkit resize photo.jpg small.jpg --dialog");
  const auto options = std::make_shared<ResizeOptions>();
  verb.Text("--size", "WxH|Wx|xH", options->size, CheckSize,
            "width and height in pixels, 1 to 1000000; one of them alone keeps the proportions");
  verb.Flag("--smooth", options->smooth, "average pictures with a palette as well");
  verb.Dialog(options->asksUser, "enter the size in a window; it begins with that of --size");
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
