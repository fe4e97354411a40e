#include <QFont>
#include <QIcon>
#include <QPixmap>
#include <algorithm>
#include <array>

#include <rasterkit/dialogs/editor/window/page_strip_list.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/format_text.h>

namespace rasterkit {
namespace {

/// Small pictures that are kept.
constexpr qsizetype kMostImages = 300;

/// A sheet in the place of a page that is not drawn.
QImage EmptySheet(int side) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

}  // namespace

void PageList::SetDocument(int pages, PageDrawing drawing) {
  beginResetModel();
  task_.Cancel();
  pages_ = pages;
  drawing_ = std::move(drawing);
  images_.clear();
  isDrawing_ = false;
  drawnPages_ = 0;
  first_ = 0;
  last_ = -1;
  endResetModel();
}

void PageList::SetCurrent(int page) {
  if (page == current_) return;
  const int before = std::exchange(current_, page);
  for (const int changed : {before, page}) {
    const QModelIndex row = index(changed - 1);
    if (row.isValid()) Q_EMIT dataChanged(row, row);
  }
}

void PageList::SetSide(int side, double scale) {
  if (side == side_ && scale == scale_) return;
  side_ = side;
  scale_ = scale;
  images_.clear();
  task_.Cancel();
  isDrawing_ = false;
  DrawNext();
}

void PageList::ShowRows(int first, int last) {
  first_ = std::max(first, 0);
  last_ = std::min(last, pages_ - 1);
  DrawNext();
}

void PageList::DrawNext() {
  if (isDrawing_ || !drawing_) return;
  int page = 0;
  for (int row = first_; row <= last_ && page == 0; ++row) {
    if (!images_.contains(row + 1)) page = row + 1;
  }
  if (page == 0) return;
  isDrawing_ = true;
  const auto none = [this, page] { Take(page, {}); };
  const int side = qRound(side_ * scale_);
  task_.Run(
      [this, page, side, drawing = drawing_](const std::atomic<bool>& isCanceled) {
        const QImage image = drawing(page, side, isCanceled);
        return [this, page, image] { Take(page, image); };
      },
      none);
}

void PageList::Take(int page, const QImage& image) {
  isDrawing_ = false;
  ++drawnPages_;
  images_.insert(page, image);
  ForgetFarPages();
  const QModelIndex row = index(page - 1);
  Q_EMIT dataChanged(row, row, {Qt::DecorationRole});
  DrawNext();
}

void PageList::ForgetFarPages() {
  while (images_.size() > kMostImages) {
    const int middle = (first_ + last_) / 2 + 1;
    int farthest = images_.cbegin().key();
    for (auto image = images_.cbegin(); image != images_.cend(); ++image) {
      if (std::abs(image.key() - middle) > std::abs(farthest - middle)) farthest = image.key();
    }
    images_.remove(farthest);
  }
}

int PageList::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : pages_;
}

QVariant PageList::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= pages_) return {};
  const int page = index.row() + 1;
  if (role == Qt::DisplayRole) return QString::number(page);
  if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole) {
    return ToQt(FormatText(ResourceString(rsEditorPageNumber), std::array{std::to_string(page)}));
  }
  if (role == Qt::FontRole && page == current_) {
    QFont font;
    font.setBold(true);
    return font;
  }
  if (role != Qt::DecorationRole) return {};
  // Each row is as high as its picture, so a page that is not drawn has one of the full size.
  const QImage image = images_.value(page);
  QImage shown = image.isNull() ? EmptySheet(qRound(side_ * scale_)) : image;
  shown.setDevicePixelRatio(scale_);
  // A chosen page keeps its colors.
  const QPixmap pixmap = QPixmap::fromImage(shown);
  QIcon icon(pixmap);
  icon.addPixmap(pixmap, QIcon::Selected);
  return icon;
}

}  // namespace rasterkit
