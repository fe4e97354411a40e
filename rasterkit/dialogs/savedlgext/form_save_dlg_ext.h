#pragma once

#include <functional>
#include <memory>
#include <string>

#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

class SaveDialogModel;

/// A save window with a list of the folder's files: file name, filter, path with a folder chooser,
/// and a button for options where somebody handles it. Windows for a kind of files derive from it.
///
/// The user gets no further than the flags allow: "Save" with an empty name does nothing, and an
/// existing file is asked about (see SaveFileOK). A folder typed as the name is shown, one before
/// the name is gone to; a folder that is missing, a name that is reserved, too long or a folder's
/// is refused with a message, and the window stays.
///
/// `ShowModal` runs it. Needs an application object; ports that are empty are filled while it
/// lives.
class RASTERKIT_EXPORT TFormSaveDlgExt : public TScaledForm {
  Q_OBJECT

 public:
  using THandler = std::function<void()>;

  explicit TFormSaveDlgExt(QWidget* parent = nullptr);
  ~TFormSaveDlgExt() override;

  /// The list's folder, directly followed by the typed name with its extension replaced by the
  /// default one: what is asked about, and what the owner is to write.
  std::string GetFileName() const;
  /// Sets the name without its folder; that becomes the initial one unless there is one already.
  void SetFileName(const std::string& name);

  /// The list's folder, with a separator at its end.
  std::string GetInitialDir() const;
  /// Shows another folder in list and path edit, even a missing one; an empty name changes nothing.
  void SetInitialDir(const std::string& dir);

  /// "description|pattern;pattern|description|pattern"; "All files (*.*)|*.*" at first. Setting it
  /// chooses the first entry, without a call of OnFilterChange.
  std::string GetFilter() const;
  void SetFilter(const std::string& filter);

  /// 1-based. Setting it calls OnFilterChange, once, even for the entry that is chosen already; an
  /// index outside of the list chooses the first entry.
  int GetFilterIndex() const;
  void SetFilterIndex(int index);

  /// Called by the button "Options", which is seen only where there is a handler.
  void SetOnOptionsClick(THandler handler);
  /// Greys the button out; for kinds of files that have no options.
  void SetOptionsEnabled(bool enabled);

  /// Shows or hides the path edit with its chooser.
  void SetSelPathEnabled(bool enabled);

  /// With its dot, ".png"; empty at first. Empty cuts the name's own extension off.
  std::string GetDefaultExt() const;
  void SetDefaultExt(const std::string& extension);

  /// Whether an existing file is asked about; true at first.
  bool GetConfirmOverwrite() const;
  void SetConfirmOverwrite(bool confirm);

  /// Whether "Save" closes the window whatever the name is, an empty one too; false at first.
  bool GetAcceptWithoutChecks() const;
  void SetAcceptWithoutChecks(bool accept);

 private:
  class View;

  std::unique_ptr<View> MakeView();
  void ConnectEdits();
  void ConnectList();
  void ConnectButtons();

  // Before the handlers, which are the model's own.
  std::unique_ptr<View> view_;
  std::unique_ptr<SaveDialogModel> model_;

 public:
  /// Called after another filter was chosen; the list has its mask by then.
  THandler& OnFilterChange;
  /// Called for Delete and for Shift and Delete in the list, which is read afresh afterwards as
  /// after a change of the filter. Without a handler the key does nothing.
  THandler& OnDeleteKey;
  THandler& OnShiftDeleteKey;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
};

}  // namespace rasterkit
