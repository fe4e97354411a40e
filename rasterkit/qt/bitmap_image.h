#pragma once

#include <QImage>
#include <QRect>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

/// Bitmaps as images that Qt can paint.
///
///     pf1bit   Format_Mono; only views of parts that start at a whole byte
///     pf8bit   Format_Indexed8
///     pf24bit  Format_BGR888
///     pf32bit  Format_ARGB32 if alpha is defined, else Format_RGB32
///
/// An image in one of these formats is a view of the bitmap's own rows, which must outlive it and
/// must not move. Qt copies the rows before it writes to the image. All other formats and parts are
/// copied into 24 bits with the colors of this library; such an image is independent of the bitmap.
///
/// Qt paints only the first 32,767 pixels of an image in each direction: paint a larger bitmap in
/// parts.
namespace rasterkit {

/// Returns the pixels of the bitmap in `part` (clipped to the bitmap); a null image if there are
/// none. Throws LimitError if there is not enough memory for a copy.
RASTERKIT_EXPORT QImage ImageOfPart(const Raster& raster, const QRect& part);
RASTERKIT_EXPORT QImage ImageOfPart(const TBitmap& bitmap, const QRect& part);

/// Returns the whole bitmap.
RASTERKIT_EXPORT QImage ImageOfBitmap(const TBitmap& bitmap);

/// Returns an image that owns the raster.
RASTERKIT_EXPORT QImage ImageOfOwned(Raster raster);

}  // namespace rasterkit
