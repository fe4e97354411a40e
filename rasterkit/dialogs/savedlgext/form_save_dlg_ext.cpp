#include <QKeyEvent>
#include <QShortcut>
#include <QSignalBlocker>
#include <utility>

#include <rasterkit/dialogs/savedlgext/form_save_dlg_ext.h>
#include <rasterkit/dialogs/savedlgext/save_dialog_model.h>
#include <rasterkit/qt/files/file_list.h>
#include <rasterkit/qt/files/name_filters.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>

#include "ui_form_save_dlg_ext.h"

namespace rasterkit {

/// Connects the model with the controls.
class TFormSaveDlgExt::View final : public SaveDialogView, public Ui::FormSaveDlgExt {
 public:
  explicit View(TFormSaveDlgExt& form) : form_(form) {}

  void ShowName(const std::string& name) override { SetText(*EditFilename, name); }
  void ShowPath(const std::string& path) override { SetText(*EditPath, path); }
  void ShowDirectory(const std::string& directory) override {
    FileListView->SetDirectory(directory);
  }
  void ShowMask(const std::string& mask) override { FileListView->SetMask(mask); }
  void ShowReport(bool report) override { FileListView->SetViewStyle(report ? vsReport : vsList); }
  void ShowFilters(const std::vector<std::string>& descriptions) override {
    const QSignalBlocker quiet(FilterComboBox);
    FilterComboBox->clear();
    for (const std::string& description : descriptions) {
      FilterComboBox->addItem(ToQt(detail::ShownDescription(description)));
    }
  }
  void ShowFilterPosition(int position) override {
    const QSignalBlocker quiet(FilterComboBox);
    FilterComboBox->setCurrentIndex(position);
  }
  void SetOptionsVisible(bool visible) override { ButtonOptions->setVisible(visible); }
  void SetSelPathVisible(bool visible) override { PanPath->setVisible(visible); }
  void CloseOk() override { form_.accept(); }

 private:
  static void SetText(QLineEdit& edit, const std::string& text) {
    const QSignalBlocker quiet(&edit);
    edit.setText(ToQt(text));
  }

  // Messages and questions require an application object.
  const TModalCall call_;
  TFormSaveDlgExt& form_;
};

TFormSaveDlgExt::TFormSaveDlgExt(QWidget* parent)
    : TScaledForm(parent),
      view_(MakeView()),
      model_(std::make_unique<SaveDialogModel>(*view_, view_->FileListView->Directory())),
      OnFilterChange(model_->OnFilterChange),
      OnDeleteKey(model_->OnDeleteKey),
      OnShiftDeleteKey(model_->OnShiftDeleteKey) {
  view_->SBUp->setIcon(Icon("folder-up"));
  view_->SBList->setIcon(Icon("list"));
  view_->SBDetails->setIcon(Icon("details"));
  view_->OKButton->setIcon(Icon("save"));
  view_->CancelButton->setIcon(Icon("cancel"));
  // Controls without a mnemonic.
  view_->SBUp->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Up));
  view_->SBList->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_1));
  view_->SBDetails->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_2));
  view_->ButtonPath->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
  auto* toList = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_L), view_->FileListView);
  connect(toList, &QShortcut::activated, view_->FileListView, qOverload<>(&QWidget::setFocus));
  view_->EditPath->installEventFilter(this);
  view_->EditFilename->setFocus();
  ConnectEdits();
  ConnectList();
  ConnectButtons();
}

TFormSaveDlgExt::~TFormSaveDlgExt() = default;

std::unique_ptr<TFormSaveDlgExt::View> TFormSaveDlgExt::MakeView() {
  auto view = std::make_unique<View>(*this);
  SetUpForm(*view);
  return view;
}

void TFormSaveDlgExt::ConnectEdits() {
  connect(view_->EditFilename, &QLineEdit::textChanged, this,
          Guarded([this] { model_->EditFilenameChange(FromQt(view_->EditFilename->text())); }));
  connect(view_->EditPath, &QLineEdit::textChanged, this,
          Guarded([this] { model_->EditPathChange(FromQt(view_->EditPath->text())); }));
  connect(view_->FilterComboBox, &QComboBox::currentIndexChanged, this,
          Guarded([this] { model_->FilterComboBoxChange(view_->FilterComboBox->currentIndex()); }));
}

