#include <rasterkit/drawing/context/device_context_parts.h>

/// The clipping region of a drawing context.
namespace rasterkit {

using namespace detail;

void DeviceContext::IntersectClipRect(const RectD& rect) {
  parts_->CombineClip(parts_->AreaOf({&rect, 1}, RegionUnit::logical), RegionMode::intersection);
}

void DeviceContext::ExcludeClipRect(const RectD& rect) {
  parts_->CombineClip(parts_->AreaOf({&rect, 1}, RegionUnit::logical), RegionMode::difference);
}

void DeviceContext::OffsetClipRgn(PointD by) {
  if (!parts_->state.clip) return;
  const PointD moved = parts_->ToTarget().Direction(Finite(by));
  parts_->state.clip =
      parts_->Moved(*parts_->state.clip, NearestEdge(moved.x), NearestEdge(moved.y));
  parts_->ClipChanged();
}

void DeviceContext::ExtSelectClipRgn(std::optional<std::span<const RectD>> region, RegionUnit unit,
                                     RegionMode mode) {
  if (region) {
    parts_->CombineClip(parts_->AreaOf(*region, unit), mode);
  } else if (mode == RegionMode::copy) {
    parts_->state.clip.reset();
    parts_->ClipChanged();
  }
}

void DeviceContext::SetMetaRgn() {
  parts_->state.metaClip = parts_->VisibleClip();
  parts_->state.clip.reset();
  parts_->ClipChanged();
}

}  // namespace rasterkit
