#pragma once

#include <QImage>
#include <QRect>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

/// Bitmaps for Qt to paint.
///
///     pf1bit   Format_Mono, views of parts that start at a whole byte
///     pf8bit   Format_Indexed8
///     pf24bit  Format_BGR888
///     pf32bit  Format_ARGB32 where alpha is defined, else Format_RGB32
///
/// An image in one of these formats is a view: it shows the bitmap's own rows, which must outlive
/// it and stay where they are, and Qt copies them before it writes. All other formats and parts are
/// copied into 24 bits, with the colours that the house gives them; such an image stands for
/// itself.
///
/// Qt paints no further than 32,767 pixels into an image: paint a larger bitmap by parts.
namespace rasterkit {

/// The pixels of the bitmap that lie in `part` (clipped to it); a null image when there are none.
/// Throws LimitError when a copy finds no memory.
RASTERKIT_EXPORT QImage ImageOfPart(const Raster& raster, const QRect& part);
RASTERKIT_EXPORT QImage ImageOfPart(const TBitmap& bitmap, const QRect& part);

/// The whole bitmap.
RASTERKIT_EXPORT QImage ImageOfBitmap(const TBitmap& bitmap);

/// An image that owns the raster.
RASTERKIT_EXPORT QImage ImageOfOwned(Raster raster);

}  // namespace rasterkit
