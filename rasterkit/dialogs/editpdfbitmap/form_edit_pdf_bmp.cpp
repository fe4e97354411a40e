#include <QCloseEvent>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QScreen>
#include <QToolButton>
#include <QUrl>
#include <QWheelEvent>
#include <cstdlib>
#include <utility>

#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

#include "ui_form_edit_pdf_bmp.h"

namespace rasterkit {
namespace {

constexpr QSize kLeastSize(775, 775);
/// In milliseconds; a page that is rendered faster shows no message.
constexpr int kPauseBeforeProgress = 250;
constexpr int kNotch = 120;

/// Returns the first local file that is dropped; empty if there is none.
QString FileIn(const QMimeData& data) {
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) return url.toLocalFile();
  }
  return {};
}

}  // namespace

TFormEditPdfBmp::TFormEditPdfBmp(QWidget* parent)
    : TScaledForm(parent), ui_(std::make_unique<Ui::FormEditPdfBmp>()) {
  SetUpForm(*ui_);
  DressButtons();
  // The tool calls this handler after its own painting, so the frame is over the picture.
  ui_->PaintBoxPdf->OnPaint = [](TPaintBox& box, QPainter& painter) { box.PaintFocus(painter); };
  fBmpCutRect = std::make_unique<TBmpCutRect>(ui_->PaintBoxPdf, ui_->LabelSizeValue);
  model_ = std::make_unique<EditPdfBmpModel>(static_cast<EditPdfBmpView&>(*this), *fBmpCutRect);
  ConnectButtons();
  ConnectBoxes();
  ConnectPicture();
  WatchKeyboard();
  KeepMinimumSize();
  progressDelay_.setSingleShot(true);
  progressDelay_.setInterval(kPauseBeforeProgress);
  connect(&progressDelay_, &QTimer::timeout, ui_->PanelRendering, &QWidget::show);
  // The panel around it is gray in every style.
  ui_->PanelRendering->setBackgroundRole(QPalette::Base);
  setWindowState(Qt::WindowMaximized);
  ui_->PaintBoxPdf->setFocus();
}

TFormEditPdfBmp::~TFormEditPdfBmp() {
  // A box that loses the focus calls the model, which must exist then.
  hide();
  TFormEditPdfBmp::ShowHourglass(false);
}

int TFormEditPdfBmp::ShowEditor(std::function<void()> onShown) {
  if (onShown) QMetaObject::invokeMethod(this, Guarded(std::move(onShown)), Qt::QueuedConnection);
  if (!model_->ModalResult()) ShowModal();
  return model_->ModalResult().value_or(mrCancel);
}

void TFormEditPdfBmp::DressButtons() {
  const std::pair<QToolButton*, const char*> drawings[] = {
      {ui_->SpeedButtonOpen, "open"},
      {ui_->SpeedButtonViewZoom, "fit"},
      {ui_->SpeedButtonViewOrig, "actual-size"},
      {ui_->SpeedButtonMirror, "mirror"},
      {ui_->SpeedButtonGrayScale, "grayscale"},
      {ui_->SpeedButtonBlackWhite, "black-white"},
      {ui_->SpeedButton256Colors, "colors-256"},
      {ui_->SpeedButtonCut, "crop"},
      {ui_->SpeedButtonEdit, "edit-values"},
      {ui_->SpeedButtonSave, "save"}};
  for (const auto& [button, drawing] : drawings) {
    button->setIcon(Icon(drawing));
    const QString keys = button->shortcut().toString(QKeySequence::NativeText);
    if (!keys.isEmpty()) button->setToolTip(button->toolTip() + " (" + keys + ")");
  }
}

void TFormEditPdfBmp::ConnectButtons() {
  using Handler = void (EditPdfBmpModel::*)();
  const std::pair<QToolButton*, Handler> handlers[] = {
      {ui_->SpeedButtonOpen, &EditPdfBmpModel::SpeedButtonOpenClick},
      {ui_->SpeedButtonViewZoom, &EditPdfBmpModel::SpeedButtonViewZoomClick},
      {ui_->SpeedButtonViewOrig, &EditPdfBmpModel::SpeedButtonViewOrigClick},
      {ui_->SpeedButtonMirror, &EditPdfBmpModel::SpeedButtonMirrorClick},
      {ui_->SpeedButtonGrayScale, &EditPdfBmpModel::SpeedButtonGrayScaleClick},
      {ui_->SpeedButtonBlackWhite, &EditPdfBmpModel::SpeedButtonBlackWhiteClick},
      {ui_->SpeedButton256Colors, &EditPdfBmpModel::SpeedButton256ColorsClick},
      {ui_->SpeedButtonCut, &EditPdfBmpModel::SpeedButtonCutClick},
      {ui_->SpeedButtonEdit, &EditPdfBmpModel::SpeedButtonEditClick},
      {ui_->SpeedButtonSave, &EditPdfBmpModel::SpeedButtonSaveClick}};
  for (const auto& [button, handler] : handlers) {
    connect(button, &QToolButton::clicked, this, [this, handler = handler] {
      TellIfCtrlIsHeld();
      (*model_.*handler)();
    });
  }
  connect(ui_->NaviResult, &TNavigator::postClicked, this,
          [this] { model_->NaviResultPostClick(); });
  connect(ui_->NaviResult, &TNavigator::cancelClicked, this,
          [this] { model_->NaviResultCancelClick(); });
  connect(ui_->NaviResult, &TNavigator::helpClicked, this,
          [this] { model_->NaviResultHelpClick(); });
}

