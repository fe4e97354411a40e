#include <utility>

#include <rasterkit/dialogs/savedlgext/save_dialog_model.h>
#include <rasterkit/dialogs/savedlgext/save_file_ok.h>
#include <rasterkit/dialogs/savedlgext/typed_names.h>
#include <rasterkit/qt/files/name_filters.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

using detail::IsFolder;
using detail::PlaceOf;
using detail::WithSeparator;

void Refuse(std::string_view key, const std::string& name) {
  const std::string shown = detail::Shortened(name);
  ShowMessage(FormatText(ResourceString(key), {&shown, 1}));
}

std::string Joined(const std::vector<std::string>& patterns) {
  std::string mask;
  for (const std::string& pattern : patterns) mask += (mask.empty() ? "" : ";") + pattern;
  return mask;
}

}  // namespace

SaveDialogModel::SaveDialogModel(SaveDialogView& view, const std::string& directory)
    : view_(view), directory_(WithSeparator(directory)) {
  // In English; the view translates it like all descriptions.
  SetFilter(std::string(rsSaveAllFiles) + " (*.*)|*.*");
  view_.SetOptionsVisible(false);
}

std::string SaveDialogModel::GetFileName() const {
  return directory_ + ChangeFileExt(name_, DefaultExt);
}

void SaveDialogModel::SetFileName(const std::string& name) {
  if (path_.empty()) SetInitialDir(ExtractFilePath(name));
  ShowName(ExtractFileName(name));
}

void SaveDialogModel::SetInitialDir(const std::string& dir) {
  if (dir.empty()) return;
  directory_ = WithSeparator(dir);
  path_ = dir;
  view_.ShowDirectory(directory_);
  view_.ShowPath(path_);
}

void SaveDialogModel::SetFilter(const std::string& filter) {
  filter_ = filter;
  masks_.clear();
  std::vector<std::string> descriptions;
  for (const detail::FilterEntry& entry : detail::SplitFilter(filter)) {
    descriptions.push_back(entry.description);
    masks_.push_back(Joined(entry.patterns));
  }
  if (masks_.empty()) masks_.emplace_back("*.*");
  position_ = 0;
  view_.ShowFilters(descriptions);
  view_.ShowMask(masks_.front());
}

void SaveDialogModel::SetFilterIndex(int index) {
  const bool isThere = index >= 1 && static_cast<size_t>(index) <= masks_.size();
  position_ = isThere ? index - 1 : 0;
  view_.ShowFilterPosition(position_);
  FilterChange();
}

void SaveDialogModel::SetOnOptionsClick(THandler handler) {
  onOptionsClick_ = std::move(handler);
  view_.SetOptionsVisible(static_cast<bool>(onOptionsClick_));
}

void SaveDialogModel::FilterChange() {
  view_.ShowMask(masks_[static_cast<size_t>(position_)]);
  if (OnFilterChange) OnFilterChange();
}

void SaveDialogModel::ShowName(const std::string& name) {
  EditFilenameChange(name);
  view_.ShowName(name);
}

void SaveDialogModel::EditFilenameChange(const std::string& text) {
  name_ = text;
  isFolderSelected_ = false;
}

/// Whether another folder than the listed one was typed.
bool SaveDialogModel::IsPathPending() const {
  return !path_.empty() && WithSeparator(path_) != directory_;
}

bool SaveDialogModel::GoToPath() {
  const std::string place = PlaceOf(path_, directory_);
  if (IsFolder(place)) SetInitialDir(place);
  return !IsPathPending();
}

void SaveDialogModel::EditPathEnter() {
  if (IsPathPending() && !GoToPath()) Refuse(rsNoSuchFolder, path_);
}

void SaveDialogModel::EditPathExit() {
  if (IsPathPending()) GoToPath();
}

void SaveDialogModel::FilterComboBoxChange(int position) {
  SetFilterIndex(position + 1);
}

void SaveDialogModel::FileListViewSelect(const std::string& name, bool isFolder) {
  if (isFolder && !isFolderSelected_) nameBeforeFolder_ = name_;
  ShowName(name);
  isFolderSelected_ = isFolder;
}

void SaveDialogModel::FileListViewEnter(const std::string& directory) {
  if (isFolderSelected_) ShowName(nameBeforeFolder_);
  directory_ = path_ = directory;
  view_.ShowPath(path_);
}

void SaveDialogModel::FileListViewDelete(bool withShift) {
  const THandler& handler = withShift ? OnShiftDeleteKey : OnDeleteKey;
  if (!handler) return;
  handler();
  FilterChange();
}

void SaveDialogModel::ButtonOptionsClick() {
  if (onOptionsClick_) onOptionsClick_();
}

void SaveDialogModel::ButtonPathClick() {
  std::string folder = path_;
  // The prompt is the overwrite question with its placeholder unfilled.
  if (SelectDirectoryEx(folder, ResourceString(rsSaveFileExistsPrompt), kFolderChooserOptions)) {
    SetInitialDir(folder);
  }
}

void SaveDialogModel::OKButtonClick() {
  if (AcceptWithoutChecks) {
    if (IsPathPending() && !GoToPath()) SetInitialDir(PlaceOf(path_, directory_));
    GoToTypedFolder();
    view_.CloseOk();
    return;
  }
  if (name_.empty()) return;
  if (IsPathPending() && !GoToPath()) return Refuse(rsNoSuchFolder, path_);
  if (IsFolder(PlaceOf(name_, directory_))) return EnterNamedFolder();
  if (!GoToTypedFolder()) return Refuse(rsNoSuchFolder, ExtractFilePath(name_));
  if (!MayBeWritten()) return;
  if (!ConfirmOverwrite || SaveFileOK(GetFileName())) view_.CloseOk();
}

/// Opens the folder in the name field; nothing is saved.
void SaveDialogModel::EnterNamedFolder() {
  SetInitialDir(PlaceOf(name_, directory_));
  ShowName(isFolderSelected_ ? nameBeforeFolder_ : std::string());
}

/// Opens the folder before the name and leaves only the name; false if there is no such folder.
bool SaveDialogModel::GoToTypedFolder() {
  const std::string folder = ExtractFilePath(name_);
  if (folder.empty()) return true;
  const std::string place = PlaceOf(folder, directory_);
  if (!IsFolder(place)) return false;
  SetInitialDir(place);
  ShowName(ExtractFileName(name_));
  return true;
}

/// False after a message that says why not.
bool SaveDialogModel::MayBeWritten() const {
  const std::string target = ChangeFileExt(name_, DefaultExt);
  std::string_view fault = detail::FaultOfName(target.empty() ? name_ : target);
  if (fault.empty() && IsFolder(directory_ + target)) fault = rsFileIsFolder;
  if (!fault.empty()) {
    Refuse(fault, target.empty() ? name_ : target);
  } else if (!IsFolder(directory_)) {
    Refuse(rsNoSuchFolder, directory_);
    return false;
  }
  return fault.empty();
}

}  // namespace rasterkit
