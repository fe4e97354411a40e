#include <rasterkit/dialogs/saving/choose_saving.h>
#include <rasterkit/dialogs/saving/desktop_file_dialogs.h>
#include <rasterkit/dialogs/saving/form_saving.h>
#include <rasterkit/dialogs/saving/saving_folders.h>
#include <rasterkit/dialogs/saving/target_faults.h>
#include <rasterkit/dialogs/saving/writable_kinds.h>
#include <rasterkit/qt/files/file_dialogs.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/modal_results.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

std::optional<SavingChoice> Answer(TFormSaving& form) {
  if (form.ShowModal() != mrOk) return std::nullopt;
  return form.Model().Choice();
}

/// The view of a model that is only asked.
class NoView : public SavingView {
 public:
  void ShowState() override {}
  void ShowParts() override {}
  void Start(SavingWork, Job) override {}
  void Stop(SavingWork) override {}
  bool AskReplace(const std::string&) override { return false; }
  std::optional<ChosenName> AskName(const std::string&) override { return std::nullopt; }
  void Close(bool) override {}
};

/// Asks the desktop's dialog, which starts with what a window would suggest.
std::optional<ChosenName> AskDesktop(const Picture& picture, const SavingStart& start,
                                     QWidget* parent) {
  NoView view;
  const SavingModel model(view, picture, start, SavingScope::chosenName);
  return detail::TheDesktopFileDialogs().askToSave(model.File(), model.Type(), parent);
}

std::string OwnOpenWindow(const std::string& folder, QWidget* parent) {
  std::string patterns = detail::PatternsToOpen();
  std::string mask = patterns;
  for (char& letter : mask) letter = letter == ' ' ? ';' : letter;
  PictureFileDialog dialog;
  dialog.Filter = FormatText(ResourceString(rsSavingAllPictures), {&patterns, 1}) + "|" + mask +
                  "|" + std::string(rsSaveAllFiles) + " (*.*)|*.*";
  dialog.InitialDir = folder;
  dialog.ofNoChangeDir = true;
  return RunPictureFileDialog(dialog, parent) ? dialog.FileName : "";
}

}  // namespace

std::optional<SavingChoice> ChooseSaving(const Picture& picture, const SavingStart& start,
                                         QWidget* parent) {
  const TModalCall call;
  if (!start.usesDesktopDialog || !detail::TheDesktopFileDialogs().areThere()) {
    TFormSaving form(picture, start, SavingScope::places, std::nullopt, parent);
    return Answer(form);
  }
  const auto name = AskDesktop(picture, start, parent);
  if (!name) return std::nullopt;
  TFormSaving form(picture, start, SavingScope::chosenName, name, parent);
  return Answer(form);
}

std::optional<RecipeSave> ChooseSaveSettings(const Picture& picture, const SavingChoice& start,
                                             QWidget* parent) {
  const TModalCall call;
  TFormSaving form(picture, {start.file, start.save, false}, SavingScope::settings, std::nullopt,
                   parent);
  if (const auto answer = Answer(form)) return answer->save;
  return std::nullopt;
}

std::string ChooseFileToOpen(const std::string& folder, bool usesDesktopDialog, QWidget* parent) {
  const TModalCall call;
  const std::string first = folder.empty() ? detail::FirstFolder("") : folder;
  const bool isDesktop = usesDesktopDialog && detail::TheDesktopFileDialogs().areThere();
  std::string file = isDesktop ? detail::TheDesktopFileDialogs().askToOpen(first, parent)
                               : OwnOpenWindow(first, parent);
  if (!file.empty()) detail::RememberFolder(detail::FolderOf(file));
  return file;
}

}  // namespace rasterkit
