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
/// rectangle. The base class defines what is shown and what happens; this class paints it and
/// forwards the mouse.
///
/// It does not own the box or the label (the label may be null). While it lives it replaces the
/// mouse and paint handlers of the box; the previous paint handler is called after its own
/// painting. The owner forwards resizing, wheel and keys to the three handlers below.
///
/// The cost of painting depends on the pixels of the box, not on the size of the bitmap: the
/// visible part is kept (8 bytes per device pixel of the box) and smoothed when idle if it is
/// shrunk.
class RASTERKIT_EXPORT TBmpCutRect final : private CutView, public BmpCutModel {
 public:
  TBmpCutRect(TPaintBox* paintBox, QLabel* sizeLabel, const CropRules& rules = kEntryCropRules);
  ~TBmpCutRect();

  using BmpCutModel::OnMouseWheel;
  using BmpCutModel::OnResize;
  void OnResize(TPaintBox& sender);
  /// One notch of the wheel is one step; the deltas of finer wheels and touch pads are added up.
  void OnMouseWheel(TPaintBox& sender, QWheelEvent& event);
  /// Arrows move the cut by one bitmap pixel, with Shift by 10; with Ctrl they move its right and
  /// bottom edge. Ctrl+Z undoes the last change of the cut. Plus and minus zoom about the center of
  /// the box, arrows with Alt pan. With rules that keep what was undone, Ctrl+Y and Ctrl+Shift+Z
  /// redo. Other keys are ignored.
  void OnKeyDown(TPaintBox& sender, QKeyEvent& event);

  /// Fills the handles and draws the frame of the cut.
  void DrawCutArea(QPainter& painter) const;
  /// Draws the outline of the cut with exclusive or: drawing it twice restores the picture.
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
  void DrawTwoTones(QPainter& painter) const;
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
