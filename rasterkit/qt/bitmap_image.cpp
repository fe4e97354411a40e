#include <memory>
#include <utility>

#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/raster/stretch/blit.h>

namespace rasterkit {
namespace {

/// Returns the image format with the same pixel layout; Format_Invalid if there is none. Qt
/// converts 15- and 16-bit colors differently from this library.
QImage::Format SameFormat(const Raster& raster) {
  switch (raster.Format()) {
    case pf1bit:
      return QImage::Format_Mono;
    case pf8bit:
      return QImage::Format_Indexed8;
    case pf24bit:
      return QImage::Format_BGR888;
    case pf32bit:
      return raster.alphaFormat == afDefined ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    default:
      return QImage::Format_Invalid;
  }
}

/// Returns an entry for every possible index; missing palette entries are black.
QList<QRgb> ColorTable(const Raster& raster) {
  const int count = raster.Format() == pf1bit ? 2 : 256;
  QList<QRgb> colors;
  colors.reserve(count);
  for (int i = 0; i < count; ++i) {
    const tagPALETTEENTRY entry = raster.palette.Entry(i);
    colors.append(qRgb(entry.peRed, entry.peGreen, entry.peBlue));
  }
  return colors;
}

bool CanBeViewed(const Raster& raster, const QRect& part) {
  if (SameFormat(raster) == QImage::Format_Invalid) return false;
  return raster.Format() != pf1bit || part.x() % 8 == 0;
}

/// `owner` is destroyed with the last copy of the image; null if the rows are owned elsewhere.
QImage View(const Raster& raster, const QRect& part, std::unique_ptr<Raster> owner) {
  const size_t offset =
      static_cast<size_t>(part.x()) * static_cast<size_t>(StoredBitsPerPixel(raster.Format())) / 8;
  const auto release = [](void* rows) { std::unique_ptr<Raster>(static_cast<Raster*>(rows)); };
  Raster* const owned = owner.release();
  QImage image(raster.Row(part.y()) + offset, part.width(), part.height(),
               static_cast<qsizetype>(raster.Stride()), SameFormat(raster),
               owned != nullptr ? static_cast<QImageCleanupFunction>(release) : nullptr, owned);
  if (image.isNull()) {
    if (owned != nullptr) release(owned);
    return image;
  }
  if (IsIndexed(raster.Format())) image.setColorTable(ColorTable(raster));
  return image;
}

QImage Copy(const Raster& raster, const QRect& part) {
  Raster copy(pf24bit, part.width(), part.height());
  BlitCopied(copy, {0, 0, part.width(), part.height()}, raster,
             {part.x(), part.y(), part.x() + part.width(), part.y() + part.height()});
  return ImageOfOwned(std::move(copy));
}

QRect WholeOf(const Raster& raster) {
  return {0, 0, raster.Width(), raster.Height()};
}

}  // namespace

QImage ImageOfPart(const Raster& raster, const QRect& part) {
  const QRect inside = part & WholeOf(raster);
  if (inside.isEmpty()) return {};
  return CanBeViewed(raster, inside) ? View(raster, inside, nullptr) : Copy(raster, inside);
}

QImage ImageOfPart(const TBitmap& bitmap, const QRect& part) {
  return ImageOfPart(bitmap.Content(), part);
}

QImage ImageOfBitmap(const TBitmap& bitmap) {
  return ImageOfPart(bitmap.Content(), WholeOf(bitmap.Content()));
}

QImage ImageOfOwned(Raster raster) {
  const QRect whole = WholeOf(raster);
  if (whole.isEmpty()) return {};
  if (!CanBeViewed(raster, whole)) return Copy(raster, whole);
  auto owner = std::make_unique<Raster>(std::move(raster));
  const Raster& rows = *owner;
  return View(rows, whole, std::move(owner));
}

}  // namespace rasterkit
