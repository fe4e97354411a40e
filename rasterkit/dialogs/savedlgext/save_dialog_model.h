#pragma once

#include <functional>
#include <string>
#include <vector>

#include <rasterkit/dialogs/savedlgext/save_dialog_view.h>

namespace rasterkit {

/// The state and the rules of the save window, without a window.
class SaveDialogModel {
 public:
  using THandler = std::function<void()>;
  /// The options passed to the host's folder chooser.
  static constexpr int kFolderChooserOptions = 37;

  /// `view` must outlive the model; `directory` is the folder that its list shows initially.
  SaveDialogModel(SaveDialogView& view, const std::string& directory);

  // What the owner of the window sets.
  THandler OnFilterChange, OnDeleteKey, OnShiftDeleteKey;
  std::string DefaultExt;
  bool ConfirmOverwrite = true;
  bool AcceptWithoutChecks = false;

  /// Returns the list's folder followed by the name with its extension replaced by DefaultExt.
  std::string GetFileName() const;
  void SetFileName(const std::string& name);
  const std::string& GetInitialDir() const { return directory_; }
  void SetInitialDir(const std::string& dir);
  const std::string& GetFilter() const { return filter_; }
  void SetFilter(const std::string& filter);
  int GetFilterIndex() const { return position_ + 1; }
  void SetFilterIndex(int index);
  void SetOnOptionsClick(THandler handler);
  void SetSelPathEnabled(bool enabled) { view_.SetSelPathVisible(enabled); }

  // What the user does.
  void EditFilenameChange(const std::string& text);
  void EditPathChange(const std::string& text) { path_ = text; }
  /// Enter in the path edit: shows the folder, or a message if it is missing.
  void EditPathEnter();
  /// The path edit lost the focus: shows the folder if it exists.
  void EditPathExit();
  void FilterComboBoxChange(int position);
  void SBListClick() { view_.ShowReport(false); }
  void SBDetailsClick() { view_.ShowReport(true); }
  void FileListViewSelect(const std::string& name, bool isFolder);
  /// A double click on a file.
  void FileListViewDblClick() { OKButtonClick(); }
  /// The list shows another folder.
  void FileListViewEnter(const std::string& directory);
  void FileListViewDelete(bool withShift);
  void OKButtonClick();
  void ButtonOptionsClick();
  void ButtonPathClick();

 private:
  void FilterChange();
  bool IsPathPending() const;
  bool GoToPath();
  bool GoToTypedFolder();
  void EnterNamedFolder();
  bool MayBeWritten() const;
  void ShowName(const std::string& name);

  SaveDialogView& view_;
  THandler onOptionsClick_;
  std::string directory_;
  std::string path_;
  std::string name_;
  /// The name in the field before a folder was selected; it is restored when that folder is opened.
  std::string nameBeforeFolder_;
  bool isFolderSelected_ = false;
  std::string filter_;
  std::vector<std::string> masks_;
  int position_ = 0;
};

}  // namespace rasterkit
