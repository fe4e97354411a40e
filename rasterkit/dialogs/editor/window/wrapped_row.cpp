#include <QStyle>
#include <QWidget>
#include <algorithm>

#include <rasterkit/dialogs/editor/window/wrapped_row.h>

namespace rasterkit {
namespace {

constexpr int kUsualGap = 4;

}  // namespace

WrappedRow::WrappedRow(QWidget* parent, int mostLines) : QLayout(parent), mostLines_(mostLines) {
  setContentsMargins(0, 0, 0, 0);
}

WrappedRow::~WrappedRow() = default;

void WrappedRow::addItem(QLayoutItem* item) {
  items_.emplace_back(item);
}

int WrappedRow::count() const {
  return static_cast<int>(items_.size());
}

QLayoutItem* WrappedRow::itemAt(int index) const {
  const bool isThere = index >= 0 && index < count();
  return isThere ? items_[static_cast<size_t>(index)].get() : nullptr;
}

QLayoutItem* WrappedRow::takeAt(int index) {
  if (itemAt(index) == nullptr) return nullptr;
  QLayoutItem* item = items_[static_cast<size_t>(index)].release();
  items_.erase(items_.begin() + index);
  return item;
}

int WrappedRow::Gap() const {
  const QWidget* parent = parentWidget();
  const int gap = parent == nullptr ? -1
                                    : parent->style()->pixelMetric(
                                          QStyle::PM_LayoutHorizontalSpacing, nullptr, parent);
  return gap >= 0 ? gap : kUsualGap;
}

int WrappedRow::WholeWidth() const {
  int width = 0;
  for (const auto& item : items_) {
    if (!item->isEmpty()) width += (width > 0 ? Gap() : 0) + item->sizeHint().width();
  }
  return width;
}

int WrappedRow::WidestItem() const {
  int width = 0;
  for (const auto& item : items_) {
    if (!item->isEmpty()) width = std::max(width, item->sizeHint().width());
  }
  return width;
}

int WrappedRow::HeightIn(int width) const {
  return Arrange(QRect(0, 0, width, 0), false);
}

int WrappedRow::heightForWidth(int width) const {
  return HeightIn(width);
}

QSize WrappedRow::sizeHint() const {
  const int width = WholeWidth();
  return {width, HeightIn(width)};
}

QSize WrappedRow::minimumSize() const {
  // A line can be left with a gap as wide as the item that did not fit.
  const int share = (WholeWidth() + mostLines_ - 1) / mostLines_;
  const int width = std::min(WholeWidth(), share + (mostLines_ > 1 ? WidestItem() : 0));
  return {width, HeightIn(width)};
}

void WrappedRow::setGeometry(const QRect& place) {
  QLayout::setGeometry(place);
  Arrange(place, true);
}

int WrappedRow::Arrange(const QRect& place, bool moves) const {
  const QWidget* parent = parentWidget();
  const Qt::LayoutDirection direction =
      parent == nullptr ? Qt::LeftToRight : parent->layoutDirection();
  const int gap = Gap();
  std::vector<std::pair<QLayoutItem*, int>> line;
  int x = 0, y = 0, height = 0;
  const auto endLine = [&] {
    for (const auto& [item, left] : line) {
      const QSize size = item->sizeHint();
      const QRect rect(place.x() + left, place.y() + y + (height - size.height()) / 2, size.width(),
                       size.height());
      if (moves) item->setGeometry(QStyle::visualRect(direction, place, rect));
    }
    line.clear();
  };
  for (const auto& item : items_) {
    if (item->isEmpty()) continue;
    const QSize size = item->sizeHint();
    if (!line.empty() && x + size.width() > place.width()) {
      endLine();
      y += height + gap;
      x = height = 0;
    }
    line.emplace_back(item.get(), x);
    x += size.width() + gap;
    height = std::max(height, size.height());
  }
  endLine();
  return y + height;
}

}  // namespace rasterkit
