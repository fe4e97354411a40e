#pragma once

#include <QAbstractTableModel>
#include <vector>

#include <rasterkit/qt/files/file_mask.h>
#include <rasterkit/qt/files/folder_content.h>

/// The rows of a file list. Internal to this folder.
namespace rasterkit::detail {

/// The subfolders of a folder and the files that match a mask; folders come first in every order.
/// Names, sizes and dates are converted to texts only when they are shown.
class FileListModel : public QAbstractTableModel {
 public:
  enum Column { colName, colSize, colDate };
  static constexpr int kColumns = 3;

  using QAbstractTableModel::QAbstractTableModel;

  /// Shows another content. Resets the model unless the names and their order are the same.
  void SetContent(FolderContent content);
  const FolderContent& Content() const { return content_; }
  void SetMask(const std::string& mask);

  const FolderEntry& Entry(int row) const;
  /// Returns the row of an entry, or -1.
  int RowOf(const QString& name) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  std::vector<int> SortedRows() const;
  bool ComesBefore(int a, int b) const;
  QString Text(const FolderEntry& entry, int column) const;
  bool ShowsTheSameNames(const FolderContent& content) const;

  FolderContent content_;
  FileMask mask_{""};
  int sortColumn_ = colName;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
  /// Indexes of the entries.
  std::vector<int> rows_;
};

}  // namespace rasterkit::detail
