#pragma once

#include <functional>
#include <memory>
#include <string>

#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

class SaveDialogModel;

/// A save window with a list of the files in the folder: file name, filter, path with a folder
/// chooser, and an options button if it has a handler. Base class of windows for one kind of files.
///
/// The flags limit what the user can do: "Save" with an empty name has no effect, and the window
/// asks before overwriting an existing file (see SaveFileOK). A folder typed as the name is opened;
/// a folder before the name becomes the current one. A missing folder or an invalid name (reserved,
/// too long, or that of a folder) is refused with a message, and the window stays open.
///
/// `ShowModal` runs it. Requires an application object; empty ports are filled while it lives.
class RASTERKIT_EXPORT TFormSaveDlgExt : public TScaledForm {
  Q_OBJECT

 public:
  using THandler = std::function<void()>;

  explicit TFormSaveDlgExt(QWidget* parent = nullptr);
  ~TFormSaveDlgExt() override;

  /// Returns the list's folder followed by the typed name with its extension replaced by the
  /// default one: the name that the overwrite question shows and that the owner must write.
  std::string GetFileName() const;
  /// Sets the name without its folder; the folder becomes the initial one unless there is one
  /// already.
  void SetFileName(const std::string& name);

  /// The list's folder, with a separator at its end.
  std::string GetInitialDir() const;
  /// Shows another folder in list and path edit, even a missing one; an empty name is ignored.
  void SetInitialDir(const std::string& dir);

  /// "description|pattern;pattern|description|pattern"; "All files (*.*)|*.*" by default. Setting
  /// it selects the first entry without calling OnFilterChange.
  std::string GetFilter() const;
  void SetFilter(const std::string& filter);

  /// 1-based. Setting it calls OnFilterChange once, even if the entry is already selected; an index
  /// outside the list selects the first entry.
  int GetFilterIndex() const;
  void SetFilterIndex(int index);

  /// Sets the handler of the button "Options", which is visible only with a handler.
  void SetOnOptionsClick(THandler handler);
  /// Enables or disables the button, for file types that have no options.
  void SetOptionsEnabled(bool enabled);

  /// Shows or hides the path edit with its chooser.
  void SetSelPathEnabled(bool enabled);

  /// With its dot, ".png"; empty by default. An empty extension removes the one of the name.
  std::string GetDefaultExt() const;
  void SetDefaultExt(const std::string& extension);

  /// Whether the window asks before overwriting an existing file; true by default.
  bool GetConfirmOverwrite() const;
  void SetConfirmOverwrite(bool confirm);

  /// Whether "Save" closes the window with any name, even an empty one; false by default.
  bool GetAcceptWithoutChecks() const;
  void SetAcceptWithoutChecks(bool accept);

 private:
  class View;

  std::unique_ptr<View> MakeView();
  void ConnectEdits();
  void ConnectList();
  void ConnectButtons();

  // Before the handlers, which are members of the model.
  std::unique_ptr<View> view_;
  std::unique_ptr<SaveDialogModel> model_;

 public:
  /// Called after another filter was chosen, with its mask already set on the list.
  THandler& OnFilterChange;
  /// Called for Delete and for Shift+Delete in the list, which is read again afterwards, as after a
  /// change of the filter. Without a handler the key has no effect.
  THandler& OnDeleteKey;
  THandler& OnShiftDeleteKey;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
};

}  // namespace rasterkit
