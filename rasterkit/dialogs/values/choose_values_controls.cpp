#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include <rasterkit/dialogs/values/choose_values_form.h>
#include <rasterkit/dialogs/values/histogram_box.h>
#include <rasterkit/dialogs/values/preview_box.h>
#include <rasterkit/dialogs/values/zero_slider.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

/// What the row of a number is called. The label has a mnemonic.
struct RowTexts {
  ValueControl control;
  const char* name;
  std::string_view label, text, hint;
};
constexpr RowTexts kRows[] = {
    {ValueControl::lightness, "Brightness", "Br&ightness [%]", rsBrightness, rsBrightnessHint},
    {ValueControl::contrast, "Contrast", "&Contrast [%]", rsContrast, rsContrastHint},
    {ValueControl::sharpen, "Sharpen", "&Sharpen [%]", rsSharpen, rsSharpenHint},
    {ValueControl::red, "Red", "&Red", rsRed, rsRedHint},
    {ValueControl::green, "Green", "&Green", rsGreen, rsGreenHint},
    {ValueControl::blue, "Blue", "&Blue", rsBlue, rsBlueHint},
    {ValueControl::grayValue, "Threshold", "Gray &value", rsGrayValue, rsGrayValueHint},
};

const RowTexts& TextsOf(ValueControl control) {
  return *std::find_if(std::begin(kRows), std::end(kRows),
                       [control](const RowTexts& row) { return row.control == control; });
}

constexpr PreviewMode kModes[] = {PreviewMode::sideBySide, PreviewMode::split,
                                  PreviewMode::changed};

template <class Button>
Button* NewButton(const char* name, std::string_view text, std::string_view hint, const char* icon,
                  QWidget* parent) {
  auto* button = new Button(parent);
  button->setObjectName(name);
  button->setText(ResourceText(text));
  button->setToolTip(ResourceText(hint));
  button->setAccessibleDescription(ResourceText(hint));
  if (icon != nullptr) button->setIcon(Icon(icon));
  return button;
}

QPushButton* NewPushButton(const char* name, std::string_view text, std::string_view hint,
                           const char* icon, QWidget* parent) {
  auto* button = NewButton<QPushButton>(name, text, hint, icon, parent);
  button->setAutoDefault(false);
  return button;
}

QToolButton* NewToolButton(const char* name, std::string_view text, std::string_view hint,
                           const char* icon, QWidget* parent) {
  auto* button = NewButton<QToolButton>(name, text, hint, icon, parent);
  button->setText(QString());
  button->setAccessibleName(ResourceText(text));
  return button;
}

/// The tip of a button with its keys: "Takes back ... (Ctrl+Z)".
void AddKeysToTip(QWidget& widget, const QKeySequence& keys) {
  widget.setToolTip(widget.toolTip() + " (" + keys.toString(QKeySequence::NativeText) + ")");
}

}  // namespace

QLayout* TFormChooseValues::NewToolBar() {
  auto* bar = new QHBoxLayout;
  auto* label = new QLabel(ResourceText(rsValuesView), this);
  label->setObjectName("LabView");
  mode_ = new QComboBox(this);
  mode_->setObjectName("ComboView");
  mode_->setToolTip(ResourceText(rsValuesViewHint));
  mode_->addItems({ResourceText(rsValuesModeSideBySide), ResourceText(rsValuesModeSplit),
                   ResourceText(rsValuesModeChanged)});
  label->setBuddy(mode_);
  fit_ = NewPushButton("ButtonFit", "&Fit", rsCropFitHint, "fit", this);
  actualSize_ = NewPushButton("ButtonActualSize", "&Actual size", rsValuesActualSizeHint,
                              "actual-size", this);
  zoomOut_ = NewToolButton("ButtonZoomOut", rsValuesZoomOut, rsEditorZoomOutHint, "zoom-out", this);
  zoomIn_ = NewToolButton("ButtonZoomIn", rsValuesZoomIn, rsEditorZoomInHint, "zoom-in", this);
  zoom_ = new QLabel(this);
  zoom_->setObjectName("LabZoom");
  zoom_->setAlignment(Qt::AlignCenter);
  loupe_ = NewButton<QCheckBox>("CheckLoupe", rsValuesLoupe, rsValuesLoupeHint, nullptr, this);
  loupe_->setChecked(true);
  before_ = NewPushButton("ButtonBefore", rsValuesBefore, rsValuesBeforeHint, nullptr, this);
  for (QWidget* widget : {static_cast<QWidget*>(label), static_cast<QWidget*>(mode_)}) {
    bar->addWidget(widget);
  }
  bar->addWidget(fit_);
  bar->addWidget(actualSize_);
  bar->addWidget(zoomOut_);
  bar->addWidget(zoom_);
  bar->addWidget(zoomIn_);
  bar->addWidget(loupe_);
  bar->addStretch(1);
  bar->addWidget(before_);
  connect(mode_, &QComboBox::currentIndexChanged, this, [this](int index) {
    viewport_.SetMode(kModes[std::clamp(index, 0, 2)]);
    preview_->Refresh();
    ShowView();
  });
  connect(fit_, &QPushButton::clicked, this, [this] {
    viewport_.Fit();
    preview_->Refresh();
    ShowView();
  });
  connect(actualSize_, &QPushButton::clicked, this, [this] {
    viewport_.ShowActualSize();
    preview_->Refresh();
    ShowView();
  });
  connect(zoomIn_, &QToolButton::clicked, this, [this] { preview_->ZoomBy(1); });
  connect(zoomOut_, &QToolButton::clicked, this, [this] { preview_->ZoomBy(-1); });
  connect(loupe_, &QCheckBox::toggled, this, [this](bool isOn) { preview_->SetLoupe(isOn); });
  connect(before_, &QPushButton::pressed, this, [this] { Compare(true); });
  connect(before_, &QPushButton::released, this, [this] { Compare(false); });
  return bar;
}

