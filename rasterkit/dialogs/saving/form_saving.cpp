#include <QGridLayout>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <rasterkit/dialogs/saving/desktop_file_dialogs.h>
#include <rasterkit/dialogs/saving/form_saving.h>
#include <rasterkit/dialogs/saving/target_faults.h>
#include <rasterkit/qt/forms/message_box.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// Milliseconds that the size and the view wait for further changes, and between two looks at the
/// progress.
constexpr int kSizeRest = 250, kPartRest = 80, kTick = 200;

/// The first size of the window where a line of text has this height.
constexpr int kWidth = 860, kHeight = 560, kTextHeight = 16;

constexpr const char* kSettingsNames[] = {"FormSaving", "FormSavingNamed", "FormSavingSettings"};

QLabel* NewLine(const char* name, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

void ShowLine(QLabel& label, const std::string& text) {
  const QString shown = ToQt(text);
  if (label.text() != shown) label.setText(shown);
  label.setVisible(!text.empty());
}

}  // namespace

TFormSaving::TFormSaving(const Picture& picture, const SavingStart& start, SavingScope scope,
                         const std::optional<ChosenName>& name, QWidget* parent)
    : TScaledForm(parent),
      model_(std::make_unique<SavingModel>(static_cast<SavingView&>(*this), picture, start, scope,
                                           name)),
      sizeTask_(kSizeRest),
      partTask_(kPartRest) {
  setObjectName("FormSaving");
  SetSettingsName(kSettingsNames[static_cast<size_t>(scope)]);
  setWindowTitle(
      ResourceText(scope == SavingScope::settings ? rsSavingSettingsTitle : rsSavingTitle));
  auto* column = new QVBoxLayout(this);
  column->addWidget(MakeFileRows());
  column->addWidget(MakePages(), 1);
  column->addWidget(MakeResult());
  column->addWidget(MakeButtons());
  settingsPage_->SetModel(*model_);
  ConnectControls();
  tick_.setInterval(kTick);
  ShowState();
  resize(sizeHint().expandedTo(QSize(kWidth, kHeight) * fontMetrics().height() / kTextHeight));
  (name_ != nullptr ? static_cast<QWidget*>(name_) : save_)->setFocus();
}

TFormSaving::~TFormSaving() {
  // A field that loses the focus still reports what is typed.
  hide();
  settingsPage_->ForgetModel();
}

QWidget* TFormSaving::MakeFileRows() {
  auto* rows = new QWidget(this);
  auto* grid = new QGridLayout(rows);
  grid->setContentsMargins(0, 0, 0, 0);
  const auto label = [&](const char* name, std::string_view text, QWidget* buddy, int row) {
    auto* made = new QLabel(ResourceText(text), rows);
    made->setObjectName(name);
    made->setBuddy(buddy);
    grid->addWidget(made, row, 0);
    grid->addWidget(buddy, row, 1);
  };
  if (model_->Scope() == SavingScope::places) {
    name_ = new QLineEdit(rows);
    name_->setObjectName("EditName");
    name_->setToolTip(ResourceText(rsSavingNameHint));
    label("LabName", rsSavingName, name_, 0);
  }
  file_ = new QLineEdit(rows);
  file_->setObjectName("EditFile");
  file_->setReadOnly(true);
  file_->setToolTip(ResourceText(rsSavingFileHint));
  label("LabFile", rsSavingFile, file_, 1);
  if (model_->Scope() == SavingScope::chosenName) {
    otherName_ = new QPushButton(ResourceText(rsSavingOtherName), rows);
    otherName_->setObjectName("ButtonOtherName");
    otherName_->setToolTip(ResourceText(rsSavingOtherNameHint));
    otherName_->setAutoDefault(false);
    grid->addWidget(otherName_, 1, 2);
  }
  if (model_->Scope() != SavingScope::settings) {
    type_ = new QComboBox(rows);
    type_->setObjectName("BoxType");
    type_->setToolTip(ResourceText(rsSavingKindHint));
    label("LabType", rsSavingKind, type_, 2);
  }
  grid->setColumnStretch(1, 1);
  facts_ = NewLine("LabFacts", rows);
  note_ = NewLine("LabNote", rows);
  grid->addWidget(facts_, 3, 0, 1, 3);
  grid->addWidget(note_, 4, 0, 1, 3);
  return rows;
}

