#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <utility>

#include <rasterkit/qt/files/file_list_model.h>
#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit::detail {

void FileListModel::SetContent(FolderContent content) {
  if (ShowsTheSameNames(content)) {
    content_ = std::move(content);
    if (!rows_.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
    return;
  }
  beginResetModel();
  content_ = std::move(content);
  rows_ = SortedRows();
  endResetModel();
}

/// Sizes and dates may differ unless the rows are sorted by them.
bool FileListModel::ShowsTheSameNames(const FolderContent& content) const {
  return sortColumn_ == colName && content.state == content_.state &&
         std::equal(content.entries.begin(), content.entries.end(), content_.entries.begin(),
                    content_.entries.end(), [](const FolderEntry& a, const FolderEntry& b) {
                      return a.name == b.name && a.isFolder == b.isFolder;
                    });
}

void FileListModel::SetMask(const std::string& mask) {
  beginResetModel();
  mask_ = FileMask(mask);
  rows_ = SortedRows();
  endResetModel();
}

void FileListModel::sort(int column, Qt::SortOrder order) {
  if (column < 0 || column >= kColumns) return;
  beginResetModel();
  sortColumn_ = column;
  sortOrder_ = order;
  rows_ = SortedRows();
  endResetModel();
}

std::vector<int> FileListModel::SortedRows() const {
  std::vector<int> rows;
  for (size_t i = 0; i < content_.entries.size(); ++i) {
    const FolderEntry& entry = content_.entries[i];
    if (entry.isFolder || mask_.Fits(entry.name)) rows.push_back(static_cast<int>(i));
  }
  std::sort(rows.begin(), rows.end(), [this](int a, int b) { return ComesBefore(a, b); });
  return rows;
}

bool FileListModel::ComesBefore(int a, int b) const {
  const FolderEntry& first = content_.entries[static_cast<size_t>(a)];
  const FolderEntry& second = content_.entries[static_cast<size_t>(b)];
  if (first.isFolder != second.isFolder) return first.isFolder;
  const bool isAscending = sortOrder_ == Qt::AscendingOrder;
  const auto inOrder = [isAscending](auto x, auto y) { return isAscending ? x < y : y < x; };
  if (sortColumn_ == colSize && first.size != second.size) return inOrder(first.size, second.size);
  if (sortColumn_ == colDate && first.time != second.time) return inOrder(first.time, second.time);
  // The entries are sorted by name, which is also the order of equal ones.
  return sortColumn_ == colName ? inOrder(a, b) : a < b;
}

const FolderEntry& FileListModel::Entry(int row) const {
  return content_.entries[static_cast<size_t>(rows_[static_cast<size_t>(row)])];
}

int FileListModel::RowOf(const QString& name) const {
  for (int row = 0; row < rowCount(); ++row) {
    if (Entry(row).name == name) return row;
  }
  return -1;
}

int FileListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int FileListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QString FileListModel::Text(const FolderEntry& entry, int column) const {
  if (column == colName) return entry.name;
  const QLocale locale = LanguageLocale();
  if (column == colSize) return entry.isFolder ? QString() : locale.formattedDataSize(entry.size);
  if (entry.time == 0) return {};
  return locale.toString(QDateTime::fromMSecsSinceEpoch(entry.time), QLocale::ShortFormat);
}

QVariant FileListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const FolderEntry& entry = Entry(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return Text(entry, index.column());
    case Qt::DecorationRole:
      if (index.column() != colName) return {};
      return Icon(entry.isFolder ? QStringLiteral("folder") : QStringLiteral("file"));
    case Qt::TextAlignmentRole:
      return QVariant(index.column() == colSize ? Qt::AlignRight | Qt::AlignVCenter
                                                : Qt::AlignLeft | Qt::AlignVCenter);
    default:
      return {};
  }
}

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole && section == colSize) {
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  }
  if (role != Qt::DisplayRole) return {};
  constexpr std::string_view kTitles[kColumns] = {rsFileListName, rsFileListSize, rsFileListDate};
  return section >= 0 && section < kColumns ? ResourceText(kTitles[section]) : QVariant();
}

}  // namespace rasterkit::detail
