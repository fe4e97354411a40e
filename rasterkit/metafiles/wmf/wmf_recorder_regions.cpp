#include <algorithm>

#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_recorder.h>

namespace rasterkit::detail {
namespace {

/// Appends a region: a header with the number of rectangles and the bounding box, and the
/// rectangles.
void AppendRegion(const RegionObject& region, EmfFields& fields) {
  constexpr int64_t kHeadBytes = 32, kRectangles = 1, kRectBytes = 16;
  const auto count = static_cast<int64_t>(region.rects.size());
  fields.Longs({kHeadBytes, kRectangles, count, count * kRectBytes});
  RectD box;
  for (size_t i = 0; i < region.rects.size(); ++i) {
    const RectD& rect = region.rects[i];
    if (i == 0) box = rect;
    box = {std::min(box.left, rect.left), std::min(box.top, rect.top),
           std::max(box.right, rect.right), std::max(box.bottom, rect.bottom)};
  }
  fields.Rect(box);
  for (const RectD& rect : region.rects) fields.Rect(rect);
}

}  // namespace

const RegionObject* WmfRecorder::RegionOf(size_t handle) const {
  const MetafileObject* object = player_.Objects().Find(handle);
  return object == nullptr ? nullptr : std::get_if<RegionObject>(object);
}

/// EMF regions for clipping are in pixels. These are in logical units, so clip with a box or a
/// path.
void WmfRecorder::SelectClip(const RegionObject* region) {
  const auto copy = static_cast<int64_t>(RegionMode::copy);
  if (region == nullptr || region->rects.size() < 2) {
    writer_.Add(EmfType::extSelectClipRgn, {0, copy});
    if (region == nullptr) return;
    const RectD box = region->rects.empty() ? RectD() : region->rects.front();
    writer_.Add(EmfType::intersectClipRect, EmfFields().Rect(box));
    return;
  }
  const auto count = static_cast<int64_t>(region->rects.size());
  EmfFields fields;
  fields.NoBounds().Longs({count, 4 * count});
  for (int64_t i = 0; i < count; ++i) fields.Long(4);
  for (const RectD& rect : region->rects) {
    fields.Point({rect.left, rect.top}).Point({rect.right, rect.top});
    fields.Point({rect.right, rect.bottom}).Point({rect.left, rect.bottom});
  }
  writer_.Add(EmfType::beginPath);
  writer_.Add(EmfType::polyPolygon, fields);
  writer_.Add(EmfType::endPath);
  writer_.Add(EmfType::selectClipPath, {copy});
}

void WmfRecorder::FillRegion(EmfType type, const WmfRecord& record) {
  MetafileBytes words = record.Fields();
  const RegionObject* region = RegionOf(words.Word());
  if (region == nullptr) return;
  EmfFields data, fields;
  AppendRegion(*region, data);
  fields.NoBounds().Long(static_cast<int64_t>(data.Size()));
  if (type == EmfType::fillRgn || type == EmfType::frameRgn) {
    fields.Long(int64_t{words.Word()} + 1);
  }
  if (type == EmfType::frameRgn) fields.Point(ReadReversedPoint(words));
  writer_.Add(type, fields.Append(data.Bytes()));
}

bool WmfRecorder::RecordRegion(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const auto fill = [&](EmfType type) {
    FillRegion(type, record);
    return true;
  };
  switch (record.function) {
    case WmfFunction::intersectClipRect:
      writer_.Add(EmfType::intersectClipRect, EmfFields().Rect(ReadReversedRect(fields)));
      return true;
    case WmfFunction::excludeClipRect:
      writer_.Add(EmfType::excludeClipRect, EmfFields().Rect(ReadReversedRect(fields)));
      return true;
    case WmfFunction::offsetClipRgn:
      writer_.Add(EmfType::offsetClipRgn, EmfFields().Point(ReadReversedPoint(fields)));
      return true;
    case WmfFunction::selectClipRegion:
      SelectClip(RegionOf(fields.Word()));
      return true;
    case WmfFunction::fillRegion:
      return fill(EmfType::fillRgn);
    case WmfFunction::frameRegion:
      return fill(EmfType::frameRgn);
    case WmfFunction::invertRegion:
      return fill(EmfType::invertRgn);
    case WmfFunction::paintRegion:
      return fill(EmfType::paintRgn);
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
