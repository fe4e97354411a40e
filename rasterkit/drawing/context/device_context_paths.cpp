#include <rasterkit/drawing/context/device_context_parts.h>
#include <rasterkit/drawing/ink/flat_path.h>

/// The path of a drawing context.
namespace rasterkit {

using namespace detail;

void DeviceContext::BeginPath() {
  parts_->path.Clear();
  parts_->widened.reset();
  parts_->isPathOpen = true;
  parts_->startsFigure = true;
}

void DeviceContext::EndPath() {
  parts_->isPathOpen = false;
}

void DeviceContext::AbortPath() {
  parts_->isPathOpen = false;
  parts_->path.Clear();
  parts_->widened.reset();
}

void DeviceContext::CloseFigure() {
  if (!parts_->isPathOpen) return;
  parts_->path.Close();
  parts_->startsFigure = true;
}

void DeviceContext::FlattenPath() {
  if (parts_->isPathOpen) return;
  parts_->work.Charge(OutlineCost(parts_->path, parts_->painter.Frame()));
  parts_->path = Flattened(parts_->path);
}

void DeviceContext::WidenPath() {
  if (parts_->isPathOpen || parts_->widened) return;
  if (const StrokeStyle* style = parts_->PenStyle()) parts_->widened = *style;
}

namespace {

/// Takes the path out of the context if it is finished.
struct TakenPath {
  DrawingPath outline;
  std::optional<StrokeStyle> widened;
};

TakenPath Take(DeviceContext::Parts& parts) {
  TakenPath taken{std::move(parts.path), std::move(parts.widened)};
  parts.path.Clear();
  parts.widened.reset();
  return taken;
}

void FillTaken(DeviceContext::Parts& parts, const TakenPath& taken) {
  if (!taken.widened) {
    parts.FillAlone(taken.outline);
  } else if (const Ink* ink = parts.BrushInk()) {
    parts.AddBounds(taken.outline, taken.widened->Reach());
    parts.painter.Stroke(taken.outline, *taken.widened, *ink, parts.Code());
  }
}

}  // namespace

void DeviceContext::FillPath() {
  if (parts_->isPathOpen) return;
  TakenPath taken = Take(*parts_);
  FillTaken(*parts_, taken);
}

void DeviceContext::StrokePath() {
  if (parts_->isPathOpen) return;
  parts_->Stroke(Take(*parts_).outline);
}

void DeviceContext::StrokeAndFillPath() {
  if (parts_->isPathOpen) return;
  TakenPath taken = Take(*parts_);
  // Filling closes open figures.
  const DrawingPath closed = WithClosedFigures(taken.outline);
  if (!taken.widened) taken.outline = parts_->AlongLines(taken.outline);
  FillTaken(*parts_, taken);
  parts_->Stroke(closed);
}

void DeviceContext::SelectClipPath(RegionMode mode) {
  if (parts_->isPathOpen) return;
  const TakenPath taken = Take(*parts_);
  if (!taken.widened) {
    parts_->CombineClip(parts_->AreaOfPath(taken.outline, parts_->state.fill), mode);
    return;
  }
  const PixelRect& frame = parts_->painter.Frame();
  parts_->work.Charge(StrokeCost(taken.outline, *taken.widened, frame) + PixelsOf(frame));
  parts_->CombineClip(AreaOfStroke(taken.outline, *taken.widened, frame), mode);
}

}  // namespace rasterkit