QWidget* TFormSaving::MakePages() {
  settingsPage_ = new detail::SettingsPage(this);
  if (model_->Scope() != SavingScope::places) return settingsPage_;
  auto* parts = new QWidget(this);
  auto* column = new QVBoxLayout(parts);
  column->setContentsMargins(0, 0, 0, 0);
  auto* row = new QHBoxLayout;
  auto* pages = new QStackedWidget(parts);
  pages->setObjectName("Pages");
  folderPage_ = new detail::FolderPage(model_->Folder(), pages);
  pages->addWidget(folderPage_);
  pages->addWidget(settingsPage_);
  AddPageButton(*row, *pages, 0, {"ButtonFolder", rsSavingFolderPage, rsSavingFolderPageHint});
  AddPageButton(*row, *pages, 1,
                {"ButtonSettings", rsSavingSettingsPage, rsSavingSettingsPageHint});
  row->addStretch(1);
  column->addLayout(row);
  column->addWidget(pages, 1);
  return parts;
}

void TFormSaving::AddPageButton(QHBoxLayout& row, QStackedWidget& pages, int page,
                                const PageTexts& texts) {
  auto* button = new QPushButton(ResourceText(texts.text), pages.parentWidget());
  button->setObjectName(texts.name);
  button->setToolTip(ResourceText(texts.hint));
  button->setCheckable(true);
  button->setAutoExclusive(true);
  button->setAutoDefault(false);
  button->setChecked(page == 0);
  connect(button, &QPushButton::clicked, &pages, [&pages, page] { pages.setCurrentIndex(page); });
  row.addWidget(button);
}

QWidget* TFormSaving::MakeResult() {
  auto* result = new QWidget(this);
  auto* column = new QVBoxLayout(result);
  column->setContentsMargins(0, 0, 0, 0);
  lossless_ = NewLine("LabLossless", result);
  size_ = NewLine("LabSize", result);
  auto* row = new QHBoxLayout;
  loss_ = NewLine("LabLoss", result);
  lossDetails_ = new QPushButton(result);
  lossDetails_->setObjectName("ButtonLosses");
  lossDetails_->setText(ResourceText(rsSavingLossDetails));
  lossDetails_->setToolTip(ResourceText(rsSavingLossDetailsHint));
  lossDetails_->setCheckable(true);
  lossDetails_->setAutoDefault(false);
  row->addWidget(loss_, 1);
  row->addWidget(lossDetails_);
  lossList_ = new QPlainTextEdit(result);
  lossList_->setObjectName("LossList");
  lossList_->setReadOnly(true);
  lossList_->setTabChangesFocus(true);
  lossList_->setAccessibleName(ResourceText(rsSavingLossList));
  lossList_->setToolTip(ResourceText(rsSavingLossDetailsHint));
  lossList_->setMaximumHeight(6 * lossList_->fontMetrics().lineSpacing());
  lossList_->hide();
  fault_ = NewLine("LabFault", result);
  QFont bold = fault_->font();
  bold.setBold(true);
  fault_->setFont(bold);
  column->addWidget(size_);
  column->addWidget(lossless_);
  column->addLayout(row);
  column->addWidget(lossList_);
  column->addWidget(fault_);
  return result;
}

QWidget* TFormSaving::MakeButtons() {
  auto* buttons = new QWidget(this);
  auto* row = new QHBoxLayout(buttons);
  row->setContentsMargins(0, 0, 0, 0);
  const bool isSettings = model_->Scope() == SavingScope::settings;
  save_ = new QPushButton(ResourceText(isSettings ? rsOk : rsSavingSave), buttons);
  save_->setObjectName("SaveButton");
  save_->setIcon(Icon(isSettings ? "post" : "save"));
  save_->setToolTip(ResourceText(isSettings ? rsOkHint : rsSavingSaveHint));
  save_->setDefault(true);
  cancel_ = new QPushButton(ResourceText(rsCancel), buttons);
  cancel_->setObjectName("CancelButton");
  cancel_->setIcon(Icon("cancel"));
  cancel_->setToolTip(ResourceText(rsCancelHint));
  cancel_->setAutoDefault(false);
  row->addStretch(1);
  row->addWidget(save_);
  row->addWidget(cancel_);
  return buttons;
}