void TFormSaveDlgExt::ConnectList() {
  const TFileListView* list = view_->FileListView;
  connect(list, &TFileListView::entrySelected, this, [this](const QString& name, bool isFolder) {
    model_->FileListViewSelect(FromQt(name), isFolder);
  });
  connect(list, &TFileListView::fileActivated, this,
          Guarded([this] { model_->FileListViewDblClick(); }));
  connect(list, &TFileListView::directoryEntered, this,
          [this](const QString& directory) { model_->FileListViewEnter(FromQt(directory)); });
  connect(list, &TFileListView::deletePressed, this, [this](bool withShift) {
    Application.Guard([&] { model_->FileListViewDelete(withShift); });
  });
}

void TFormSaveDlgExt::ConnectButtons() {
  const auto onClick = [this](QAbstractButton* button, void (SaveDialogModel::*handler)()) {
    connect(button, &QAbstractButton::clicked, this,
            Guarded([this, handler] { (*model_.*handler)(); }));
  };
  onClick(view_->OKButton, &SaveDialogModel::OKButtonClick);
  onClick(view_->ButtonOptions, &SaveDialogModel::ButtonOptionsClick);
  onClick(view_->ButtonPath, &SaveDialogModel::ButtonPathClick);
  onClick(view_->SBList, &SaveDialogModel::SBListClick);
  onClick(view_->SBDetails, &SaveDialogModel::SBDetailsClick);
  connect(view_->SBUp, &QAbstractButton::clicked, view_->FileListView, &TFileListView::GoUp);
  connect(view_->CancelButton, &QAbstractButton::clicked, this, &QDialog::reject);
}

bool TFormSaveDlgExt::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusOut) Application.Guard([this] { model_->EditPathExit(); });
  if (event->type() != QEvent::KeyPress) return TScaledForm::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter) {
    return TScaledForm::eventFilter(watched, event);
  }
  // Enter applies to the folder here, not to the save button.
  Application.Guard([this] { model_->EditPathEnter(); });
  return true;
}

void TFormSaveDlgExt::showEvent(QShowEvent* event) {
  TScaledForm::showEvent(event);
  // Without a folder the window shows the current one and its path.
  if (view_->EditPath->text().isEmpty()) SetInitialDir(GetInitialDir());
}

std::string TFormSaveDlgExt::GetFileName() const {
  return model_->GetFileName();
}

void TFormSaveDlgExt::SetFileName(const std::string& name) {
  model_->SetFileName(name);
}

std::string TFormSaveDlgExt::GetInitialDir() const {
  return model_->GetInitialDir();
}

void TFormSaveDlgExt::SetInitialDir(const std::string& dir) {
  model_->SetInitialDir(dir);
}

std::string TFormSaveDlgExt::GetFilter() const {
  return model_->GetFilter();
}

void TFormSaveDlgExt::SetFilter(const std::string& filter) {
  model_->SetFilter(filter);
}

int TFormSaveDlgExt::GetFilterIndex() const {
  return model_->GetFilterIndex();
}

void TFormSaveDlgExt::SetFilterIndex(int index) {
  model_->SetFilterIndex(index);
}

void TFormSaveDlgExt::SetOnOptionsClick(THandler handler) {
  model_->SetOnOptionsClick(std::move(handler));
}

void TFormSaveDlgExt::SetOptionsEnabled(bool enabled) {
  view_->ButtonOptions->setEnabled(enabled);
}

void TFormSaveDlgExt::SetSelPathEnabled(bool enabled) {
  model_->SetSelPathEnabled(enabled);
}

std::string TFormSaveDlgExt::GetDefaultExt() const {
  return model_->DefaultExt;
}

void TFormSaveDlgExt::SetDefaultExt(const std::string& extension) {
  model_->DefaultExt = extension;
}

bool TFormSaveDlgExt::GetConfirmOverwrite() const {
  return model_->ConfirmOverwrite;
}

void TFormSaveDlgExt::SetConfirmOverwrite(bool confirm) {
  model_->ConfirmOverwrite = confirm;
}

bool TFormSaveDlgExt::GetAcceptWithoutChecks() const {
  return model_->AcceptWithoutChecks;
}

void TFormSaveDlgExt::SetAcceptWithoutChecks(bool accept) {
  model_->AcceptWithoutChecks = accept;
}

}  // namespace rasterkit
