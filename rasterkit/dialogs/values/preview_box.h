#pragma once

#include <QImage>
#include <functional>
#include <optional>

#include <rasterkit/dialogs/values/preview_renderer.h>
#include <rasterkit/dialogs/values/values_viewport.h>
#include <rasterkit/qt/controls/paint_box.h>

namespace rasterkit {

/// Shows the picture before and after the change. The mouse drags the picture and the divider, the
/// wheel zooms; under the cursor a loupe shows pixels at the picture's own size. The arrow keys do
/// the same.
class PreviewBox : public TPaintBox {
 public:
  /// Both must outlive the box.
  PreviewBox(ValuesViewport& viewport, PreviewRenderer& renderer, QWidget* parent = nullptr);

  /// Called after zoom, position or size changed.
  std::function<void()> OnView;

  /// The values or the view changed: paint again.
  void Refresh();
  void SetLoupe(bool isOn);
  /// While it is on, only the original is shown.
  void SetComparing(bool isOn);
  bool IsComparing() const { return isComparing_; }
  void ZoomBy(int steps);

  /// Where the loupe is, in pixels of the screen; empty if there is none.
  QRect LoupeRect(const PreviewArea& area) const;
  /// The preview without loupe and captions, in pixels of the screen.
  const QImage& Picture();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void Paint(QPainter& painter);
  void PaintLoupe(QPainter& painter, const PreviewArea& area);
  void PaintDivider(QPainter& painter) const;
  void PaintCaptions(QPainter& painter, const std::vector<PreviewArea>& areas) const;
  void Measure();
  void MouseDown(QMouseEvent& event);
  void MouseMove(QMouseEvent& event);
  void Wheel(QWheelEvent& event);
  void KeyDown(QKeyEvent& event);
  void ShowCursor(TPoint at);
  bool HasLoupe() const;
  TPoint PixelOf(QPointF position) const;
  TColor Ground() const;
  std::vector<PreviewArea> Areas() const;
  void Changed();

  ValuesViewport& viewport_;
  PreviewRenderer& renderer_;
  QImage picture_;
  QSize pixels_;
  bool hasLoupe_ = true, isComparing_ = false;
  bool movesDivider_ = false, pans_ = false;
  /// Where the cursor is, and where the drag was last.
  std::optional<TPoint> cursor_;
  TPoint dragged_;
  int wheelRest_ = 0;
};

}  // namespace rasterkit