void TFormEditPdfBmp::ConnectBoxes() {
  using Handler = void (EditPdfBmpModel::*)(const std::string&);
  const std::pair<QComboBox*, Handler> handlers[] = {
      {ui_->CoBoResolution, &EditPdfBmpModel::CoBoResolutionChange},
      {ui_->CoBoRotation, &EditPdfBmpModel::CoBoRotationChange}};
  for (const auto& [box, handler] : handlers) {
    // A number must not be completed to one in the list.
    box->setCompleter(nullptr);
    // Leaving the box must not select an entry.
    disconnect(box->lineEdit(), &QLineEdit::editingFinished, box, nullptr);
    connect(box, &QComboBox::editTextChanged, this,
            [this, handler = handler](const QString& text) { (*model_.*handler)(FromQt(text)); });
    // Choosing from the list ends the typing.
    connect(box, &QComboBox::activated, this, [this, box = box, handler = handler] {
      model_->CoBoExit();
      (*model_.*handler)(FromQt(box->currentText()));
    });
  }
  connect(ui_->SpinEditPage, &QSpinBox::valueChanged, this,
          [this](int page) { model_->SpinEditPageChange(page); });
  // A file that is dropped on a field is opened by the window.
  for (QLineEdit* line : findChildren<QLineEdit*>()) line->setAcceptDrops(false);
}

void TFormEditPdfBmp::ConnectPicture() {
  TPaintBox& box = *ui_->PaintBoxPdf;
  box.OnResize = [this](TPaintBox&) { model_->FormResize(); };
  box.OnKeyDown = [this](TPaintBox& sender, QKeyEvent& event) {
    fBmpCutRect->OnKeyDown(sender, event);
  };
  box.setContextMenuPolicy(Qt::CustomContextMenu);
  connect(&box, &QWidget::customContextMenuRequested, this, &TFormEditPdfBmp::ShowPictureMenu);
}

void TFormEditPdfBmp::ShowPictureMenu(const QPoint& place) {
  QMenu menu;
  const auto add = [&](std::string_view text, const char* drawing, const char* keys, bool enabled) {
    QAction* action = menu.addAction(Icon(drawing), ResourceText(text));
    action->setShortcut(QKeySequence(QLatin1String(keys)));
    action->setEnabled(enabled);
    return action;
  };
  const QAction* undo = add(rsCropUndo, "undo", "Ctrl+Z", model_->CanUndo());
  const QAction* size = add(rsEditSize, "", "Ctrl+H", model_->WorkBitmap() != nullptr);
  const QAction* whole = add(rsEditWhole, "picture", "Del", fBmpCutRect->GetCutRectExists());
  const QAction* chosen = menu.exec(ui_->PaintBoxPdf->mapToGlobal(place));
  if (chosen == undo) model_->Undo();
  if (chosen == size) model_->FormKeyDown(EditKey::h, true);
  if (chosen == whole) model_->FormKeyDown(EditKey::del, false);
  // No key is held.
  model_->FormKeyUp();
}

bool TFormEditPdfBmp::event(QEvent* event) {
  if (event->type() == QEvent::LayoutRequest) KeepMinimumSize();
  if (event->type() == QEvent::WindowActivate && model_) {
    // The key was released while another window had the keyboard.
    if (!QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier)) model_->FormKeyUp();
    model_->FormActivate();
  }
  return TScaledForm::event(event);
}

/// Longer texts need more room, and a small screen has less.
void TFormEditPdfBmp::KeepMinimumSize() {
  const QSize least = kLeastSize.boundedTo(screen()->availableGeometry().size());
  setMinimumSize(least.expandedTo(layout()->totalMinimumSize()));
}

void TFormEditPdfBmp::wheelEvent(QWheelEvent* event) {
  const QPoint point = ui_->PaintBoxPdf->mapFromGlobal(event->globalPosition()).toPoint();
  // The deltas of finer wheels and touch pads are added up to a notch.
  for (wheelRest_ += event->angleDelta().y(); std::abs(wheelRest_) >= kNotch;) {
    const int notch = wheelRest_ > 0 ? kNotch : -kNotch;
    wheelRest_ -= notch;
    model_->FormMouseWheel(notch, {point.x(), point.y()});
  }
  event->accept();
}

void TFormEditPdfBmp::closeEvent(QCloseEvent* event) {
  model_->FormClose();
  event->setAccepted(model_->ModalResult().has_value());
}

void TFormEditPdfBmp::dragEnterEvent(QDragEnterEvent* event) {
  if (model_->IsRendering() || FileIn(*event->mimeData()).isEmpty()) return event->ignore();
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void TFormEditPdfBmp::dropEvent(QDropEvent* event) {
  const std::string file = FromQt(FileIn(*event->mimeData()));
  event->setDropAction(Qt::CopyAction);
  event->accept();
  // The program from which the file comes waits for the end of this event.
  QMetaObject::invokeMethod(
      this, [this, file] { model_->FormDropFile(file); }, Qt::QueuedConnection);
}

}  // namespace rasterkit
