#pragma once

#include <QLabel>
#include <QListView>
#include <QStackedWidget>
#include <QString>
#include <QTreeView>
#include <array>

#include <rasterkit/qt/files/file_list_model.h>

/// What is seen of a file list. Internal to the room.
namespace rasterkit::detail {

/// The two views of a file list's rows, one of which is seen, and the text in place of rows. Knows
/// keys and mouse, and nothing of the disk. The entry that is selected stays so when the rows
/// change.
class FileListViews : public QWidget {
  Q_OBJECT

 public:
  explicit FileListViews(QWidget* parent);

  FileListModel& Model() { return model_; }
  const FileListModel& Model() const { return model_; }

  bool IsReport() const { return stack_->currentWidget() == report_; }
  void ShowReport(bool report);

  /// -1 when there is none.
  int SelectedRow() const;
  /// Selects the entry as soon as it is among the rows; an empty name is none.
  void SelectLater(const QString& name);

  void ShowNotice(const QString& text);
  /// What both views say about themselves.
  void SetTexts(const QString& accessibleName, const QString& toolTip);

 Q_SIGNALS:
  /// The user put the cursor on a row.
  void rowSelected(int row);
  /// The user double clicked a row, or pressed Enter on it.
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
