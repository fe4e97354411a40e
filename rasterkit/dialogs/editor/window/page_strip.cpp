#include <QKeyEvent>
#include <QScrollBar>

#include <rasterkit/dialogs/editor/window/page_strip.h>

namespace rasterkit {
namespace {

constexpr int kSide = 96;

}  // namespace

PageStrip::PageStrip(QWidget* parent) : QListView(parent) {
  setViewportMargins(kRoomForFocus);
  setModel(&pages_);
  setUniformItemSizes(true);
  setIconSize({kSide, kSide});
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setEditTriggers(NoEditTriggers);
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &PageStrip::DrawSeenRows);
  connect(this, &QListView::clicked, this,
          [this](const QModelIndex& index) { Q_EMIT pageChosen(index.row() + 1); });
}

void PageStrip::SetDocument(int pages, PageDrawing drawing) {
  pages_.SetDocument(pages, std::move(drawing));
  DrawSeenRows();
}

void PageStrip::SetCurrent(int page) {
  pages_.SetCurrent(page);
  const QModelIndex row = pages_.index(page - 1);
  if (row.isValid() && row != currentIndex()) setCurrentIndex(row);
}

QSize PageStrip::minimumSizeHint() const {
  const int frame = 2 * frameWidth() + verticalScrollBar()->sizeHint().width();
  const int number = fontMetrics().horizontalAdvance(QStringLiteral("00000"));
  return {kSide + number + frame, kSide};
}

QSize PageStrip::sizeHint() const {
  return {minimumSizeHint().width(), 3 * kSide};
}

void PageStrip::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isEnter) return QListView::keyPressEvent(event);
  // Else the key would press the default button of the window, too.
  event->accept();
  if (currentIndex().isValid()) Q_EMIT pageChosen(currentIndex().row() + 1);
}

void PageStrip::resizeEvent(QResizeEvent* event) {
  QListView::resizeEvent(event);
  DrawSeenRows();
}

void PageStrip::showEvent(QShowEvent* event) {
  QListView::showEvent(event);
  DrawSeenRows();
}

// The rows have their places only when they are painted for the first time.
void PageStrip::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  DrawSeenRows();
}

void PageStrip::DrawSeenRows() {
  if (!isVisible() || pages_.rowCount() == 0) return;
  pages_.SetSide(kSide, devicePixelRatioF());
  const QRect seen = viewport()->rect();
  const QModelIndex first = indexAt(seen.topLeft() + QPoint(2, 2));
  const QModelIndex last = indexAt(seen.bottomLeft() + QPoint(2, -2));
  // Without rows on the screen nothing is laid out yet.
  if (!first.isValid()) return;
  pages_.ShowRows(first.row(), last.isValid() ? last.row() : pages_.rowCount() - 1);
}

}  // namespace rasterkit
