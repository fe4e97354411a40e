#pragma once

#include <functional>
#include <optional>

#include <rasterkit/dialogs/values/value_histogram.h>
#include <rasterkit/qt/controls/paint_box.h>

namespace rasterkit {

/// Draws a histogram, dark at the side where lines of text begin: luminance as an area, the
/// channels as lines, a threshold as a line that the mouse moves, and a mark for the threshold that
/// was found.
class HistogramBox : public TPaintBox {
 public:
  explicit HistogramBox(QWidget* parent = nullptr);

  void SetHistogram(const ValueHistogram& histogram, bool showsChannels);
  void SetThreshold(std::optional<int> threshold);
  void SetMark(std::optional<int> mark);
  std::optional<int> Threshold() const { return threshold_; }
  std::optional<int> Mark() const { return mark_; }

  /// The user moves the line, and stops moving it.
  std::function<void(int threshold)> OnThreshold;
  std::function<void()> OnThresholdEnd;

  /// Middle of a level in pixels of the widget, and the level at a pixel, 0 to 256.
  double XOf(double level) const;
  int LevelAt(double x) const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 private:
  void Paint(QPainter& painter);
  QRectF Plot() const;

  ValueHistogram histogram_;
  bool showsChannels_ = false;
  std::optional<int> threshold_, mark_;
};

}  // namespace rasterkit
