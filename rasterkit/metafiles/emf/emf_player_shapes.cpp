#include <rasterkit/metafiles/emf/emf_fields.h>
#include <rasterkit/metafiles/emf/emf_player.h>

namespace rasterkit::detail {
namespace {

ArcEnds ReadEnds(MetafileBytes& fields) {
  const PointD start = ReadPoint(fields);
  return {start, ReadPoint(fields)};
}

GradientVertex ReadVertex(MetafileBytes& fields) {
  GradientVertex vertex;
  vertex.point = ReadPoint(fields);
  vertex.red = fields.Word();
  vertex.green = fields.Word();
  vertex.blue = fields.Word();
  vertex.alpha = fields.Word();
  return vertex;
}

}  // namespace

void EmfPlayer::Gradient(const EmfRecord& record) {
  constexpr size_t kVertexBytes = 16;
  enum Mode : uint32_t { kAcross = 0, kDown = 1, kTriangles = 2 };
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const uint32_t statedVertices = fields.Long(), statedShapes = fields.Long();
  const uint32_t mode = fields.Long();
  std::vector<GradientVertex> vertices(fields.Count(statedVertices, kVertexBytes));
  for (GradientVertex& vertex : vertices) vertex = ReadVertex(fields);
  if (mode == kTriangles) {
    std::vector<std::array<uint32_t, 3>> triangles(fields.Count(statedShapes, 12));
    for (auto& triangle : triangles) {
      for (uint32_t& index : triangle) index = fields.Long();
    }
    context_.GradientTriangles(vertices, triangles);
  } else if (mode == kAcross || mode == kDown) {
    std::vector<std::pair<uint32_t, uint32_t>> rects(fields.Count(statedShapes, 8));
    for (auto& [first, second] : rects) {
      first = fields.Long();
      second = fields.Long();
    }
    context_.GradientRects(vertices, rects, mode == kDown);
  }
}

bool EmfPlayer::PlayShape(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const auto withEnds = [&](auto draw) {
    const RectD box = ReadRect(fields);
    (context_.*draw)(box, ReadEnds(fields));
  };
  switch (record.type) {
    case EmfType::setPixel: {
      const PointD at = ReadPoint(fields);
      context_.SetPixel(at, Color(fields));
      return true;
    }
    case EmfType::rectangle:
      context_.Rectangle(ReadRect(fields));
      return true;
    case EmfType::ellipse:
      context_.Ellipse(ReadRect(fields));
      return true;
    case EmfType::roundRect: {
      const RectD box = ReadRect(fields);
      context_.RoundRect(box, ReadPoint(fields));
      return true;
    }
    case EmfType::arc:
      withEnds(&DeviceContext::Arc);
      return true;
    case EmfType::arcTo:
      withEnds(&DeviceContext::ArcTo);
      return true;
    case EmfType::chord:
      withEnds(&DeviceContext::Chord);
      return true;
    case EmfType::pie:
      withEnds(&DeviceContext::Pie);
      return true;
    case EmfType::angleArc: {
      const PointD center = ReadPoint(fields);
      const double radius = fields.Long(), start = fields.Single();
      context_.AngleArc(center, radius, start, fields.Single());
      return true;
    }
    case EmfType::extFloodFill: {
      const PointD at = ReadPoint(fields);
      const TColor color = Color(fields);
      context_.ExtFloodFill(at, color, static_cast<FloodFill>(fields.Long()));
      return true;
    }
    case EmfType::gradientFill:
      Gradient(record);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
