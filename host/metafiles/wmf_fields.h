#pragma once

#include <rasterkit/host/metafiles/affine.h>
#include <rasterkit/host/metafiles/metafile_bytes.h>

/// Fields that many records of Windows metafiles share. Parameters come last one first.
namespace rasterkit::detail {

/// y, x.
inline PointD ReadReversedPoint(MetafileBytes& fields) {
  const double y = fields.Short();
  return {static_cast<double>(fields.Short()), y};
}

/// Bottom, right, top, left.
inline RectD ReadReversedRect(MetafileBytes& fields) {
  const PointD bottomRight = ReadReversedPoint(fields);
  const PointD topLeft = ReadReversedPoint(fields);
  return {topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
}

/// Height, width, y, x.
inline RectD ReadReversedSizedRect(MetafileBytes& fields) {
  const PointD size = ReadReversedPoint(fields);
  const PointD corner = ReadReversedPoint(fields);
  return {corner.x, corner.y, corner.x + size.x, corner.y + size.y};
}

/// x, y, as in lists of points.
inline PointD ReadShortPoint(MetafileBytes& fields) {
  const double x = fields.Short();
  return {x, static_cast<double>(fields.Short())};
}

}  // namespace rasterkit::detail