QWidget* TFormChooseValues::NewPanel() {
  auto* panel = new QWidget(this);
  panel->setObjectName("PanValues");
  auto* column = new QVBoxLayout(panel);
  column->setContentsMargins(0, 0, 0, 0);
  auto* group = new QGroupBox(ResourceText(rsValuesHistogram), panel);
  group->setObjectName("GroupHistogram");
  auto* inner = new QVBoxLayout(group);
  histogram_ = new HistogramBox(group);
  histogram_->setObjectName("HistogramBox");
  histogram_->setAccessibleName(ResourceText(rsValuesHistogram));
  histogram_->setToolTip(
      ResourceText(session_.IsThreshold() ? rsThresholdHistogramHint : rsValuesHistogramHint));
  histogramFacts_ = new QLabel(group);
  histogramFacts_->setObjectName("LabHistogram");
  inner->addWidget(histogram_, 1);
  inner->addWidget(histogramFacts_);
  column->addWidget(group, 1);
  auto* grid = new QGridLayout;
  grid->setColumnStretch(1, 1);
  for (const ValueControl control : session_.Controls()) AddRow(*grid, control);
  column->addLayout(grid);
  if (session_.IsThreshold()) {
    automatic_ = NewButton<QCheckBox>("CheckAutomatic", rsThresholdAutomatic,
                                      rsThresholdAutomaticHint, nullptr, panel);
    found_ = new QLabel(panel);
    found_->setObjectName("LabFound");
    column->addWidget(automatic_);
    column->addWidget(found_);
    connect(automatic_, &QCheckBox::toggled, this, [this](bool isOn) {
      if (!isShowing_) session_.SetAutomatic(isOn);
    });
    histogram_->OnThreshold = [this](int threshold) {
      session_.Change(ValueControl::grayValue, threshold);
    };
    histogram_->OnThresholdEnd = [this] { session_.EndChange(); };
    histogram_->setCursor(Qt::SplitHCursor);
  }
  column->addLayout(NewHistoryBar());
  return panel;
}

