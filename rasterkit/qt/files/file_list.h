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

/// Names in columns, or one row per file with size and date.
enum TViewStyle { vsList, vsReport };

/// A list of the subfolders of a folder and the files that match a mask, without hidden ones. It is
/// read on another thread, so that the window stays responsive however large or slow the folder is,
/// and follows changes on disk. A click on a column header sorts by it; folders stay first.
///
/// A double click or Enter opens a folder, Backspace or Alt+Up goes to the parent folder, F5 reads
/// the folder again. If there is nothing to show, a text in the list says why. Can be a promoted
/// widget in a Designer form; the inner lists use its accessible name and tooltip.
class RASTERKIT_EXPORT TFileListView : public QWidget {
  Q_OBJECT

 public:
  /// Shows all files of the current folder in report style.
  explicit TFileListView(QWidget* parent = nullptr);
  ~TFileListView() override;

  /// Returns the folder as it was set, with a separator at its end.
  const std::string& Directory() const;
  /// Shows another folder, which may be missing; an empty name is ignored.
  void SetDirectory(const std::string& directory);

  /// The file mask as in filter lists, "*.tif;*.tiff"; folders always match.
  const std::string& Mask() const;
  /// Sets the mask and reads the folder again.
  void SetMask(const std::string& mask);

  TViewStyle ViewStyle() const;
  void SetViewStyle(TViewStyle style);

  /// Returns the entry under the cursor; empty if there is none.
  std::string SelectedName() const;
  bool IsFolderSelected() const;

  /// Returns the listed names in their order.
  std::vector<std::string> Names() const;
  /// Returns the text shown instead of files (folder missing or unreadable), or an empty text.
  std::string Notice() const;
  /// True if the list shows the content of the folder, as far as it is known.
  bool IsFilled() const;

  /// Reads the folder again.
  void Refresh();
  /// Opens the parent folder with the cursor on the folder that was left.
  void GoUp();
  /// Returns the parent of a folder with a separator at its end; the folder itself if it has no
  /// parent.
  static std::string ParentOf(const std::string& directory);

 Q_SIGNALS:
  /// Emitted if the user moved the cursor to an entry; not emitted if the list changes by itself.
  void entrySelected(const QString& name, bool isFolder);
  /// Emitted if the user double-clicked a file or pressed Enter on it.
  void fileActivated(const QString& name);
  /// Emitted if the user opened a folder, which is the directory now.
  void directoryEntered(const QString& directory);
  /// Emitted if the user pressed Delete.
  void deletePressed(bool withShift);
  /// Emitted if the content of the folder was read and differs from the last one.
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
