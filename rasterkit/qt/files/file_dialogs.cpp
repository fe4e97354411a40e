#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>
#include <QTreeView>
#include <vector>

#include <rasterkit/qt/files/file_dialogs.h>
#include <rasterkit/qt/files/name_filters.h>
#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/look/clear_style.h>
#include <rasterkit/qt/preview/picture_preview.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

using Kind = PictureFileDialog::Kind;

/// Removes the middle of a name that would make a message wider than the screen.
QString Shortened(const QString& name) {
  constexpr qsizetype kMost = 80;
  return name.size() <= kMost ? name : name.left(kMost / 2) + "…" + name.right(kMost / 2 - 1);
}

QString TextWithName(std::string_view key, const QString& name) {
  const std::string value = FromQt(Shortened(name));
  return ToQt(FormatText(ResourceString(key), {&value, 1}));
}

/// Qt's own dialog, which has room for the preview on every desktop.
class PictureChooser : public QFileDialog {
 public:
  PictureChooser(const PictureFileDialog& wanted, QWidget* parent);

  /// Valid after the dialog was accepted.
  QString ChosenFile() const { return chosen_; }
  /// 1-based; `without` if there are no entries.
  int ChosenFilterIndex(int without) const;

 protected:
  void accept() override {
    Application.Guard([this] { isSaving_ ? AcceptSaving() : AcceptOpening(); });
  }

 private:
  void SetFilters(const PictureFileDialog& wanted);
  void SetPlace(const PictureFileDialog& wanted);
  void AddPreview();
  void WidenColumns();
  QString CompletedName() const;
  void EnableOpening();
  void AcceptOpening();
  void AcceptSaving();
  bool MayWrite(const QString& fileName);
  void Refuse(std::string_view key, const QString& name);
  void FollowFilter();
  QLineEdit* NameEdit() const { return findChild<QLineEdit*>("fileNameEdit"); }
  const detail::FilterEntry* Entry() const;
  QString NameForEntry(const QString& name) const;

  const bool isSaving_;
  const bool asksBeforeOverwriting_;
  const std::vector<detail::FilterEntry> entries_;
  PicturePreview* preview_ = nullptr;
  QString chosen_;
};

