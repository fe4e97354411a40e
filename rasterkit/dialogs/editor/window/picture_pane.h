#pragma once

#include <QPointer>
#include <QTimer>
#include <functional>

#include <rasterkit/dialogs/bitmapframe/picture_view.h>
#include <rasterkit/dialogs/editor/window/picture_zoom.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/runtime/export.h>

class QKeyEvent;
class QMouseEvent;
class QPainter;
class QWheelEvent;

namespace rasterkit {

/// Turns a paint box into a viewer for one picture: the wheel zooms about the mouse, a drag moves
/// the picture. Painting costs what the box has of pixels, whatever the size of the picture, which
/// is smoothed when idle.
///
/// It does not own the box and takes over its handlers while it lives.
class RASTERKIT_EXPORT PicturePane {
 public:
  explicit PicturePane(TPaintBox& box);
  ~PicturePane();
  PicturePane(const PicturePane&) = delete;
  PicturePane& operator=(const PicturePane&) = delete;

  /// Shows other pixels (not owned; null for none), or the same ones after they changed. A picture
  /// of the same size keeps zoom and place.
  void Show(const TBitmap* picture);
  /// Shown in the middle while there is no picture.
  void SetEmptyText(const QString& text);

  void Fit();
  void ShowActualSize();
  void ZoomIn();
  void ZoomOut();
  const PictureZoom& Zoom() const { return zoom_; }

  /// Called after zoom or place changed.
  std::function<void()> OnZoomChanged;

 private:
  void TakeOver();
  void FollowBox();
  void ZoomBy(double factor, const QPointF& place);
  void PanBy(const QPointF& way);
  void OnPress(const QMouseEvent& event);
  void OnMove(const QMouseEvent& event);
  void OnRelease();
  void OnWheel(QWheelEvent& event);
  void OnKey(QKeyEvent& event);
  bool UseKey(const QKeyEvent& event);
  void Paint(QPainter& painter);
  PictureView::Window WindowFor(const QPainter& painter) const;
  void Changed();
  void ShowCursor();
  void RefineForAWhile();

  QPointer<TPaintBox> box_;
  PictureZoom zoom_;
  PictureView view_;
  const TBitmap* picture_ = nullptr;
  /// Rises with each `Show`, because other pixels can stand at the same address.
  unsigned version_ = 0;
  QString emptyText_;
  QTimer refineTimer_;
  QPointF dragStart_;
  bool isDragging_ = false;
  int wheelRest_ = 0;
};

}  // namespace rasterkit
