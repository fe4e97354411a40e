#include <algorithm>
#include <cmath>

#include <rasterkit/dialogs/editor/window/picture_zoom.h>

namespace rasterkit {
namespace {

/// Beyond it coordinates of the screen would leave the range of painting.
constexpr double kLargestSide = 1 << 27;
constexpr double kLargestFactor = 64;
/// The longer side of the smallest picture that is shown, in pixels of the screen.
constexpr double kSmallestSide = 16;

/// The place of an axis: centered, or so that the picture covers the box.
double Inside(double start, double size, double box) {
  if (size <= box) return (box - size) / 2;
  return std::clamp(start, box - size, 0.0);
}

}  // namespace

bool PictureZoom::HasArea() const {
  return width_ > 0 && height_ > 0 && boxWidth_ > 0 && boxHeight_ > 0;
}

double PictureZoom::FactorToFit() const {
  return std::min(static_cast<double>(boxWidth_) / width_,
                  static_cast<double>(boxHeight_) / height_);
}

double PictureZoom::Limited(double factor) const {
  const double side = std::max(width_, height_);
  const double fit = FactorToFit();
  const double least = std::min({kSmallestSide / side, fit, 1.0});
  const double most = std::max(std::min(kLargestFactor, kLargestSide / side), fit);
  return std::clamp(factor, least, most);
}

void PictureZoom::SetPicture(int width, int height) {
  if (width == width_ && height == height_) return;
  width_ = width;
  height_ = height;
  Fit();
}

void PictureZoom::SetBox(int width, int height) {
  if (width == boxWidth_ && height == boxHeight_) return;
  left_ += (width - boxWidth_) / 2.0;
  top_ += (height - boxHeight_) / 2.0;
  boxWidth_ = width;
  boxHeight_ = height;
  if (isFit_ || factor_ <= 0) return Fit();
  MoveInside();
}

void PictureZoom::Fit() {
  isFit_ = true;
  factor_ = HasArea() ? FactorToFit() : 0;
  MoveInside();
}

void PictureZoom::ShowActualSize() {
  if (factor_ > 0) ZoomBy(1 / factor_);
}

void PictureZoom::ZoomBy(double factor) {
  ZoomBy(factor, boxWidth_ / 2.0, boxHeight_ / 2.0);
}

void PictureZoom::ZoomBy(double factor, double x, double y) {
  constexpr double kTolerance = 1e-6;
  if (!HasArea() || factor_ <= 0) return;
  double wanted = factor_ * factor;
  const bool jumpsOver = (factor_ - 1) * (wanted - 1) < 0 && std::abs(factor_ - 1) > kTolerance;
  if (jumpsOver || std::abs(wanted - 1) < kTolerance) wanted = 1;
  wanted = Limited(wanted);
  left_ = x - (x - left_) * wanted / factor_;
  top_ = y - (y - top_) * wanted / factor_;
  factor_ = wanted;
  isFit_ = false;
  MoveInside();
}

void PictureZoom::PanBy(double dx, double dy) {
  left_ += dx;
  top_ += dy;
  MoveInside();
}

bool PictureZoom::CanPan() const {
  return HasArea() && (width_ * factor_ > boxWidth_ + 0.5 || height_ * factor_ > boxHeight_ + 0.5);
}

bool PictureZoom::CanZoom(double factor) const {
  if (!HasArea()) return false;
  const double next = Limited(factor_ * factor);
  return factor > 1 ? next > factor_ : next < factor_;
}

void PictureZoom::MoveInside() {
  left_ = Inside(left_, width_ * factor_, boxWidth_);
  top_ = Inside(top_, height_ * factor_, boxHeight_);
}

TRect PictureZoom::Place() const {
  const auto left = static_cast<int>(std::lround(left_)), top = static_cast<int>(std::lround(top_));
  const auto width = static_cast<int>(std::lround(width_ * factor_));
  const auto height = static_cast<int>(std::lround(height_ * factor_));
  const bool isEmpty = factor_ <= 0;
  return {left, top, left + (isEmpty ? 0 : std::max(width, 1)),
          top + (isEmpty ? 0 : std::max(height, 1))};
}

}  // namespace rasterkit
