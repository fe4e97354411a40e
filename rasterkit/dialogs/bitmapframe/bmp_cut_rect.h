#pragma once

#include <QPointer>
#include <QTimer>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>
#include <rasterkit/dialogs/bitmapframe/picture_view.h>
#include <rasterkit/qt/controls/paint_box.h>

class QKeyEvent;
class QLabel;
class QMouseEvent;
class QPainter;
class QWheelEvent;

namespace rasterkit {

/// The crop tool: turns a paint box and a size label into a viewer for one bitmap with a cut
/// rectangle. The base class says what it shows and does; this one paints it and hands it the
/// mouse.
///
/// It owns neither box nor label (there may be no label) and takes over the box's mouse and paint
/// handlers as long as it lives; the paint handler that was there is called after its own painting.
/// Resizing, wheel and keys belong to the owner, who forwards them to the three handlers below.
///
/// Painting costs what the box's pixels cost, however large the bitmap is: what is seen of it is
/// kept (8 bytes for each device pixel of the box) and, where it is shrunk, smoothed while nothing
/// else is to be done.
class RASTERKIT_EXPORT TBmpCutRect final : private CutView, public BmpCutModel {
 public:
  TBmpCutRect(TPaintBox* paintBox, QLabel* sizeLabel);
  ~TBmpCutRect();

  using BmpCutModel::OnMouseWheel;
  using BmpCutModel::OnResize;
  void OnResize(TPaintBox& sender);
  /// A notch of the wheel is a step; finer wheels and touch pads are summed up to one.
  void OnMouseWheel(TPaintBox& sender, QWheelEvent& event);
  /// Arrows move the cut by a pixel of the bitmap, with Shift by 10, and with Ctrl they move its
  /// right and bottom edge instead; Ctrl+Z takes back the last change of the cut. Plus and minus
  /// zoom about the middle of the box, arrows with Alt show what lies beyond its edge. Other keys
  /// are ignored.
  void OnKeyDown(TPaintBox& sender, QKeyEvent& event);

  /// Fills the handles and draws the frame of the cut.
  void DrawCutArea(QPainter& painter) const;
  /// Draws the outline of the cut by exclusive or: drawing it twice restores the picture.
  void DrawCutRectXor(QPainter& painter) const;

 private:
  TRect ClientRect() const override;
  void Repaint() override;
  void ShowCursor(CutCursor cursor) override;
  void ShowSizeText(const std::string& text) override;

  void TakeOver();
  void TellReaders();
  bool HandleArrow(const TPoint& arrow, Qt::KeyboardModifiers keys);
  bool ZoomByKey(bool isIn);
  void Paint(TPaintBox& box, QPainter& painter);
  void DrawPicture(QPainter& painter);
  PictureView::Window WindowFor(const QPainter& painter) const;
  void RefineForAWhile();

  QPointer<TPaintBox> fPaintBox;
  QPointer<QLabel> fSizeLabel;
  TPaintBox::PaintHandler FSavePaint;

  PictureView pictureView_;
  QTimer refineTimer_;
  int wheelDelta_ = 0;
};

}  // namespace rasterkit
