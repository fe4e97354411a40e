#pragma once

#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>

/// Fields that several WMF records share. Parameters are stored in reverse order.
namespace rasterkit::detail {

/// Fields: y, x.
inline PointD ReadReversedPoint(MetafileBytes& fields) {
  const double y = fields.Short();
  return {static_cast<double>(fields.Short()), y};
}

/// Fields: bottom, right, top, left.
inline RectD ReadReversedRect(MetafileBytes& fields) {
  const PointD bottomRight = ReadReversedPoint(fields);
  const PointD topLeft = ReadReversedPoint(fields);
  return {topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
}

/// Fields: height, width, y, x.
inline RectD ReadReversedSizedRect(MetafileBytes& fields) {
  const PointD size = ReadReversedPoint(fields);
  const PointD corner = ReadReversedPoint(fields);
  return {corner.x, corner.y, corner.x + size.x, corner.y + size.y};
}

/// Fields: x, y, as in lists of points.
inline PointD ReadShortPoint(MetafileBytes& fields) {
  const double x = fields.Short();
  return {x, static_cast<double>(fields.Short())};
}

/// The fields of a blit before its bitmap.
struct WmfBlit {
  uint32_t operation = 0;
  RectD part, dest;
};

/// Fields: operation, [size of the part if stretched,] corner of the part, [a word if there is no
/// bitmap,] target.
inline WmfBlit ReadBlit(MetafileBytes& fields, bool isStretched, bool hasBitmap) {
  WmfBlit blit;
  blit.operation = fields.Long();
  PointD size = isStretched ? ReadReversedPoint(fields) : PointD();
  const PointD corner = ReadReversedPoint(fields);
  if (!hasBitmap) fields.Skip(2);
  blit.dest = ReadReversedSizedRect(fields);
  if (!isStretched) size = {blit.dest.Width(), blit.dest.Height()};
  blit.part = {corner.x, corner.y, corner.x + size.x, corner.y + size.y};
  return blit;
}

}  // namespace rasterkit::detail
