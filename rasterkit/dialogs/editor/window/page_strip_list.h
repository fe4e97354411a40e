#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QImage>
#include <QList>
#include <functional>

#include <rasterkit/dialogs/editor/window/page_drawing.h>
#include <rasterkit/qt/latest_task.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The pages of a document as the rows of a list, with small pictures that are drawn on another
/// thread, one at a time, for the rows that are seen. Keeps the latest ones.
class RASTERKIT_EXPORT PageList : public QAbstractListModel {
  Q_OBJECT

 public:
  /// `drawing` is called on another thread.
  void SetDocument(int pages, PageDrawing drawing);
  void SetCurrent(int page);
  /// Width and height of the small pictures in pixels of the screen, and the scale of that screen.
  void SetSide(int side, double scale);
  /// The rows that are seen; those without a picture are drawn next, from the first one on.
  void ShowRows(int first, int last);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  /// Pages that were drawn since the document was set, for tests.
  int DrawnPages() const { return drawnPages_; }

 private:
  void DrawNext();
  void Take(int page, const QImage& image);
  void ForgetFarPages();

  int pages_ = 0, current_ = 0;
  int first_ = 0, last_ = -1;
  int side_ = 96;
  double scale_ = 1;
  PageDrawing drawing_;
  /// By page; a null image for a page that cannot be drawn.
  QHash<int, QImage> images_;
  bool isDrawing_ = false;
  int drawnPages_ = 0;
  detail::LatestTask task_;
};

}  // namespace rasterkit
