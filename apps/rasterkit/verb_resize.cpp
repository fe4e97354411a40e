#include <memory>

#include <fmt/format.h>

#include <rasterkit/bitmaptools/engine/composition.h>

#include "apps/rasterkit/desktop.h"
#include "apps/rasterkit/exit_code.h"
#include "apps/rasterkit/index_rows.h"
#include "apps/rasterkit/picture_size.h"
#include "apps/rasterkit/picture_verb.h"
#include "apps/rasterkit/transparency.h"

namespace rasterkit::tool {
namespace {

struct ResizeOptions {
  /// As typed; checked by then, or empty.
  std::string size;
  bool smooth = false;
  bool asksUser = false;
};

/// Puts a bitmap into a format whose pixels the library averages. Neither averages of palette
/// entries nor of the words of 15 and 16 bits exist there: a picture of greys goes the way of true
/// colours and comes back, others with a palette go it when asked.
class AveragedFormat {
 public:
  AveragedFormat(TBitmap& bitmap, bool smooth)
      : isGray_(bitmap.PixelFormat() == pf8bit && IsGrayRamp(bitmap.Palette()) &&
                !bitmap.Transparent()) {
    const bool isTrueColor = !HasIndexes(bitmap) || smooth;
    if (!isTrueColor && !isGray_) return;
    KeyToAlpha(bitmap);
    if (!HasAlpha(bitmap)) bitmap.SetPixelFormat(pf24bit);
  }

  void RestoreGrays(TBitmap& bitmap) const {
    if (isGray_) bitmap.SetPixelFormat(pf8bit);
  }

 private:
  bool isGray_;
};

/// The paper stays as large as it was: fewer pixels mean fewer in an inch.
Resolution Scaled(const Resolution& dpi, double horizontal, double vertical) {
  return dpi.IsKnown() ? Resolution{dpi.x * horizontal, dpi.y * vertical} : dpi;
}

void Stretch(std::unique_ptr<TBitmap>& bitmap, const PictureSize& size, bool smooth) {
  const AveragedFormat format(*bitmap, smooth);
  const TAlphaFormat alpha = bitmap->AlphaFormat();
  const HPALETTE palette = bitmap->Palette();
  const ColorProfile profile = bitmap->Profile();
  const Resolution dpi = Scaled(bitmap->Dpi(), static_cast<double>(size.width) / bitmap->Width(),
                                static_cast<double>(size.height) / bitmap->Height());
  const bool isTransparent = bitmap->Transparent();
  const TColor key = bitmap->TransparentColor();
  // The key colour is one of the pixels here: it is marked again below.
  bitmap->SetTransparent(false);
  ResizeBitmap(bitmap, size.width, size.height, true);
  bitmap->SetAlphaFormat(alpha);
  bitmap->SetProfile(profile);
  bitmap->SetDpi(dpi);
  bitmap->SetTransparent(isTransparent);
  if (isTransparent) bitmap->SetTransparentColor(key);
  format.RestoreGrays(*bitmap);
}

/// The picture covers the same piece of the map with other pixels.
void ScalePlace(std::optional<TiffGeoTags>& place, double columns, double rows) {
  if (!place) return;
  place->pixelScale[0] *= columns;
  place->pixelScale[1] *= rows;
}

void ResizeTo(const PictureSize& size, bool smooth, Subject& picture) {
  const int width = picture.bitmap->Width(), height = picture.bitmap->Height();
  Stretch(picture.bitmap, size, smooth);
  ScalePlace(picture.place, static_cast<double>(width) / size.width,
             static_cast<double>(height) / size.height);
}

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
    ResizeTo(size, options.smooth, picture);
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
