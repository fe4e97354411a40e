#pragma once

#include <QListView>
#include <QMargins>

#include <rasterkit/dialogs/editor/window/page_strip_list.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Margins around the rows of a list whose rows may have the color of the focus.
inline constexpr QMargins kRoomForFocus{1, 1, 1, 1};

/// The pages of a document below each other; those that are seen are drawn in the background. A
/// click or Enter chooses one.
class RASTERKIT_EXPORT PageStrip : public QListView {
  Q_OBJECT

 public:
  explicit PageStrip(QWidget* parent = nullptr);

  void SetDocument(int pages, PageDrawing drawing);
  void SetCurrent(int page);
  const PageList& Pages() const { return pages_; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 Q_SIGNALS:
  void pageChosen(int page);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void DrawSeenRows();

  PageList pages_;
};

}  // namespace rasterkit
