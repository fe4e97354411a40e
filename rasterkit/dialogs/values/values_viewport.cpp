#include <algorithm>
#include <array>
#include <cmath>

#include <rasterkit/dialogs/values/values_viewport.h>

namespace rasterkit {
namespace {

constexpr std::array kLadder{
    1.0 / 64, 1.0 / 32, 1.0 / 16, 1.0 / 8, 1.0 / 4, 1.0 / 3, 1.0 / 2, 2.0 / 3,
    1.0,      2.0,      3.0,      4.0,     6.0,     8.0,     12.0,    ValuesViewport::kMostZoom};
/// The longest side of a picture that is enlarged, in pixels of the screen: positions and their
/// differences fit into 32 bits.
constexpr double kMostLength = 1 << 30;
/// Two zooms that differ by less are the same.
constexpr double kSame = 1e-9;

int Scaled(int length, double zoom) {
  return std::max(1, static_cast<int>(std::lround(length * zoom)));
}

/// Where a picture of `length` pixels of the screen begins, so that `center` of its pixels is in
/// the middle of a pane; it never leaves room at one side only.
int Start(int paneStart, int pane, int length, double center, double zoom) {
  if (length <= pane) return paneStart + (pane - length) / 2;
  const auto wanted = static_cast<int>(std::lround(pane / 2.0 - center * zoom));
  return paneStart + std::clamp(wanted, pane - length, 0);
}

}  // namespace

ValuesViewport::ValuesViewport(int pictureWidth, int pictureHeight)
    : width_(std::max(pictureWidth, 1)),
      height_(std::max(pictureHeight, 1)),
      centerX_(width_ / 2.0),
      centerY_(height_ / 2.0) {}

void ValuesViewport::SetBox(int width, int height) {
  boxWidth_ = std::max(width, 0);
  boxHeight_ = std::max(height, 0);
  ClampCenter();
}

void ValuesViewport::SetMode(PreviewMode mode) {
  mode_ = mode;
  ClampCenter();
}

int ValuesViewport::PaneWidth() const {
  if (mode_ != PreviewMode::sideBySide) return boxWidth_;
  return std::max((boxWidth_ - kGap) / 2, 0);
}

std::vector<TRect> ValuesViewport::Panes() const {
  const TRect all{0, 0, boxWidth_, boxHeight_};
  if (mode_ != PreviewMode::sideBySide) return {all};
  const int pane = PaneWidth();
  const TRect left{0, 0, pane, boxHeight_}, right{boxWidth_ - pane, 0, boxWidth_, boxHeight_};
  if (isRightToLeft_) return {right, left};
  return {left, right};
}

TRect ValuesViewport::PlaceIn(const TRect& pane) const {
  const double zoom = Zoom();
  const int width = Scaled(width_, zoom), height = Scaled(height_, zoom);
  const int left = Start(pane.Left, pane.Right - pane.Left, width, centerX_, zoom);
  const int top = Start(pane.Top, pane.Bottom - pane.Top, height, centerY_, zoom);
  return {left, top, left + width, top + height};
}

std::vector<PreviewArea> ValuesViewport::Areas() const {
  const std::vector<TRect> panes = Panes();
  const TRect& first = panes.front();
  if (mode_ == PreviewMode::changed) return {{first, first, PlaceIn(first), true}};
  if (mode_ == PreviewMode::sideBySide) {
    const TRect& second = panes.back();
    return {{first, first, PlaceIn(first), false}, {second, second, PlaceIn(second), true}};
  }
  const TRect place = PlaceIn(first);
  const int column = DividerColumn();
  const TRect left{0, 0, column, boxHeight_}, right{column, 0, boxWidth_, boxHeight_};
  return {{isRightToLeft_ ? right : left, first, place, false},
          {isRightToLeft_ ? left : right, first, place, true}};
}

std::vector<PreviewArea> ValuesViewport::AreasOf(bool isChanged) const {
  std::vector<PreviewArea> areas = Areas();
  for (PreviewArea& area : areas) area.isChanged = isChanged;
  return areas;
}

double ValuesViewport::FittedZoom() const {
  const double across = static_cast<double>(PaneWidth()) / width_;
  const double down = static_cast<double>(boxHeight_) / height_;
  return std::clamp(std::min(across, down), 1e-6, 1.0);
}

/// The last rung of the ladder at which both sides can be counted; the picture's own size always.
double ValuesViewport::MostZoom() const {
  double most = 1;
  for (const double rung : kLadder) {
    if (rung * std::max(width_, height_) <= kMostLength) most = std::max(most, rung);
  }
  return most;
}

bool ValuesViewport::CanZoomOut() const {
  return Zoom() > std::min(FittedZoom(), 1.0) + kSame;
}

void ValuesViewport::ShowActualSize() {
  SetZoom(1);
}

void ValuesViewport::SetZoom(double zoom) {
  isFitted_ = false;
  zoom_ = zoom;
  ClampCenter();
}

void ValuesViewport::ZoomBy(int steps) {
  const TRect pane = Panes().back();
  ZoomBy(steps, {(pane.Left + pane.Right) / 2, (pane.Top + pane.Bottom) / 2});
}

void ValuesViewport::ZoomBy(int steps, TPoint about) {
  const double before = Zoom(), fitted = FittedZoom();
  double zoom = before;
  for (; steps > 0; --steps) {
    const auto* const next = std::find_if(kLadder.begin(), kLadder.end(),
                                          [&](double rung) { return rung > zoom + kSame; });
    if (next != kLadder.end()) zoom = std::min(*next, MostZoom());
  }
  for (; steps < 0; ++steps) {
    double next = fitted;
    for (const double rung : kLadder) {
      if (rung < zoom - kSame) next = std::max(next, rung);
    }
    if (next >= zoom - kSame) next = fitted;
    zoom = std::max(next, fitted);
  }
  if (zoom <= fitted + kSame) return Fit();
  // The point of the picture that is under `about` stays there.
  const std::vector<PreviewArea> areas = Areas();
  const PreviewArea* const area = AreaAt(about, areas);
  const TRect place = area != nullptr ? area->place : areas.back().place;
  const double x = (about.X - place.Left) / before, y = (about.Y - place.Top) / before;
  const TRect pane = area != nullptr ? area->pane : areas.back().pane;
  SetZoom(zoom);
  centerX_ = x - (about.X - (pane.Left + pane.Right) / 2.0) / zoom;
  centerY_ = y - (about.Y - (pane.Top + pane.Bottom) / 2.0) / zoom;
  ClampCenter();
}

/// Keeps the center where the picture fills the pane, so that panning back begins at once.
void ValuesViewport::ClampCenter() {
  const double zoom = Zoom();
  const auto clamp = [zoom](double center, int picture, int pane) {
    const double half = pane / 2.0 / zoom;
    if (2 * half >= picture) return picture / 2.0;
    return std::clamp(center, half, picture - half);
  };
  centerX_ = clamp(centerX_, width_, PaneWidth());
  centerY_ = clamp(centerY_, height_, boxHeight_);
}

bool ValuesViewport::CanPan() const {
  const double zoom = Zoom();
  return Scaled(width_, zoom) > PaneWidth() || Scaled(height_, zoom) > boxHeight_;
}

bool ValuesViewport::PanBy(int right, int down) {
  const double x = centerX_, y = centerY_;
  centerX_ -= right / Zoom();
  centerY_ -= down / Zoom();
  ClampCenter();
  return x != centerX_ || y != centerY_;
}

void ValuesViewport::SetDivider(double share) {
  divider_ = std::clamp(share, 0.0, 1.0);
}

int ValuesViewport::DividerColumn() const {
  const double share = isRightToLeft_ ? 1 - divider_ : divider_;
  return static_cast<int>(std::lround(share * boxWidth_));
}

void ValuesViewport::MoveDividerTo(int column) {
  if (boxWidth_ == 0) return;
  const double share = static_cast<double>(column) / boxWidth_;
  SetDivider(isRightToLeft_ ? 1 - share : share);
}

bool ValuesViewport::IsOnDivider(int column, int reach) const {
  return mode_ == PreviewMode::split && std::abs(column - DividerColumn()) <= reach;
}

const PreviewArea* ValuesViewport::AreaAt(TPoint point, const std::vector<PreviewArea>& areas) {
  for (const PreviewArea& area : areas) {
    const bool isAcross = point.X >= area.box.Left && point.X < area.box.Right;
    if (isAcross && point.Y >= area.box.Top && point.Y < area.box.Bottom) return &area;
  }
  return nullptr;
}

TPoint ValuesViewport::PixelAt(TPoint point) const {
  const std::vector<PreviewArea> areas = Areas();
  const PreviewArea* const area = AreaAt(point, areas);
  const TRect place = area != nullptr ? area->place : areas.back().place;
  const auto pixel = [](int position, int start, int end, int size) {
    return static_cast<int>(
        std::floor((position - start + 0.5) * size / static_cast<double>(end - start)));
  };
  return {pixel(point.X, place.Left, place.Right, width_),
          pixel(point.Y, place.Top, place.Bottom, height_)};
}

}  // namespace rasterkit
