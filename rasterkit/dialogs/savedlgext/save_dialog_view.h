#pragma once

#include <string>
#include <vector>

namespace rasterkit {

/// What the model of the save window needs from its window. The model ignores events that a control
/// emits while the model sets it.
class SaveDialogView {
 public:
  /// `EditFilename`.
  virtual void ShowName(const std::string& name) = 0;
  /// `EditPath`.
  virtual void ShowPath(const std::string& path) = 0;
  /// The folder of `FileListView`, with a separator at its end.
  virtual void ShowDirectory(const std::string& directory) = 0;
  /// The mask of `FileListView`, which reads its folder again.
  virtual void ShowMask(const std::string& mask) = 0;
  /// Report or list style of `FileListView`.
  virtual void ShowReport(bool report) = 0;
  /// The entries of `FilterComboBox`.
  virtual void ShowFilters(const std::vector<std::string>& descriptions) = 0;
  /// 0-based.
  virtual void ShowFilterPosition(int position) = 0;
  virtual void SetOptionsVisible(bool visible) = 0;
  virtual void SetSelPathVisible(bool visible) = 0;
  /// Closes the window with `mrOk`.
  virtual void CloseOk() = 0;

 protected:
  ~SaveDialogView() = default;
};

}  // namespace rasterkit
