#pragma once

#include <QAbstractTableModel>
#include <vector>

#include <rasterkit/qt/files/file_mask.h>
#include <rasterkit/qt/files/folder_content.h>

/// The rows of a file list. Internal to the room.
namespace rasterkit::detail {

/// The folders of a folder and those files that fit a mask, folders first whatever the order.
/// Names, sizes and dates become texts only where they are looked at.
class FileListModel : public QAbstractTableModel {
 public:
  enum Column { colName, colSize, colDate };
  static constexpr int kColumns = 3;

  using QAbstractTableModel::QAbstractTableModel;

  /// Shows another content. Resets the model, unless the same names stay in the same places.
  void SetContent(FolderContent content);
  const FolderContent& Content() const { return content_; }
  void SetMask(const std::string& mask);

  const FolderEntry& Entry(int row) const;
  /// -1 when there is none.
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
  /// Indexes of entries.
  std::vector<int> rows_;
};

}  // namespace rasterkit::detail
