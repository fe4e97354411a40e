#pragma once

#include <vector>

#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>

/// Fields that several EMF records share.
namespace rasterkit::detail {

/// Bytes of the bounding box of drawing records, and of a matrix.
inline constexpr size_t kEmfBoundsBytes = 16, kEmfMatrixBytes = 24;

inline PointD ReadPoint(MetafileBytes& fields) {
  const double x = fields.Int();
  return {x, static_cast<double>(fields.Int())};
}

/// Fields: left, top, right, bottom.
inline RectD ReadRect(MetafileBytes& fields) {
  const PointD topLeft = ReadPoint(fields);
  const PointD bottomRight = ReadPoint(fields);
  return {topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
}

/// Fields: left, top, width, height.
inline RectD ReadSizedRect(MetafileBytes& fields) {
  const PointD corner = ReadPoint(fields), size = ReadPoint(fields);
  return {corner.x, corner.y, corner.x + size.x, corner.y + size.y};
}

inline PlaneAffine ReadMatrix(MetafileBytes& fields) {
  PlaneAffine matrix;
  matrix.m11 = fields.Single();
  matrix.m12 = fields.Single();
  matrix.m21 = fields.Single();
  matrix.m22 = fields.Single();
  matrix.dx = fields.Single();
  matrix.dy = fields.Single();
  return matrix;
}

/// Reads a region: a header with the number of rectangles, and the rectangles.
inline std::vector<RectD> ReadRegion(MetafileBytes& fields) {
  const uint32_t headerBytes = fields.Long();
  fields.Skip(4);  // type: rectangles
  const uint32_t stated = fields.Long();
  constexpr uint32_t kReadSoFar = 12;
  if (headerBytes > kReadSoFar) fields.Skip(headerBytes - kReadSoFar);
  std::vector<RectD> rects(fields.Count(stated, 16));
  for (RectD& rect : rects) rect = ReadRect(fields);
  return rects;
}

}  // namespace rasterkit::detail
