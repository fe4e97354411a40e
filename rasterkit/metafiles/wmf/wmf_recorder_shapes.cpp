#include <algorithm>
#include <cmath>

#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_recorder.h>

namespace rasterkit::detail {
namespace {

/// Copies points with 16-bit coordinates: x, y.
void CopyPoints(MetafileBytes& from, uint64_t stated, EmfFields& to) {
  const size_t count = from.Count(stated, 4);
  to.Append(from.Take(4 * count));
}

/// The map of one coordinate to the device.
struct DeviceAxis {
  double origin = 0, pixelsPerUnit = 1;
  double Pixel(double unit) const { return std::floor(origin + unit * pixelsPerUnit + 0.5); }
};

/// Returns the nearest integer that lies on the same pixel of the device, else the nearest one.
double WholeUnit(double exact, const DeviceAxis& axis) {
  const double nearest = std::nearbyint(exact), other = nearest + (exact > nearest ? 1 : -1);
  const double pixel = axis.Pixel(exact);
  return axis.Pixel(nearest) != pixel && axis.Pixel(other) == pixel ? other : nearest;
}

/// Moves the right or bottom edge, as seen on the device, by one pixel.
void Shorten(double& from, double& to, const DeviceAxis& axis) {
  const double unitsPerPixel = 1 / axis.pixelsPerUnit;
  double& far = (to > from) == (unitsPerPixel > 0) ? to : from;
  const double& near = &far == &to ? from : to;
  const double pixel = std::min(std::abs(unitsPerPixel), std::abs(far - near));
  far = WholeUnit(far - (unitsPerPixel > 0 ? pixel : -pixel), axis);
}

}  // namespace

PointD WmfRecorder::Scale() const {
  const PointD origin = context_.DevicePoint({0, 0}), unit = context_.DevicePoint({1, 1});
  return {unit.x - origin.x, unit.y - origin.y};
}

/// WMF boxes exclude their right and bottom edges, EMF boxes include them. Without a pen, both are
/// filled alike.
RectD WmfRecorder::Reached(const RectD& box) const {
  const PointD scale = Scale();
  if (!state_.hasPen || scale.x == 0 || scale.y == 0) return box;
  const PointD origin = context_.DevicePoint({0, 0});
  RectD reached = box;
  Shorten(reached.left, reached.right, {origin.x, scale.x});
  Shorten(reached.top, reached.bottom, {origin.y, scale.y});
  return reached;
}

/// WMF arcs run counter-clockwise on the device, EMF arcs in logical units.
void WmfRecorder::Arc(EmfType type, const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const PointD end = ReadReversedPoint(fields), start = ReadReversedPoint(fields);
  const PointD scale = Scale();
  const bool isTurnedOver = (scale.x < 0) != (scale.y < 0);
  const ArcDirection arcs = isTurnedOver ? ArcDirection::clockwise : ArcDirection::counterclockwise;
  if (arcs != state_.arcs) writer_.Add(EmfType::setArcDirection, {static_cast<int64_t>(arcs)});
  state_.arcs = arcs;
  writer_.Add(type, EmfFields().Rect(Reached(ReadReversedRect(fields))).Point(start).Point(end));
}

bool WmfRecorder::RecordShape(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::moveTo:
      writer_.Add(EmfType::moveTo, EmfFields().Point(ReadReversedPoint(fields)));
      return true;
    case WmfFunction::lineTo:
      writer_.Add(EmfType::lineTo, EmfFields().Point(ReadReversedPoint(fields)));
      return true;
    case WmfFunction::rectangle:
      writer_.Add(EmfType::rectangle, EmfFields().Rect(Reached(ReadReversedRect(fields))));
      return true;
    case WmfFunction::ellipse:
      writer_.Add(EmfType::ellipse, EmfFields().Rect(Reached(ReadReversedRect(fields))));
      return true;
    case WmfFunction::roundRect: {
      const PointD corner = ReadReversedPoint(fields);
      const RectD box = Reached(ReadReversedRect(fields));
      writer_.Add(EmfType::roundRect, EmfFields().Rect(box).Point(corner));
      return true;
    }
    case WmfFunction::arc:
      Arc(EmfType::arc, record);
      return true;
    case WmfFunction::pie:
      Arc(EmfType::pie, record);
      return true;
    case WmfFunction::chord:
      Arc(EmfType::chord, record);
      return true;
    default:
      return false;
  }
}

bool WmfRecorder::RecordPoints(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  EmfFields copied;
  copied.NoBounds();
  switch (record.function) {
    case WmfFunction::polygon:
    case WmfFunction::polyline: {
      const uint16_t count = fields.Word();
      CopyPoints(fields, count, copied.Long(count));
      const bool isPolygon = record.function == WmfFunction::polygon;
      writer_.Add(isPolygon ? EmfType::polygon16 : EmfType::polyline16, copied);
      return true;
    }
    case WmfFunction::polyPolygon: {
      const size_t polygons = fields.Word();
      std::vector<uint16_t> counts(fields.Count(polygons, 2));
      uint64_t all = 0;
      for (uint16_t& count : counts) all += count = fields.Word();
      copied.Longs({static_cast<int64_t>(polygons), static_cast<int64_t>(all)});
      for (const uint16_t count : counts) copied.Long(count);
      CopyPoints(fields, all, copied);
      writer_.Add(EmfType::polyPolygon16, copied);
      return true;
    }
    default:
      return false;
  }
}

bool WmfRecorder::RecordPixels(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::setPixel: {
      const uint32_t color = fields.Long();
      writer_.Add(EmfType::setPixel, EmfFields().Point(ReadReversedPoint(fields)).Long(color));
      return true;
    }
    case WmfFunction::floodFill:
    case WmfFunction::extFloodFill: {
      const bool hasKind = record.function == WmfFunction::extFloodFill;
      const uint32_t kind = hasKind ? fields.Word() : static_cast<uint32_t>(FloodFill::toBorder);
      const uint32_t color = fields.Long();
      writer_.Add(EmfType::extFloodFill,
                  EmfFields().Point(ReadReversedPoint(fields)).Long(color).Long(kind));
      return true;
    }
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
