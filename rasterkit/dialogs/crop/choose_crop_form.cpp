#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QStandardItemModel>
#include <array>
#include <initializer_list>
#include <utility>

#include <rasterkit/dialogs/crop/choose_crop_form.h>
#include <rasterkit/dialogs/crop/unit_field.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

#include "ui_choose_crop_form.h"

namespace rasterkit {
namespace {

constexpr int kSideDecimals = 3;
constexpr double kLeastSide = 0.001;

/// An entry that cannot be chosen is pale and says why.
void SetEntry(QComboBox& box, int index, bool isEnabled, std::string_view reason) {
  QStandardItem* entry = qobject_cast<QStandardItemModel*>(box.model())->item(index);
  entry->setEnabled(isEnabled);
  entry->setToolTip(isEnabled ? QString() : ResourceText(reason));
}

void SetVisible(std::initializer_list<QWidget*> widgets, bool isVisible) {
  for (QWidget* widget : widgets) widget->setVisible(isVisible);
}

}  // namespace

TFormChooseCrop::TFormChooseCrop(TBitmap& bitmap, const CropFacts& facts,
                                 const ChooseCropOptions& options,
                                 const std::optional<TRect>& start, const CropSettings& settings,
                                 QWidget* parent)
    : TScaledForm(parent),
      ui_(std::make_unique<Ui::FormChooseCrop>()),
      isLossless_(options.isLossless),
      showsUnits_(options.showsUnits),
      showsRatios_(options.showsRatios),
      showsGuides_(options.showsGuides),
      settings_(settings) {
  SetUpForm(*ui_);
  SetUpTool(bitmap);
  model_ = std::make_unique<CropWindowModel>(*tool_, facts);
  if (showsUnits_) {
    model_->StartUnit(options.unit == LengthUnit::pixels ? settings.unit : options.unit);
  }
  if (showsRatios_) model_->StartRatio(settings.ratio);
  if (showsGuides_) model_->SetGuide(settings.guide);
  if (start && options.start) model_->Start(*options.start, *start);
  SetUpLists(options);
  ConnectButtons();
  ConnectBox();
  ConnectFields();
  ConnectRatio();
  tool_->OnStateChanged = [this](BmpCutModel&) { ShowState(); };
  ShowAll();
  ui_->LabelLossless->setVisible(isLossless_ != nullptr);
  ui_->PaintBox->setFocus();
}

TFormChooseCrop::~TFormChooseCrop() {
  // A field that loses the focus when the window goes would still report what is typed.
  for (TUnitField* field : findChildren<TUnitField*>()) {
    field->OnTyped = nullptr;
    field->OnStep = nullptr;
  }
}

void TFormChooseCrop::ShowAll() {
  ui_->ComboGuide->setCurrentIndex(static_cast<int>(model_->Guide()));
  ShowUnits();
  ShowRatio();
  ui_->PaintBox->update();
}

void TFormChooseCrop::SetUpTool(TBitmap& bitmap) {
  // The tool calls this handler after its own painting.
  ui_->PaintBox->OnPaint = [this](TPaintBox& box, QPainter& painter) { PaintOver(box, painter); };
  tool_ = std::make_unique<TBmpCutRect>(ui_->PaintBox, nullptr, kEditorCropRules);
  tool_->SetOrgBitmap(&bitmap);
}

void TFormChooseCrop::SetUpLists(const ChooseCropOptions& options) {
  const CropFacts& facts = model_->Facts();
  const auto index = [](auto value) { return static_cast<int>(value); };
  SetEntry(*ui_->ComboUnit, index(LengthUnit::millimeters),
           KnowsUnit(facts, LengthUnit::millimeters), rsCropNeedsResolution);
  SetEntry(*ui_->ComboUnit, index(LengthUnit::map), KnowsUnit(facts, LengthUnit::map),
           rsCropNeedsPosition);
  SetVisible({ui_->LabUnit, ui_->ComboUnit}, options.showsUnits);
  SetVisible({ui_->LabRatio, ui_->ComboRatio, ui_->ButtonSwap}, options.showsRatios);
  SetVisible({ui_->LabGuide, ui_->ComboGuide}, options.showsGuides);
  for (TUnitField* side : {ui_->FieldRatioWidth, ui_->FieldRatioHeight}) {
    side->setDecimals(kSideDecimals);
    side->setRange(kLeastSide, kGreatestTypedSide);
  }
  ui_->FieldScale->setDecimals(0);
  ui_->FieldScale->setRange(kLeastScale, kGreatestScale);
}

void TFormChooseCrop::ConnectButtons() {
  ui_->SpeedButtonFit->setIcon(Icon("fit"));
  ui_->SpeedButtonOrgSize->setIcon(Icon("actual-size"));
  ui_->SpeedButtonUndo->setIcon(Icon("undo"));
  ui_->SpeedButtonRedo->setIcon(Icon("redo"));
  ui_->SpeedButtonWhole->setIcon(Icon("picture"));
  ui_->ButtonSwap->setIcon(Icon("swap"));
  const auto onClick = [this](const QPushButton* button, void (TFormChooseCrop::*action)()) {
    connect(button, &QPushButton::clicked, this, action);
  };
  onClick(ui_->SpeedButtonFit, &TFormChooseCrop::ShowFitted);
  onClick(ui_->SpeedButtonOrgSize, &TFormChooseCrop::ShowActualSize);
  onClick(ui_->SpeedButtonUndo, &TFormChooseCrop::Undo);
  onClick(ui_->SpeedButtonRedo, &TFormChooseCrop::Redo);
  onClick(ui_->SpeedButtonWhole, &TFormChooseCrop::KeepWhole);
  // Lists and fields would take these keys for themselves.
  const auto addKey = [](QPushButton* button, const QKeySequence& key) {
    auto* shortcut = new QShortcut(key, button);
    connect(shortcut, &QShortcut::activated, button, &QPushButton::click);
  };
  addKey(ui_->SpeedButtonUndo, Qt::CTRL | Qt::Key_Z);
  addKey(ui_->SpeedButtonRedo, Qt::CTRL | Qt::Key_Y);
  addKey(ui_->SpeedButtonRedo, Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
  connect(ui_->NaviResult, &TNavigator::postClicked, this, &QDialog::accept);
  connect(ui_->NaviResult, &TNavigator::cancelClicked, this, &QDialog::reject);
}

void TFormChooseCrop::ConnectBox() {
  TPaintBox& box = *ui_->PaintBox;
  box.OnResize = [this](TPaintBox& sender) { tool_->OnResize(sender); };
  box.OnMouseWheel = [this](TPaintBox& sender, QWheelEvent& event) {
    tool_->OnMouseWheel(sender, event);
    ShowMouse();
  };
  box.OnKeyDown = [this](TPaintBox& sender, QKeyEvent& event) { tool_->OnKeyDown(sender, event); };
  box.OnMouseDown = [this, pressed = box.OnMouseDown](TPaintBox& sender, QMouseEvent& event) {
    const QPoint point = event.position().toPoint();
    const bool isDouble =
        event.type() == QEvent::MouseButtonDblClick && event.button() == Qt::LeftButton;
    const bool isOnCut = tool_->CutRectExists() && tool_->CutRect().Contains(point.x(), point.y());
    if (isDouble && isOnCut) return accept();
    pressed(sender, event);
  };
  box.OnMouseMove = [this, moved = box.OnMouseMove](TPaintBox& sender, QMouseEvent& event) {
    TakeMouse(sender, event);
    moved(sender, event);
  };
  box.OnMouseLeave = [this, left = box.OnMouseLeave](TPaintBox& sender) {
    left(sender);
    mouse_.reset();
    ShowMouse();
  };
}

void TFormChooseCrop::TakeMouse(TPaintBox&, QMouseEvent& event) {
  const QPoint point = event.position().toPoint();
  mouse_ = TPoint{point.x(), point.y()};
  ShowMouse();
}

std::array<std::pair<TUnitField*, CropField>, 4> TFormChooseCrop::Fields() const {
  return {{{ui_->FieldLeft, CropField::left},
           {ui_->FieldTop, CropField::top},
           {ui_->FieldWidth, CropField::width},
           {ui_->FieldHeight, CropField::height}}};
}

void TFormChooseCrop::ConnectFields() {
  for (const auto& [edit, field] : Fields()) {
    edit->OnTyped = [this, which = field](double value) {
      model_->Type(which, value);
      ShowState();
    };
    edit->OnStep = [this, which = field](int steps) { model_->Step(which, steps); };
  }
  connect(ui_->ComboUnit, &QComboBox::activated, this, [this](int index) {
    model_->ChooseUnit(static_cast<LengthUnit>(index));
    ShowUnits();
  });
  connect(ui_->ComboMapUnit, &QComboBox::activated, this, [this](int index) {
    model_->ChooseMapUnit(index == 0 ? MapUnit{} : UsualMapUnits()[static_cast<size_t>(index) - 1]);
    ShowUnits();
    ShowRatio();
  });
  connect(ui_->ComboGuide, &QComboBox::activated, this, [this](int index) {
    model_->SetGuide(static_cast<CropGuide>(index));
    ui_->PaintBox->update();
  });
}

void TFormChooseCrop::ConnectRatio() {
  connect(ui_->ComboRatio, &QComboBox::activated, this, &TFormChooseCrop::TakeRatio);
  connect(ui_->ComboPaper, &QComboBox::activated, this, &TFormChooseCrop::TakeRatio);
  for (TUnitField* side : {ui_->FieldRatioWidth, ui_->FieldRatioHeight, ui_->FieldScale}) {
    side->OnTyped = [this](double) { TakeRatio(); };
    side->OnStep = [this, side](int steps) {
      side->setValue(side->value() + steps);
      TakeRatio();
    };
  }
  connect(ui_->ButtonSwap, &QPushButton::clicked, this, [this] {
    model_->ChooseRatio(Swapped(model_->Ratio()));
    ShowRatio();
  });
}

void TFormChooseCrop::TakeRatio() {
  if (isShowing_) return;
  CropRatio ratio = model_->Ratio();
  const auto kind = static_cast<RatioKind>(ui_->ComboRatio->currentIndex());
  if (kind != ratio.kind) ratio.isSwapped = false;
  ratio.kind = kind;
  ratio.typedWidth = ui_->FieldRatioWidth->value();
  ratio.typedHeight = ui_->FieldRatioHeight->value();
  ratio.paper = kSmallestPaper - ui_->ComboPaper->currentIndex();
  ratio.scale = ui_->FieldScale->value();
  model_->ChooseRatio(ratio);
  ShowRatio();
}

CropSettings TFormChooseCrop::Settings() const {
  CropSettings settings = settings_;
  // Neither a caller's unit nor a picture that does not know the remembered one ends it.
  const bool hasUnit = showsUnits_ && model_->IsUnitChosen();
  // The same for a ratio that the picture does not know.
  const bool hasRatio = showsRatios_ && (KnowsRatio(model_->Facts(), settings_.ratio.kind) ||
                                         model_->Ratio().kind != RatioKind::any);
  if (hasUnit) settings.unit = model_->Unit();
  if (hasRatio) settings.ratio = model_->Ratio();
  if (showsGuides_) settings.guide = model_->Guide();
  return settings;
}

void TFormChooseCrop::ShowFitted() {
  tool_->SetFitInOrgBmp(true);
  ui_->PaintBox->update();
}

void TFormChooseCrop::ShowActualSize() {
  tool_->SetFitInOrgBmp(false);
  ui_->PaintBox->update();
}

void TFormChooseCrop::Undo() {
  tool_->UndoCutRect();
}

void TFormChooseCrop::Redo() {
  tool_->RedoCutRect();
}

void TFormChooseCrop::KeepWhole() {
  tool_->DelCutRect();
  ui_->PaintBox->update();
}

void TFormChooseCrop::PaintOver(TPaintBox& box, QPainter& painter) {
  if (tool_ != nullptr && tool_->CutRectExists()) {
    for (const GuideLine& line : GuideLines(model_->Guide(), tool_->CutRect())) {
      const QLineF where(line.x1, line.y1, line.x2, line.y2);
      painter.setPen(QPen(QColor(16, 16, 16, 160), 3));
      painter.drawLine(where);
      painter.setPen(QPen(QColor(255, 255, 255, 220), 1));
      painter.drawLine(where);
    }
  }
  box.PaintFocus(painter);
}

void TFormChooseCrop::ShowUnits() {
  const QScopedValueRollback showing(isShowing_, true);
  const CropFacts& facts = model_->Facts();
  const int map = static_cast<int>(LengthUnit::map);
  const std::string& symbol = facts.mapUnit.symbol;
  const std::array values = {symbol};
  ui_->ComboUnit->setItemText(
      map, symbol.empty() ? ResourceText(rsCropMapUnits)
                          : ToQt(FormatText(ResourceString(rsCropMapUnitsIn), values)));
  ui_->ComboUnit->setCurrentIndex(static_cast<int>(model_->Unit()));
  const bool asksMapUnit =
      showsUnits_ && model_->MayChooseMapUnit() && model_->Unit() == LengthUnit::map;
  ui_->LabMapUnit->setVisible(asksMapUnit);
  ui_->ComboMapUnit->setVisible(asksMapUnit);
  for (const auto& [edit, field] : Fields()) {
    const CropNumber number = model_->Number(field);
    edit->setDecimals(model_->Decimals());
    edit->setRange(number.minimum, number.maximum);
  }
  ShowState();
  ShowMouse();
}

void TFormChooseCrop::ShowRatio() {
  const QScopedValueRollback showing(isShowing_, true);
  const CropRatio& ratio = model_->Ratio();
  SetEntry(*ui_->ComboRatio, static_cast<int>(RatioKind::paper),
           KnowsRatio(model_->Facts(), RatioKind::paper), rsCropNeedsLength);
  ui_->ComboRatio->setCurrentIndex(static_cast<int>(ratio.kind));
  ui_->ButtonSwap->setEnabled(ratio.kind != RatioKind::any && ratio.kind != RatioKind::square);
  ui_->FieldRatioWidth->setValue(ratio.typedWidth);
  ui_->FieldRatioHeight->setValue(ratio.typedHeight);
  ui_->ComboPaper->setCurrentIndex(kSmallestPaper - ratio.paper);
  ui_->FieldScale->setValue(ratio.scale);
  const bool isTyped = showsRatios_ && ratio.kind == RatioKind::typed;
  SetVisible({ui_->LabSides, ui_->FieldRatioWidth, ui_->LabColon, ui_->FieldRatioHeight}, isTyped);
  const bool isPaper = showsRatios_ && ratio.kind == RatioKind::paper;
  SetVisible({ui_->LabPaper, ui_->ComboPaper, ui_->LabScale, ui_->FieldScale}, isPaper);
  ShowState();
}

void TFormChooseCrop::ShowState() {
  const QScopedValueRollback showing(isShowing_, true);
  ui_->SpeedButtonWhole->setEnabled(tool_->CutRectExists());
  ui_->SpeedButtonUndo->setEnabled(tool_->CanUndo());
  ui_->SpeedButtonRedo->setEnabled(tool_->CanRedo());
  for (const auto& [edit, field] : Fields()) {
    edit->setValue(model_->Number(field).value);
    edit->setReadOnly(!model_->MayType(field));
  }
  ui_->LabelSizeValue->setText(ToQt(model_->SizeText()));
  ui_->LabelRatioValue->setText(ToQt(model_->RatioText()));
  ui_->LabelPaperValue->setText(ToQt(model_->PaperText()));
  ui_->LabelMapValue->setText(ToQt(model_->MapText()));
  ui_->LabelRounding->setText(ToQt(model_->RoundingText()));
  ShowLossless();
}

void TFormChooseCrop::ShowMouse() {
  const std::optional<TPoint> corner =
      mouse_ ? tool_->PixelCornerAt(mouse_->X, mouse_->Y) : std::nullopt;
  ui_->LabelMouse->setText(ToQt(model_->MouseText(corner)));
}

void TFormChooseCrop::ShowLossless() {
  if (!isLossless_) return;
  const TRect rect = model_->Rect();
  const bool isLossless =
      isLossless_({rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top});
  ui_->LabelLossless->setText(ResourceText(isLossless ? rsCropLossless : rsCropNotLossless));
}

// Keys that the focused control does not use.
void TFormChooseCrop::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && tool_->CancelDrag()) return;
  if (event->key() == Qt::Key_Delete) return KeepWhole();
  TScaledForm::keyPressEvent(event);
}

}  // namespace rasterkit