void TFormSaving::ConnectControls() {
  connect(save_, &QPushButton::clicked, this, Guarded([this] { model_->Confirm(); }));
  connect(cancel_, &QPushButton::clicked, this, Guarded([this] { model_->Cancel(); }));
  connect(lossDetails_, &QPushButton::toggled, this,
          [this](bool isOn) { lossList_->setVisible(isOn && model_->HasLosses()); });
  connect(&tick_, &QTimer::timeout, this, Guarded([this] { model_->Tick(); }));
  if (type_ != nullptr) {
    connect(type_, &QComboBox::currentIndexChanged, this,
            Guarded([this] { model_->ChooseType(type_->currentIndex()); }));
  }
  if (otherName_ != nullptr) {
    connect(otherName_, &QPushButton::clicked, this, Guarded([this] { model_->AskOtherName(); }));
  }
  if (name_ != nullptr) {
    connect(name_, &QLineEdit::textChanged, this,
            Guarded([this] { model_->TypeName(FromQt(name_->text())); }));
  }
  if (folderPage_ != nullptr) {
    folderPage_->OnFolder = [this](const std::string& folder) { model_->SetFolder(folder); };
    folderPage_->OnName = [this](const std::string& name) { model_->TypeName(name); };
    folderPage_->OnFile = [this] { model_->Confirm(); };
  }
}

void TFormSaving::showEvent(QShowEvent* event) {
  TScaledForm::showEvent(event);
  if (!tick_.isActive()) {
    tick_.start();
    model_->Begin();
  }
}

void TFormSaving::ShowFile() {
  if (name_ != nullptr && FromQt(name_->text()) != model_->Name()) {
    const QSignalBlocker quiet(name_);
    name_->setText(ToQt(model_->Name()));
  }
  const QString file = ToQt(model_->File());
  if (file_->text() != file) file_->setText(file);
  if (type_ != nullptr) {
    const QSignalBlocker quiet(type_);
    const SavingList types = model_->Types();
    if (type_->count() == 0) {
      for (const std::string& text : types.texts) type_->addItem(ToQt(text));
    }
    type_->setCurrentIndex(types.position);
  }
  if (folderPage_ != nullptr) {
    folderPage_->ShowFolder(model_->Folder());
    folderPage_->ShowMask(model_->Mask());
  }
}

void TFormSaving::ShowResult() {
  ShowLine(*facts_, model_->FactsText());
  ShowLine(*note_, model_->Note());
  ShowLine(*lossless_, model_->LosslessText());
  ShowLine(*loss_, model_->LossText());
  ShowLine(*size_, model_->SizeText());
  ShowLine(*fault_, model_->Fault());
  const QString details = ToQt(model_->LossDetails());
  if (lossList_->toPlainText() != details) lossList_->setPlainText(details);
  lossDetails_->setVisible(model_->HasLosses());
  lossList_->setVisible(model_->HasLosses() && lossDetails_->isChecked());
  save_->setEnabled(model_->CanSave());
}

void TFormSaving::ShowState() {
  // The model is made before the controls.
  if (save_ == nullptr) return;
  ShowFile();
  settingsPage_->ShowState();
  ShowResult();
}

void TFormSaving::ShowParts() {
  settingsPage_->ShowParts();
}

detail::StoppableTask& TFormSaving::TaskOf(SavingWork kind) {
  return kind == SavingWork::size ? sizeTask_ : partTask_;
}

void TFormSaving::Start(SavingWork kind, Job job) {
  TaskOf(kind).Start(std::move(job));
}

void TFormSaving::Stop(SavingWork kind) {
  TaskOf(kind).Stop();
}

bool TFormSaving::AskReplace(const std::string& question) {
  return AskYesOrNo(question);
}

std::optional<ChosenName> TFormSaving::AskName(const std::string& file) {
  return detail::TheDesktopFileDialogs().askToSave(file, model_->Type(), this);
}

void TFormSaving::Close(bool isConfirmed) {
  isConfirmed ? accept() : reject();
}

}  // namespace rasterkit
