#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>

#include <rasterkit/dialogs/saving/desktop_file_dialogs.h>
#include <rasterkit/dialogs/saving/target_faults.h>
#include <rasterkit/dialogs/saving/writable_kinds.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

QString FilterOf(std::string_view key, const std::string& patterns) {
  return ToQt(FormatText(ResourceString(key), {&patterns, 1}));
}

std::string Chosen(QFileDialog& dialog) {
  dialog.setAttribute(Qt::WA_QuitOnClose, false);
  if (dialog.exec() != QDialog::Accepted) return {};
  return FromQt(dialog.selectedFiles().value(0));
}

}  // namespace

bool HasDesktopDialogs() {
  const QFileDialog dialog;
  // Qt makes the parts of its own dialog only where the desktop has none.
  return dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit")) == nullptr;
}

std::optional<ChosenName> AskSaveName(const std::string& file, PictureType type, QWidget* parent) {
  QFileDialog dialog(parent != nullptr ? parent : QApplication::activeWindow());
  dialog.setObjectName("SaveNameDialog");
  dialog.setWindowTitle(ResourceText(rsSavingTitle));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  QStringList filters;
  for (const PictureType kind : WritableTypes(type)) filters.append(ToQt(LongTypeName(kind)));
  dialog.setNameFilters(filters);
  dialog.setDirectory(ToQt(FolderOf(file)));
  dialog.selectFile(ToQt(NameIn(file)));
  const std::string chosen = Chosen(dialog);
  if (chosen.empty()) return std::nullopt;
  const auto at = filters.indexOf(dialog.selectedNameFilter());
  const PictureType kind = at < 0 ? type : WritableTypes(type)[static_cast<size_t>(at)];
  // The ending counts, unless the user chose another kind and left the name as it was.
  const bool isNamed = TypeOfName(chosen) != PictureType::unknown;
  if (isNamed && (kind == type || chosen != file)) return ChosenName{chosen, true};
  const std::string full = NameForType(chosen, kind, {});
  // The dialog has asked about the name as it was.
  return ChosenName{full, full == chosen};
}

DesktopFileDialogs& TheDesktopFileDialogs() {
  static DesktopFileDialogs dialogs;
  return dialogs;
}

std::string AskNameToOpen(const std::string& folder, QWidget* parent) {
  QFileDialog dialog(parent != nullptr ? parent : QApplication::activeWindow());
  dialog.setObjectName("OpenNameDialog");
  dialog.setWindowTitle(ResourceText(rsSavingOpenTitle));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setNameFilters(
      {FilterOf(rsSavingAllPictures, PatternsToOpen()), FilterOf(rsSavingAllFiles, "*")});
  if (!folder.empty()) dialog.setDirectory(ToQt(folder));
  return Chosen(dialog);
}

}  // namespace rasterkit::detail
