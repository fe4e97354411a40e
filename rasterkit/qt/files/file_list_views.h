#pragma once

#include <QLabel>
#include <QListView>
#include <QStackedWidget>
#include <QString>
#include <QTreeView>
#include <array>

#include <rasterkit/qt/files/file_list_model.h>

/// The visible part of a file list. Internal to this folder.
namespace rasterkit::detail {

/// The two views of the rows of a file list, one of which is visible, and the text shown instead of
/// rows. Handles keys and mouse and does not access the disk. The selected entry stays selected if
/// the rows change.
class FileListViews : public QWidget {
  Q_OBJECT

 public:
  explicit FileListViews(QWidget* parent);

  FileListModel& Model() { return model_; }
  const FileListModel& Model() const { return model_; }

  bool IsReport() const { return stack_->currentWidget() == report_; }
  void ShowReport(bool report);

  /// Returns the selected row, or -1.
  int SelectedRow() const;
  /// Selects the entry as soon as it is among the rows; an empty name selects nothing.
  void SelectLater(const QString& name);

  void ShowNotice(const QString& text);
  /// Sets the accessible name and the tooltip of both views.
  void SetTexts(const QString& accessibleName, const QString& toolTip);

 Q_SIGNALS:
  /// Emitted if the user moved the cursor to a row.
  void rowSelected(int row);
  /// Emitted if the user double-clicked a row or pressed Enter on it.
  void rowActivated(int row);
  void deletePressed(bool withShift);
  void upPressed();
  void refreshPressed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  QAbstractItemView& View() const;
  std::array<QAbstractItemView*, 2> Views() const { return {report_, names_}; }
  void SetUpReport();
  void SetUpNames();
  void FollowView(QAbstractItemView& view);
  bool HandleKey(int key, Qt::KeyboardModifiers modifiers);
  void RememberSelection();
  void RestoreSelection();
  void Select(int row);
  void SizeColumns();
  void SizeNames();

  FileListModel model_;
  QStackedWidget* stack_;
  QTreeView* report_;
  QListView* names_;
  QLabel* notice_;
  QString wanted_;
  int scrollX_ = 0, scrollY_ = 0;
  bool scrollsToWanted_ = false;
  bool isRestoring_ = false;
};

}  // namespace rasterkit::detail
