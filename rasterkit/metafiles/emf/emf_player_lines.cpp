#include <rasterkit/metafiles/emf/emf_fields.h>
#include <rasterkit/metafiles/emf/emf_player.h>

namespace rasterkit::detail {

std::span<const PointD> EmfPlayer::Points(MetafileBytes& fields, size_t count, PointSize size) {
  points_.resize(fields.Count(count, size == PointSize::words ? 4 : 8));
  for (PointD& point : points_) {
    if (size == PointSize::words) {
      point.x = fields.Short();
      point.y = fields.Short();
    } else {
      point = ReadPoint(fields);
    }
  }
  return points_;
}

std::span<const PointD> EmfPlayer::CountedPoints(const EmfRecord& record, PointSize size) {
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const uint32_t count = fields.Long();
  return Points(fields, count, size);
}

void EmfPlayer::Polygons(const EmfRecord& record, PointSize size, bool isFilled) {
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const uint32_t stated = fields.Long();
  fields.Skip(4);  // total number of points, which is the sum of the counts
  std::vector<uint32_t> counts(fields.Count(stated, 4));
  uint64_t all = 0;
  for (uint32_t& count : counts) all += count = fields.Long();
  const auto points = Points(fields, fields.Count(all, 4), size);
  if (isFilled) {
    context_.PolyPolygon(points, counts);
  } else {
    context_.PolyPolyline(points, counts);
  }
}

void EmfPlayer::PolyDraw(const EmfRecord& record, PointSize size) {
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const uint32_t count = fields.Long();
  const auto points = Points(fields, count, size);
  context_.PolyDraw(points, fields.Take(points.size()));
}

bool EmfPlayer::PlayLine(const EmfRecord& record) {
  constexpr PointSize kWords = PointSize::words, kLongs = PointSize::longs;
  switch (record.type) {
    case EmfType::moveTo: {
      MetafileBytes fields = record.Fields();
      context_.MoveTo(ReadPoint(fields));
      return true;
    }
    case EmfType::lineTo: {
      MetafileBytes fields = record.Fields();
      context_.LineTo(ReadPoint(fields));
      return true;
    }
    case EmfType::polyline:
      context_.Polyline(CountedPoints(record, kLongs));
      return true;
    case EmfType::polyline16:
      context_.Polyline(CountedPoints(record, kWords));
      return true;
    case EmfType::polylineTo:
      context_.PolylineTo(CountedPoints(record, kLongs));
      return true;
    case EmfType::polylineTo16:
      context_.PolylineTo(CountedPoints(record, kWords));
      return true;
    case EmfType::polyBezier:
      context_.PolyBezier(CountedPoints(record, kLongs));
      return true;
    case EmfType::polyBezier16:
      context_.PolyBezier(CountedPoints(record, kWords));
      return true;
    case EmfType::polyBezierTo:
      context_.PolyBezierTo(CountedPoints(record, kLongs));
      return true;
    case EmfType::polyBezierTo16:
      context_.PolyBezierTo(CountedPoints(record, kWords));
      return true;
    case EmfType::polygon:
      context_.Polygon(CountedPoints(record, kLongs));
      return true;
    case EmfType::polygon16:
      context_.Polygon(CountedPoints(record, kWords));
      return true;
    case EmfType::polyPolyline:
    case EmfType::polyPolyline16:
      Polygons(record, record.type == EmfType::polyPolyline ? kLongs : kWords, false);
      return true;
    case EmfType::polyPolygon:
    case EmfType::polyPolygon16:
      Polygons(record, record.type == EmfType::polyPolygon ? kLongs : kWords, true);
      return true;
    case EmfType::polyDraw:
    case EmfType::polyDraw16:
      PolyDraw(record, record.type == EmfType::polyDraw ? kLongs : kWords);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
