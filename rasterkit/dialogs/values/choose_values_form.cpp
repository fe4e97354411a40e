#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <string>
#include <utility>

#include <rasterkit/bands/color_changes.h>
#include <rasterkit/dialogs/values/choose_values_form.h>
#include <rasterkit/dialogs/values/filled_text.h>
#include <rasterkit/dialogs/values/histogram_box.h>
#include <rasterkit/dialogs/values/preview_box.h>
#include <rasterkit/dialogs/values/zero_slider.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/controls/redo_keys.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/host/documentation.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

constexpr int kHelpOfValues = 530300, kHelpOfThreshold = 530301;

/// Whether a key moves a track bar or a number.
bool IsStep(int key) {
  constexpr Qt::Key kSteps[] = {Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Up,   Qt::Key_Down,
                                Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
  return std::find(std::begin(kSteps), std::end(kSteps), key) != std::end(kSteps);
}

std::string PercentOf(double zoom, const QLocale& locale) {
  const double percent = zoom * 100;
  const int decimals = percent < 9.95 ? 1 : 0;
  return FromQt(locale.toString(percent, 'f', decimals));
}

}  // namespace

TFormChooseValues::TFormChooseValues(ValueSession& session, QWidget* parent)
    : TScaledForm(parent),
      session_(session),
      viewport_(session.Values().Original().Width(), session.Values().Original().Height()),
      renderer_(session.Values()),
      sample_(std::make_shared<const PixelSample>(session.Values().Original())) {
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
  // A field that loses the focus still reports what is typed.
  hide();
  session_.OnChange = nullptr;
}

void TFormChooseValues::AddKeys() {
  const auto add = [](const QKeySequence& keys, QAbstractButton* button) {
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
  // A key that is held is one change.
  if (!isPress && !key.isAutoRepeat() && IsStep(key.key())) session_.EndChange();
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
      if (key->matches(QKeySequence::Undo) || IsRedo(*key)) {
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
    found_->setText(found ? FilledText(rsThresholdFound, {std::to_string(*found)}) : QString());
  }
  renderer_.ForgetChange();
  preview_->Refresh();
  ShowHistogram();
}

void TFormChooseValues::ShowView() {
  const std::string percent = PercentOf(viewport_.Zoom(), locale());
  zoom_->setText(ToQt(percent + " %"));
  zoom_->setMinimumWidth(zoom_->fontMetrics().horizontalAdvance(QStringLiteral("1600 %")));
  zoomIn_->setEnabled(viewport_.CanZoomIn());
  zoomOut_->setEnabled(viewport_.CanZoomOut());
  preview_->SetContentText(mode_->currentText() + ", " + zoom_->text());
}

void TFormChooseValues::ShowHistogram() {
  if (!session_.IsThreshold()) return CountChanged();
  histogram_->SetThreshold(session_.Number(ValueControl::grayValue));
  histogram_->SetMark(session_.FoundThreshold());
  ValueHistogram histogram;
  histogram.gray = grays_;
  ShowCounts(histogram);
}

/// Counts on another thread: the preview comes first.
void TFormChooseValues::CountChanged() {
  const auto count = [sample = sample_, step = StepOf(session_.Values().CurrentChange())] {
    const TBitmap& pixels = sample->Pixels();
    const TRect all{0, 0, pixels.Width(), pixels.Height()};
    return CountLevels(ChangeStepPart(pixels, all, step), sample->Counted());
  };
  // The window opens with a histogram in it.
  if (!std::exchange(hasHistogram_, true)) return ShowCounts(count());
  histogramTask_.Run(
      [this, count](const std::atomic<bool>&) -> detail::LatestTask::Answer {
        std::optional<ValueHistogram> histogram;
        try {
          histogram = count();
        } catch (const std::exception&) {
          // Without memory for a copy of the sample the last histogram stays.
          histogram.reset();
        }
        return [this, histogram] {
          if (histogram) ShowCounts(*histogram);
        };
      },
      [this, count] { ShowCounts(count()); });
}

void TFormChooseValues::ShowCounts(const ValueHistogram& histogram) {
  histogram_->SetHistogram(histogram, !session_.IsThreshold());
  const LevelFacts facts = FactsOf(histogram.gray);
  const QString range = FilledText(
      rsValuesHistogramRange,
      {std::to_string(facts.least), std::to_string(facts.greatest), std::to_string(facts.mean)});
  const QString ends = FilledText(rsValuesHistogramEnds, {std::to_string(facts.blackPercent),
                                                          std::to_string(facts.whitePercent)});
  histogramFacts_->setText(range + '\n' + ends);
  histogram_->SetContentText(range + ". " + ends);
}

void TFormChooseValues::CountGrays() {
  const TBitmap& picture = session_.Values().Original();
  TakeCounts(CountGraysOf(sample_->Pixels()));
  if (sample_->IsWhole()) return;
  counting_.emplace(picture);
  counting_->Start([this](const GrayCounts& counts) { TakeCounts(counts); });
}

void TFormChooseValues::TakeCounts(const GrayCounts& counts) {
  grays_ = counts;
  session_.SetFoundThreshold(detail::OtsuThreshold(counts));
}

void TFormChooseValues::ShowHelp() {
  if (OpenHelp(session_.IsThreshold() ? kHelpOfThreshold : kHelpOfValues)) return;
  ShowMessage(ResourceString(rsValuesPreviewKeys));
}

}  // namespace rasterkit
