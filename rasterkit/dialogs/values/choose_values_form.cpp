#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <string>

#include <rasterkit/bands/color_changes.h>
#include <rasterkit/dialogs/values/choose_values_form.h>
#include <rasterkit/dialogs/values/histogram_box.h>
#include <rasterkit/dialogs/values/preview_box.h>
#include <rasterkit/dialogs/values/zero_slider.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

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
constexpr int kHelpOfValues = 530300, kHelpOfThreshold = 530301;

QString Formatted(std::string_view key, const std::vector<std::string>& values) {
  return ToQt(FormatText(ResourceString(key), values));
}

std::string PercentOf(double zoom) {
  const double percent = zoom * 100;
  const int decimals = percent < 9.95 ? 1 : 0;
  return FromQt(QLocale().toString(percent, 'f', decimals));
}

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
  button->setToolButtonStyle(Qt::ToolButtonIconOnly);
  button->setAccessibleName(ResourceText(text));
  return button;
}

/// The tip of a button with its keys: "Takes back ... (Ctrl+Z)".
void AddKeysToTip(QWidget& widget, const QKeySequence& keys) {
  widget.setToolTip(widget.toolTip() + " (" + keys.toString(QKeySequence::NativeText) + ")");
}

}  // namespace

TFormChooseValues::TFormChooseValues(ValueSession& session, QWidget* parent)
    : TScaledForm(parent),
      session_(session),
      viewport_(session.Values().Original().Width(), session.Values().Original().Height()),
      renderer_(session.Values()),
      sample_(session.Values().Original()) {
  setObjectName(session.IsThreshold() ? "FormChooseThreshold" : "FormChooseValues");
  setWindowTitle(ToQt(session.Title()));
  resize(1000, 620);
  auto* column = new QVBoxLayout(this);
  column->addLayout(NewToolBar());
  preview_ = new PreviewBox(viewport_, renderer_, this);
  preview_->setObjectName("PreviewBox");
  preview_->setAccessibleName(ResourceText(rsPreview));
  preview_->setAccessibleDescription(ResourceText(rsValuesPreviewKeys));
  preview_->setToolTip(ResourceText(rsValuesPreviewHint));
  preview_->setMinimumSize(200, 140);
  auto* middle = new QHBoxLayout;
  middle->addWidget(preview_, 1);
  middle->addWidget(NewPanel());
  column->addLayout(middle, 1);
  SetUpNavigator();
  column->addWidget(navigator_);
  AddKeys();
  WatchKeys();
  SetTabOrder();
  preview_->OnView = [this] { ShowView(); };
  session_.OnChange = Guarded([this] { ShowValues(); });
  if (session_.IsThreshold()) CountGrays();
  ShowValues();
  ShowView();
  rows_.begin()->second.slider->setFocus();
}

TFormChooseValues::~TFormChooseValues() {
  session_.OnChange = nullptr;
}

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
  histogramFacts_->setWordWrap(true);
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
  row.reset->setAccessibleName(Formatted(rsValuesResetOne, {ResourceString(texts.text)}));
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

void TFormChooseValues::AddKeys() {
  const auto add = [this](const QKeySequence& keys, QAbstractButton* button) {
    auto* shortcut = new QShortcut(keys, button);
    // Both windows of a spin edit and of the form answer.
    connect(shortcut, &QShortcut::activated, button, [button] { button->click(); });
  };
  add(QKeySequence(QKeySequence::Undo), undo_);
  add(QKeySequence(Qt::CTRL | Qt::Key_Y), redo_);
  add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), redo_);
  add(QKeySequence(Qt::CTRL | Qt::Key_Plus), zoomIn_);
  add(QKeySequence(Qt::CTRL | Qt::Key_Minus), zoomOut_);
  auto* preview = new QShortcut(QKeySequence(Qt::Key_F6), preview_);
  connect(preview, &QShortcut::activated, this,
          [this] { preview_->setFocus(Qt::ShortcutFocusReason); });
}

