#pragma once

#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

namespace detail {
struct FolderContent;
}

/// Names in columns, or a row for each file with size and date.
enum TViewStyle { vsList, vsReport };

/// A list of what stands in one folder: its folders, and those files that fit a mask; hidden ones
/// are left out. It is read beside the window, which stays alive however large or slow the folder
/// is, and follows changes on disk. A click on a column's title sorts by it, folders stay first.
///
/// A double click or Enter enters a folder, Backspace or Alt+Up goes one folder up, F5 reads
/// afresh. Where there is nothing to show, a text in the list says why. May stand in a Designer
/// form as a promoted widget, whose accessible name and tip the inner lists take over.
class RASTERKIT_EXPORT TFileListView : public QWidget {
  Q_OBJECT

 public:
  /// Shows the current folder, every file, in report style.
  explicit TFileListView(QWidget* parent = nullptr);
  ~TFileListView() override;

  /// The folder's name as it was set, with a separator at its end.
  const std::string& Directory() const;
  /// Shows another folder, which need not exist (yet); an empty name changes nothing.
  void SetDirectory(const std::string& directory);

  /// As in filter lists, "*.tif;*.tiff"; folders always fit.
  const std::string& Mask() const;
  /// Also reads the folder afresh.
  void SetMask(const std::string& mask);

  TViewStyle ViewStyle() const;
  void SetViewStyle(TViewStyle style);

  /// The entry under the cursor; empty when there is none.
  std::string SelectedName() const;
  bool IsFolderSelected() const;

  /// The names that are listed, in their order.
  std::vector<std::string> Names() const;
  /// What is shown in place of files: that the folder is gone, or cannot be read; empty else.
  std::string Notice() const;
  /// The list shows what the folder holds, as far as it is known by now.
  bool IsFilled() const;

  /// Reads the folder afresh.
  void Refresh();
  /// Enters the folder above, with the cursor on the one that was left.
  void GoUp();
  /// The folder above another one, with a separator at its end; itself where there is none.
  static std::string ParentOf(const std::string& directory);

 Q_SIGNALS:
  /// The user put the cursor on an entry; not emitted when the list changes by itself.
  void entrySelected(const QString& name, bool isFolder);
  /// The user double clicked a file, or pressed Enter on it.
  void fileActivated(const QString& name);
  /// The user entered a folder, which is now the directory.
  void directoryEntered(const QString& directory);
  /// Delete was pressed.
  void deletePressed(bool withShift);
  /// What the folder holds was read, and has changed since it was read before.
  void filled();

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  struct Parts;

  void FollowViews();
  void Enter(const std::string& directory, const QString& nameToSelect);
  void Show(const std::string& directory, const QString& nameToSelect);
  void Fill(detail::FolderContent content);

  std::unique_ptr<Parts> parts_;
};

}  // namespace rasterkit
