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
  fields.Skip(4);  // the number of all points; the polygons' own numbers say it as well
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
  constexpr PointSize words = PointSize::words, longs = PointSize::longs;
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
      context_.Polyline(CountedPoints(record, longs));
      return true;
    case EmfType::polyline16:
      context_.Polyline(CountedPoints(record, words));
      return true;
    case EmfType::polylineTo:
      context_.PolylineTo(CountedPoints(record, longs));
      return true;
    case EmfType::polylineTo16:
      context_.PolylineTo(CountedPoints(record, words));
      return true;
    case EmfType::polyBezier:
      context_.PolyBezier(CountedPoints(record, longs));
      return true;
    case EmfType::polyBezier16:
      context_.PolyBezier(CountedPoints(record, words));
      return true;
    case EmfType::polyBezierTo:
      context_.PolyBezierTo(CountedPoints(record, longs));
      return true;
    case EmfType::polyBezierTo16:
      context_.PolyBezierTo(CountedPoints(record, words));
      return true;
    case EmfType::polygon:
      context_.Polygon(CountedPoints(record, longs));
      return true;
    case EmfType::polygon16:
      context_.Polygon(CountedPoints(record, words));
      return true;
    case EmfType::polyPolyline:
    case EmfType::polyPolyline16:
      Polygons(record, record.type == EmfType::polyPolyline ? longs : words, false);
      return true;
    case EmfType::polyPolygon:
    case EmfType::polyPolygon16:
      Polygons(record, record.type == EmfType::polyPolygon ? longs : words, true);
      return true;
    case EmfType::polyDraw:
    case EmfType::polyDraw16:
      PolyDraw(record, record.type == EmfType::polyDraw ? longs : words);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
