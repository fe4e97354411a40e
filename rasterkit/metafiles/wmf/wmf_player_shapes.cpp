#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {
namespace {

std::vector<PointD> ReadPoints(MetafileBytes& fields, uint64_t stated) {
  std::vector<PointD> points(fields.Count(stated, 4));
  for (PointD& point : points) point = ReadShortPoint(fields);
  return points;
}

}  // namespace

bool WmfPlayer::PlayShape(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const auto withEnds = [&](auto draw) {
    const PointD end = ReadReversedPoint(fields), start = ReadReversedPoint(fields);
    (context_.*draw)(ReadReversedRect(fields), ArcEnds{start, end});
  };
  switch (record.function) {
    case WmfFunction::moveTo:
      context_.MoveTo(ReadReversedPoint(fields));
      return true;
    case WmfFunction::lineTo:
      context_.LineTo(ReadReversedPoint(fields));
      return true;
    case WmfFunction::rectangle:
      context_.Rectangle(ReadReversedRect(fields));
      return true;
    case WmfFunction::ellipse:
      context_.Ellipse(ReadReversedRect(fields));
      return true;
    case WmfFunction::roundRect: {
      const PointD corner = ReadReversedPoint(fields);
      context_.RoundRect(ReadReversedRect(fields), corner);
      return true;
    }
    case WmfFunction::arc:
      withEnds(&DeviceContext::Arc);
      return true;
    case WmfFunction::pie:
      withEnds(&DeviceContext::Pie);
      return true;
    case WmfFunction::chord:
      withEnds(&DeviceContext::Chord);
      return true;
    case WmfFunction::setPixel: {
      const TColor color = Color(fields);
      context_.SetPixel(ReadReversedPoint(fields), color);
      return true;
    }
    case WmfFunction::floodFill: {
      const TColor color = Color(fields);
      context_.ExtFloodFill(ReadReversedPoint(fields), color, FloodFill::toBorder);
      return true;
    }
    case WmfFunction::extFloodFill: {
      const auto kind = static_cast<FloodFill>(fields.Word());
      const TColor color = Color(fields);
      context_.ExtFloodFill(ReadReversedPoint(fields), color, kind);
      return true;
    }
    default:
      return false;
  }
}

bool WmfPlayer::PlayPoints(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::polygon: {
      const uint16_t count = fields.Word();
      context_.Polygon(ReadPoints(fields, count));
      return true;
    }
    case WmfFunction::polyline: {
      const uint16_t count = fields.Word();
      context_.Polyline(ReadPoints(fields, count));
      return true;
    }
    case WmfFunction::polyPolygon: {
      const uint16_t stated = fields.Word();
      std::vector<uint32_t> counts(fields.Count(stated, 2));
      uint64_t all = 0;
      for (uint32_t& count : counts) all += count = fields.Word();
      context_.PolyPolygon(ReadPoints(fields, all), counts);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