void TFormChooseValues::AddRow(QGridLayout& grid, ValueControl control) {
  const RowTexts& texts = TextsOf(control);
  const QString name = texts.name;
  Row row;
  row.label = new QLabel(ResourceText(texts.label), this);
  row.label->setObjectName("Lab" + name);
  row.label->setToolTip(ResourceText(rsValuesResetOneHint));
  row.label->installEventFilter(this);
  row.slider = new ZeroSlider(this);
  row.slider->setObjectName("Track" + name);
  row.slider->setPageStep(10);
  row.slider->setTickPosition(QSlider::NoTicks);
  row.slider->setMinimumWidth(120);
  row.spin = new TSpinEditInt(this);
  row.spin->setObjectName("SpEd" + name);
  row.label->setBuddy(row.slider);
  const ValueRange range = session_.Values().Range(control);
  row.slider->setRange(range.least, range.greatest);
  row.spin->setRange(range.least, range.greatest);
  for (QWidget* widget : {static_cast<QWidget*>(row.slider), static_cast<QWidget*>(row.spin)}) {
    widget->setToolTip(ResourceText(texts.hint));
    widget->setAccessibleName(ResourceText(texts.text));
    widget->setAccessibleDescription(ResourceText(texts.hint));
  }
  row.reset =
      NewToolButton(qPrintable("Reset" + name), rsReset, rsValuesResetOneHint, "refresh", this);
  row.reset->setAccessibleName(ResourceText(rsReset) + ": " + ResourceText(texts.text));
  row.reset->setAutoRaise(true);
  // The keyboard resets with a key on the track bar.
  row.reset->setFocusPolicy(Qt::NoFocus);
  const int line = grid.rowCount();
  grid.addWidget(row.label, line, 0);
  grid.addWidget(row.slider, line, 1);
  grid.addWidget(row.spin, line, 2);
  grid.addWidget(row.reset, line, 3);
  const auto change = [this, control](int value) {
    if (!isShowing_) session_.Change(control, value);
  };
  connect(row.slider, &QSlider::valueChanged, this, change);
  connect(row.spin, &TSpinEditInt::valueChanged, this, change);
  connect(row.slider, &QSlider::sliderReleased, this, [this] { session_.EndChange(); });
  connect(row.spin, &TSpinEditInt::editingFinished, this, [this] { session_.EndChange(); });
  connect(row.reset, &QToolButton::clicked, this, [this, control] { session_.Reset(control); });
  rows_[control] = row;
}

QLayout* TFormChooseValues::NewHistoryBar() {
  auto* bar = new QHBoxLayout;
  undo_ = NewPushButton("ButtonUndo", rsValuesUndo, rsValuesUndoHint, "undo", this);
  redo_ = NewPushButton("ButtonRedo", rsValuesRedo, rsValuesRedoHint, "redo", this);
  last_ = NewPushButton("ButtonLast", rsValuesLast, rsValuesLastHint, nullptr, this);
  AddKeysToTip(*undo_, QKeySequence(QKeySequence::Undo));
  AddKeysToTip(*redo_, QKeySequence(QKeySequence::Redo));
  bar->addWidget(undo_);
  bar->addWidget(redo_);
  bar->addStretch(1);
  bar->addWidget(last_);
  connect(undo_, &QPushButton::clicked, this, [this] { session_.Undo(); });
  connect(redo_, &QPushButton::clicked, this, [this] { session_.Redo(); });
  connect(last_, &QPushButton::clicked, this, [this] { session_.UseLast(); });
  return bar;
}

void TFormChooseValues::SetUpNavigator() {
  navigator_ = new TNavigator(this);
  navigator_->setObjectName("NaviResult");
  navigator_->setRefreshVisible(true);
  navigator_->setHelpVisible(true);
  QPushButton& reset = navigator_->Button(nbRefresh);
  const QString text = ToQt(session_.Values().TextOfReset());
  reset.setText(text);
  reset.setAccessibleName(text);
  reset.setToolTip(ResourceText(rsResetValuesHint));
  reset.setAccessibleDescription(ResourceText(rsResetValuesHint));
  AddKeysToTip(reset, QKeySequence(QKeySequence::Refresh));
  connect(navigator_, &TNavigator::postClicked, this, &QDialog::accept);
  connect(navigator_, &TNavigator::cancelClicked, this, &QDialog::reject);
  connect(navigator_, &TNavigator::refreshClicked, this, [this] { session_.ResetAll(); });
  connect(navigator_, &TNavigator::helpClicked, this, Guarded([this] { ShowHelp(); }));
}

void TFormChooseValues::SetTabOrder() {
  QList<QWidget*> order;
  for (const ValueControl control : session_.Controls()) {
    order << rows_[control].slider << rows_[control].spin;
  }
  if (automatic_ != nullptr) order << automatic_;
  order << undo_ << redo_ << last_ << &navigator_->Button(nbPost) << &navigator_->Button(nbCancel)
        << &navigator_->Button(nbHelp) << &navigator_->Button(nbRefresh) << mode_ << fit_
        << actualSize_ << zoomOut_ << zoomIn_ << loupe_ << before_ << preview_;
  for (qsizetype i = 0; i + 1 < order.size(); ++i) setTabOrder(order[i], order[i + 1]);
}

}  // namespace rasterkit