PictureChooser::PictureChooser(const PictureFileDialog& wanted, QWidget* parent)
    : QFileDialog(parent),
      isSaving_(wanted.kind == Kind::save),
      asksBeforeOverwriting_(wanted.ofOverwritePrompt),
      entries_(detail::SplitFilter(wanted.Filter)) {
  setObjectName(isSaving_ ? "PictureSaveDialog" : "PictureOpenDialog");
  setAttribute(Qt::WA_QuitOnClose, false);
  if (LanguageLocale() != locale()) setLocale(LanguageLocale());
  setWindowTitle(ResourceText(isSaving_ ? rsSavePicture : rsOpenPicture));
  setOption(QFileDialog::DontUseNativeDialog);
  // The descriptions name their patterns themselves.
  setOption(QFileDialog::HideNameFilterDetails);
  setAcceptMode(isSaving_ ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  setFileMode(isSaving_ ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  SetFilters(wanted);
  AddPreview();
  WidenColumns();
  SetPlace(wanted);
  detail::UseClearStyle(*this);
  connect(this, &QFileDialog::filterSelected, this, [this] { FollowFilter(); });
  if (isSaving_ || NameEdit() == nullptr) return;
  connect(NameEdit(), &QLineEdit::textChanged, this, [this] { EnableOpening(); });
}

void PictureChooser::SetFilters(const PictureFileDialog& wanted) {
  if (entries_.empty()) return;
  QStringList filters;
  for (const detail::FilterEntry& entry : entries_) filters.append(detail::NameFilter(entry));
  setNameFilters(filters);
  const int index = wanted.FilterIndex - 1;
  if (index >= 0 && index < filters.size()) selectNameFilter(filters[index]);
}

void PictureChooser::SetPlace(const PictureFileDialog& wanted) {
  const QFileInfo folderOfName(ToQt(ExtractFilePath(wanted.FileName)));
  const QFileInfo initialDir(ToQt(wanted.InitialDir));
  if (!folderOfName.filePath().isEmpty() && folderOfName.isDir()) {
    setDirectory(folderOfName.absoluteFilePath());
  } else if (!initialDir.filePath().isEmpty() && initialDir.isDir()) {
    setDirectory(initialDir.absoluteFilePath());
  } else {
    setDirectory(QDir::currentPath());
  }
  const QString name = ToQt(ExtractFileName(wanted.FileName));
  if (name.isEmpty()) return;
  const QString shown = isSaving_ ? NameForEntry(name) : name;
  selectFile(shown);
  const QFileInfo file(directory(), shown);
  if (file.isFile()) preview_->ShowFile(file.absoluteFilePath());
}

void PictureChooser::AddPreview() {
  preview_ = new PicturePreview(this);
  connect(this, &QFileDialog::currentChanged, preview_, [this](const QString& file) {
    preview_->ShowFile(QFileInfo(file).isDir() ? QString() : file);
  });
  connect(this, &QFileDialog::directoryEntered, preview_, [this] { preview_->ShowFile({}); });
  auto* grid = qobject_cast<QGridLayout*>(layout());
  if (grid == nullptr) return;
  const int column = grid->columnCount();
  grid->addWidget(preview_, 0, column, 2, 1);
  resize(sizeHint().expandedTo({920, 520}));
}

/// The initial columns of the details view are too narrow for sizes and dates.
void PictureChooser::WidenColumns() {
  const auto* list = findChild<QTreeView*>("treeView");
  if (list == nullptr) return;
  // Measures only visible rows: a folder may be large.
  list->header()->setResizeContentsPrecision(0);
  list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
}

int PictureChooser::ChosenFilterIndex(int without) const {
  if (entries_.empty()) return without;
  // Two entries may have the same text, which is the dialog's only answer.
  if (const auto* box = findChild<QComboBox*>("fileTypeCombo")) return box->currentIndex() + 1;
  return static_cast<int>(nameFilters().indexOf(selectedNameFilter())) + 1;
}

const detail::FilterEntry* PictureChooser::Entry() const {
  const int index = ChosenFilterIndex(0) - 1;
  const bool isThere = index >= 0 && static_cast<size_t>(index) < entries_.size();
  return isThere ? &entries_[static_cast<size_t>(index)] : nullptr;
}

QString PictureChooser::NameForEntry(const QString& name) const {
  const detail::FilterEntry* entry = Entry();
  return entry == nullptr ? name : ToQt(detail::NameForEntry(FromQt(name), *entry));
}

/// Updates the typed name to the one that will be saved.
void PictureChooser::FollowFilter() {
  QLineEdit* edit = NameEdit();
  if (!isSaving_ || edit == nullptr || edit->text().isEmpty()) return;
  if (QFileInfo(directory(), edit->text()).isDir()) return;
  edit->setText(NameForEntry(edit->text()));
}

/// Returns the existing file for a name without its extension; empty if there is none, and for
/// every other name.
QString PictureChooser::CompletedName() const {
  const QStringList files = selectedFiles();
  const detail::FilterEntry* entry = Entry();
  if (files.size() != 1 || entry == nullptr || QFileInfo::exists(files[0])) return {};
  for (const std::string& extension : detail::ExtensionsOf(*entry)) {
    QString name = files[0] + ToQt(extension);
    if (QFileInfo(name).isFile()) return name;
  }
  return {};
}

/// Enables the button again, which Qt's dialog has disabled for a missing file.
void PictureChooser::EnableOpening() {
  const auto* buttons = findChild<QDialogButtonBox*>("buttonBox");
  QPushButton* open = buttons != nullptr ? buttons->button(QDialogButtonBox::Open) : nullptr;
  if (open != nullptr && !CompletedName().isEmpty()) open->setEnabled(true);
}

void PictureChooser::AcceptOpening() {
  const QString completed = CompletedName();
  // selectFile() does not change the text of a field that has the focus.
  if (!completed.isEmpty() && NameEdit() != nullptr) NameEdit()->setText(completed);
  QFileDialog::accept();
  if (result() == QDialog::Accepted) chosen_ = selectedFiles().value(0);
}

void PictureChooser::AcceptSaving() {
  const QString typed = selectedFiles().value(0);
  // Opens the folder.
  if (typed.isEmpty() || QFileInfo(typed).isDir()) return QFileDialog::accept();
  const QString fileName = NameForEntry(typed);
  if (!MayWrite(fileName)) return;
  chosen_ = fileName;
  done(QDialog::Accepted);
}

bool PictureChooser::MayWrite(const QString& fileName) {
  const QFileInfo file(fileName);
  if (!file.dir().exists()) {
    Refuse(rsNoSuchFolder, file.path());
    return false;
  }
  if (file.isDir()) {
    Refuse(rsFileIsFolder, file.fileName());
    return false;
  }
  // The limit of nearly every file system, in bytes.
  constexpr size_t kLongestName = 255;
  if (FromQt(file.fileName()).size() > kLongestName) {
    Refuse(rsFileNameTooLong, file.fileName());
    return false;
  }
  if (!asksBeforeOverwriting_ || !file.exists()) return true;
  QMessageBox box(QMessageBox::Warning, windowTitle(), TextWithName(rsReplaceFile, file.fileName()),
                  QMessageBox::Yes | QMessageBox::No, this);
  // A file name must not be interpreted as HTML.
  box.setTextFormat(Qt::PlainText);
  box.button(QMessageBox::Yes)->setText(ResourceText(rsYes));
  box.button(QMessageBox::No)->setText(ResourceText(rsNo));
  box.setDefaultButton(QMessageBox::No);
  return box.exec() == QMessageBox::Yes;
}

void PictureChooser::Refuse(std::string_view key, const QString& name) {
  QMessageBox::warning(this, windowTitle(), TextWithName(key, name));
}

}  // namespace

bool RunPictureFileDialog(PictureFileDialog& dialog, QWidget* parent) {
  // Without an application the dialog counts as canceled, like an empty port.
  if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) return false;
  if (QThread::currentThread() != qApp->thread()) return false;
  PictureChooser chooser(dialog, parent != nullptr ? parent : QApplication::activeWindow());
  if (chooser.exec() != QDialog::Accepted || chooser.ChosenFile().isEmpty()) return false;
  dialog.FileName = FromQt(QFileInfo(chooser.ChosenFile()).absoluteFilePath());
  dialog.FilterIndex = chooser.ChosenFilterIndex(dialog.FilterIndex);
  const bool changesDir = dialog.kind == Kind::save && !dialog.ofNoChangeDir;
  if (changesDir) QDir::setCurrent(QFileInfo(chooser.ChosenFile()).absolutePath());
  return true;
}

}  // namespace rasterkit
