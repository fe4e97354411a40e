#include <QHBoxLayout>
#include <QSignalBlocker>

#include <rasterkit/dialogs/saving/settings_page.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

void Fill(QComboBox& box, const SavingList& list) {
  const QSignalBlocker quiet(&box);
  const auto count = static_cast<int>(list.texts.size());
  while (box.count() > count) box.removeItem(box.count() - 1);
  for (int i = 0; i < count; ++i) {
    const QString text = ToQt(list.texts[static_cast<size_t>(i)]);
    i < box.count() ? box.setItemText(i, text) : box.addItem(text);
  }
  box.setCurrentIndex(list.position);
}

}  // namespace

SettingsPage::SettingsPage(QWidget* parent) : QWidget(parent) {
  setObjectName("SettingsPage");
  auto* row = new QHBoxLayout(this);
  auto* settings = new QWidget(this);
  rows_ = new QFormLayout(settings);
  rows_->setContentsMargins(0, 0, 0, 0);
  rows_->setRowWrapPolicy(QFormLayout::DontWrapRows);
  rows_->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  depth_ = AddList("BoxDepth", rsSavingDepth, rsSavingDepthHint, &SavingModel::ChooseDepth);
  AddQuality();
  sampling_ =
      AddList("BoxSampling", rsSavingSampling, rsSavingSamplingHint, &SavingModel::ChooseSampling);
  move_ = AddList("BoxMove", rsSavingMove, rsSavingMoveHint, &SavingModel::ChooseMove);
  compression_ = AddList("BoxCompression", rsSavingCompression, rsSavingCompressionHint,
                         &SavingModel::ChooseCompression);
  level_ = AddList("BoxLevel", rsSavingLevel, rsSavingLevelHint, &SavingModel::ChooseLevel);
  keep_ = AddList("BoxKeep", rsSavingKeep, rsSavingKeepHint, &SavingModel::ChooseKeep);
  compare_ = new CompareView(this);
  row->addWidget(settings);
  row->addWidget(compare_, 1);
}

QComboBox* SettingsPage::AddList(const char* name, std::string_view label, std::string_view hint,
                                 void (SavingModel::*choose)(int)) {
  auto* box = new QComboBox(this);
  box->setObjectName(name);
  box->setToolTip(ResourceText(hint));
  auto* text = new QLabel(ResourceText(label), this);
  text->setObjectName(QStringLiteral("Lab") + name);
  text->setBuddy(box);
  rows_->addRow(text, box);
  connect(box, &QComboBox::currentIndexChanged, this, [this, choose](int position) {
    Application.Guard([&] {
      if (model_ != nullptr) (model_->*choose)(position);
    });
  });
  return box;
}

void SettingsPage::AddQuality() {
  asQuality_ = new QCheckBox(this);
  asQuality_->setObjectName("CheckQuality");
  rows_->addRow(asQuality_);
  qualityRow_ = new QWidget(this);
  auto* row = new QHBoxLayout(qualityRow_);
  row->setContentsMargins(0, 0, 0, 0);
  quality_ = new QSlider(Qt::Horizontal, qualityRow_);
  quality_->setObjectName("SliderQuality");
  quality_->setRange(1, 100);
  quality_->setPageStep(10);
  quality_->setAccessibleName(ResourceText(rsSavingQualityName));
  quality_->setToolTip(ResourceText(rsSavingQualityHint));
  qualityNumber_ = new TSpinEditInt(qualityRow_);
  qualityNumber_->setObjectName("NumberQuality");
  qualityNumber_->setRange(1, 100);
  qualityNumber_->setToolTip(ResourceText(rsSavingQualityHint));
  qualityNumber_->setAccessibleName(ResourceText(rsSavingQualityNumber));
  row->addWidget(quality_, 1);
  row->addWidget(qualityNumber_);
  auto* label = new QLabel(ResourceText(rsSavingQuality), this);
  label->setObjectName("LabSliderQuality");
  label->setBuddy(quality_);
  rows_->addRow(label, qualityRow_);
  const auto set = [this](int quality) {
    Application.Guard([&] {
      if (model_ != nullptr) model_->SetQuality(quality);
    });
  };
  connect(quality_, &QSlider::valueChanged, this, set);
  connect(qualityNumber_, &QSpinBox::valueChanged, this, set);
  connect(asQuality_, &QCheckBox::toggled, this, [this](bool isOn) {
    Application.Guard([&] {
      if (model_ != nullptr) model_->UseOwnQuality(!isOn);
    });
  });
}

void SettingsPage::SetModel(SavingModel& model) {
  model_ = &model;
  const bool isSource = model.HasSourceQuality();
  asQuality_->setText(ResourceText(isSource ? rsSavingAsQuality : rsSavingUsualQuality));
  asQuality_->setToolTip(ResourceText(isSource ? rsSavingAsQualityHint : rsSavingUsualQualityHint));
  compare_->SetModel(model);
}

void SettingsPage::ForgetModel() {
  model_ = nullptr;
  compare_->ForgetModel();
}

/// Hides a field with its label, whose mnemonic would work nevertheless.
void SettingsPage::SetRowVisible(QWidget* field, bool isVisible) {
  field->setVisible(isVisible);
  if (QWidget* label = rows_->labelForField(field)) label->setVisible(isVisible);
}

void SettingsPage::ShowQuality() {
  SetRowVisible(qualityRow_, model_->HasQuality());
  asQuality_->setVisible(model_->HasQuality());
  const QSignalBlocker first(asQuality_), second(quality_), third(qualityNumber_);
  asQuality_->setChecked(!model_->HasOwnQuality());
  quality_->setValue(model_->Quality());
  if (qualityNumber_->value() != model_->Quality()) qualityNumber_->setValue(model_->Quality());
}

void SettingsPage::ShowState() {
  if (model_ == nullptr) return;
  ShowQuality();
  Fill(*depth_, model_->Depths());
  Fill(*sampling_, model_->Samplings());
  Fill(*move_, model_->Moves());
  Fill(*compression_, model_->Compressions());
  Fill(*level_, model_->Levels());
  Fill(*keep_, model_->Keeps());
  SetRowVisible(sampling_, model_->HasSampling());
  SetRowVisible(move_, model_->HasMoves());
  SetRowVisible(compression_, model_->HasCompression());
  SetRowVisible(level_, model_->HasLevel());
}

}  // namespace rasterkit::detail
