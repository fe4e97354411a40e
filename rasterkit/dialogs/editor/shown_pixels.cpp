#include <utility>

#include <rasterkit/dialogs/editor/shown_pixels.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// Bits per pixel of the bitmap that shows such pixels.
uint64_t BitsToShow(const PixelLayout& layout) {
  if (layout.alpha == AlphaKind::straight || layout.alpha == AlphaKind::associated) return 32;
  const bool isIndexed = layout.model == ColorModel::palette || layout.model == ColorModel::gray ||
                         layout.model == ColorModel::grayWhiteIsZero;
  if (!isIndexed) return 24;
  const int bits = layout.BitsPerPixel();
  return bits <= 1 ? 1 : bits <= 4 ? 4 : 8;
}

uint64_t BytesOfRows(uint64_t width, uint64_t height, uint64_t bits) {
  return (width * bits + 31) / 32 * 4 * height;
}

}  // namespace

uint64_t BytesToShow(const Picture& picture) {
  return BytesOfRows(static_cast<uint64_t>(picture.Width()),
                     static_cast<uint64_t>(picture.Height()), BitsToShow(picture.Layout()));
}

uint64_t BytesOf(const TBitmap& pixels) {
  return static_cast<uint64_t>(pixels.Stride()) * static_cast<uint64_t>(pixels.Height());
}

ShownPixels PixelsToShow(const Picture& picture, const PixelRun& run) {
  Run how;
  how.cancel = run.cancel;
  how.progress = run.progress;
  return picture.Bitmap(how);
}

Picture PictureOver(TBitmap& pixels, const Picture& facts) {
  auto alias = std::make_unique<TBitmap>(
      Raster::InMemory(pixels.ScanLine(0), pixels.Content(), pixels.Width(), pixels.Height()));
  alias->CarryFrom(pixels);
  alias->SetDpi(facts.GetMetadata().resolution);
  Picture picture = Picture::Of(std::move(alias));
  const std::optional<Affine>& position = facts.GetPlacement().affine;
  if (position) picture.Apply(PlaceStep{*position});
  return picture;
}

bool AreSeenAsStored(const Picture& source) {
  const PixelLayout& layout = source.Layout();
  const bool isColor = layout.model == ColorModel::gray || layout.model == ColorModel::rgb ||
                       layout.model == ColorModel::palette;
  return isColor && layout.type == NumberType::uint8 && layout.extraBands == 0 &&
         layout.alpha != AlphaKind::associated;
}

}  // namespace rasterkit
