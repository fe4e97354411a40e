#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {

const RegionObject& WmfPlayer::RegionOf(size_t handle) const {
  const MetafileObject* object = objects_.Find(handle);
  const auto* region = object == nullptr ? nullptr : std::get_if<RegionObject>(object);
  if (region == nullptr) throw RangeError("WMF: a record refers to a missing region");
  return *region;
}

const LogicalBrush& WmfPlayer::BrushOf(size_t handle) const {
  const MetafileObject* object = objects_.Find(handle);
  const auto* brush = object == nullptr ? nullptr : std::get_if<BrushObject>(object);
  if (brush == nullptr) throw RangeError("WMF: a record refers to a missing brush");
  return **brush;
}

/// Selecting a handle that is not a region removes the clipping: programs write that as "none".
void WmfPlayer::SelectClip(size_t handle) {
  const MetafileObject* object = objects_.Find(handle);
  const auto* region = object == nullptr ? nullptr : std::get_if<RegionObject>(object);
  if (region == nullptr) {
    context_.ExtSelectClipRgn(std::nullopt, RegionUnit::logical, RegionMode::copy);
  } else {
    context_.ExtSelectClipRgn(region->rects, RegionUnit::logical, RegionMode::copy);
  }
}

bool WmfPlayer::PlayRegion(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  constexpr RegionUnit kUnit = RegionUnit::logical;
  switch (record.function) {
    case WmfFunction::intersectClipRect:
      context_.IntersectClipRect(ReadReversedRect(fields));
      return true;
    case WmfFunction::excludeClipRect:
      context_.ExcludeClipRect(ReadReversedRect(fields));
      return true;
    case WmfFunction::offsetClipRgn:
      context_.OffsetClipRgn(ReadReversedPoint(fields));
      return true;
    case WmfFunction::selectClipRegion:
      SelectClip(fields.Word());
      return true;
    case WmfFunction::fillRegion: {
      const RegionObject& region = RegionOf(fields.Word());
      context_.FillRgn(region.rects, kUnit, BrushOf(fields.Word()));
      return true;
    }
    case WmfFunction::frameRegion: {
      const RegionObject& region = RegionOf(fields.Word());
      const LogicalBrush& brush = BrushOf(fields.Word());
      context_.FrameRgn(region.rects, kUnit, brush, ReadReversedPoint(fields));
      return true;
    }
    case WmfFunction::invertRegion:
      context_.InvertRgn(RegionOf(fields.Word()).rects, kUnit);
      return true;
    case WmfFunction::paintRegion:
      context_.PaintRgn(RegionOf(fields.Word()).rects, kUnit);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
