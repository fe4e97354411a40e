#pragma once

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>

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

/// What comes before the bitmap of a blit.
struct WmfBlit {
  uint32_t operation = 0;
  RectD part, dest;
};

/// Operation, [size of the part,] its corner, [a word where there is no bitmap,] target.
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