void TFormChooseValues::WatchKeys() {
  for (QWidget* widget : findChildren<QWidget*>()) widget->installEventFilter(this);
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

std::optional<ValueControl> TFormChooseValues::ControlOf(const QObject* watched) const {
  for (const auto& [control, row] : rows_) {
    if (watched == row.label || watched == row.slider || watched == row.spin) return control;
  }
  return std::nullopt;
}

bool TFormChooseValues::KeyEvent(QObject* watched, QEvent* event) {
  const auto& key = static_cast<const QKeyEvent&>(*event);
  const bool isPress = event->type() == QEvent::KeyPress;
  if (key.key() == Qt::Key_B && key.modifiers() == Qt::NoModifier) {
    if (!key.isAutoRepeat()) Compare(isPress);
    return true;
  }
  if (isPress && key.key() == Qt::Key_Delete) {
    for (const auto& [control, row] : rows_) {
      if (watched != row.slider) continue;
      session_.Reset(control);
      return true;
    }
  }
  return false;
}

bool TFormChooseValues::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride: {
      // A number field must not undo its own typing instead.
      const auto* key = static_cast<QKeyEvent*>(event);
      const bool isRedo = key->modifiers() == Qt::ControlModifier && key->key() == Qt::Key_Y;
      if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo) || isRedo) {
        event->ignore();
        return true;
      }
      break;
    }
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      if (KeyEvent(watched, event)) return true;
      break;
    case QEvent::MouseButtonDblClick:
      if (qobject_cast<QLabel*>(watched) != nullptr) {
        if (const auto control = ControlOf(watched)) {
          session_.Reset(*control);
          return true;
        }
      }
      break;
    case QEvent::FocusOut:
      session_.EndChange();
      Compare(false);
      break;
    default:
      break;
  }
  return TScaledForm::eventFilter(watched, event);
}

void TFormChooseValues::changeEvent(QEvent* event) {
  TScaledForm::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && !isActiveWindow()) Compare(false);
}

void TFormChooseValues::Compare(bool isOn) {
  if (preview_ != nullptr) preview_->SetComparing(isOn);
}

void TFormChooseValues::ShowValues() {
  const QScopedValueRollback<bool> showing(isShowing_, true);
  for (const auto& [control, row] : rows_) {
    const int value = session_.Number(control);
    row.slider->setValue(value);
    row.spin->setValue(value);
    row.reset->setEnabled(session_.CanReset(control));
  }
  undo_->setEnabled(session_.CanUndo());
  redo_->setEnabled(session_.CanRedo());
  last_->setEnabled(session_.CanUseLast());
  navigator_->Button(nbPost).setEnabled(session_.CanConfirm());
  navigator_->Button(nbRefresh).setEnabled(session_.CanResetAll());
  if (automatic_ != nullptr) {
    automatic_->setChecked(session_.IsAutomatic());
    const auto found = session_.FoundThreshold();
    found_->setText(found ? Formatted(rsThresholdFound, {std::to_string(*found)}) : QString());
  }
  renderer_.ForgetChange();
  preview_->Refresh();
  ShowHistogram();
}

void TFormChooseValues::ShowView() {
  const std::string percent = PercentOf(viewport_.Zoom());
  zoom_->setText(ToQt(percent + " %"));
  zoom_->setMinimumWidth(zoom_->fontMetrics().horizontalAdvance(QStringLiteral("1600 %")));
  zoomIn_->setEnabled(viewport_.CanZoomIn());
  zoomOut_->setEnabled(viewport_.CanZoomOut());
  preview_->SetContentText(Formatted(rsValuesPreviewNow, {FromQt(mode_->currentText()), percent}));
}

void TFormChooseValues::ShowHistogram() {
  ValueHistogram histogram;
  if (session_.IsThreshold()) {
    histogram.gray = grays_ ? *grays_ : CountGraysOf(sample_.Pixels());
    histogram_->SetThreshold(session_.Number(ValueControl::grayValue));
    histogram_->SetMark(session_.FoundThreshold());
  } else {
    const TBitmap& pixels = sample_.Pixels();
    const TRect all{0, 0, pixels.Width(), pixels.Height()};
    const TBitmap changed = ChangeStepPart(pixels, all, StepOf(session_.Values().CurrentChange()));
    histogram = CountLevels(changed, sample_.Counted());
  }
  histogram_->SetHistogram(histogram, !session_.IsThreshold());
  const LevelFacts facts = FactsOf(histogram.gray);
  const QString text = Formatted(
      rsValuesHistogramFacts,
      {std::to_string(facts.least), std::to_string(facts.greatest), std::to_string(facts.mean),
       std::to_string(facts.blackPercent), std::to_string(facts.whitePercent)});
  histogramFacts_->setText(text);
  histogram_->SetContentText(text);
}

void TFormChooseValues::CountGrays() {
  const TBitmap& picture = session_.Values().Original();
  if (sample_.IsWhole()) return TakeCounts(CountGraysOf(picture));
  session_.SetFoundThreshold(detail::OtsuThreshold(CountGraysOf(sample_.Pixels())));
  counting_.emplace(picture);
  counting_->Start([this](const GrayCounts& counts) { TakeCounts(counts); });
}

void TFormChooseValues::TakeCounts(const GrayCounts& counts) {
  grays_ = counts;
  session_.SetFoundThreshold(detail::OtsuThreshold(counts));
}

void TFormChooseValues::ShowHelp() {
  ShowHelpTopic(session_.IsThreshold() ? kHelpOfThreshold : kHelpOfValues);
}

}  // namespace rasterkit
