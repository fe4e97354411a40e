#include <QGridLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include <rasterkit/dialogs/saving/compare_view.h>
#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

/// Pixels that an arrow key moves the view by; with Shift ten times as far.
constexpr int kKeyStep = 16, kShiftFactor = 10;

void PaintChecks(QPainter& painter, const QRect& place) {
  constexpr int kSide = 8;
  painter.fillRect(place, Qt::white);
  for (int y = 0; y * kSide < place.height(); ++y) {
    for (int x = y % 2; x * kSide < place.width(); x += 2) {
      const QRect square(place.x() + x * kSide, place.y() + y * kSide, kSide, kSide);
      painter.fillRect(square.intersected(place), QColor(0xD0, 0xD0, 0xD0));
    }
  }
}

}  // namespace

CompareView::CompareView(QWidget* parent) : QWidget(parent) {
  setObjectName("CompareView");
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  boxBefore_ = MakeBox("ViewBefore", labelBefore_, "LabViewBefore");
  boxAfter_ = MakeBox("ViewAfter", labelAfter_, "LabViewAfter");
  labelBefore_->setText(ResourceText(rsSavingViewBefore));
  labelAfter_->setText(ResourceText(rsSavingViewAfter));
  boxBefore_->setAccessibleName(ResourceText(rsSavingViewBefore).remove(u'&'));
  boxAfter_->setAccessibleName(ResourceText(rsSavingViewAfter).remove(u'&'));
  boxBefore_->setToolTip(ResourceText(rsSavingViewBeforeHint));
  boxAfter_->setToolTip(ResourceText(rsSavingViewAfterHint));
  boxBefore_->setAccessibleDescription(ResourceText(rsSavingViewBeforeHint));
  boxAfter_->setAccessibleDescription(ResourceText(rsSavingViewAfterHint));
  labelPart_ = new QLabel(this);
  labelPart_->setObjectName("LabViewPart");
  grid->addWidget(labelBefore_, 0, 0);
  grid->addWidget(labelAfter_, 0, 1);
  grid->addWidget(boxBefore_, 1, 0);
  grid->addWidget(boxAfter_, 1, 1);
  grid->addWidget(labelPart_, 2, 0, 1, 2);
  grid->setRowStretch(1, 1);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(1, 1);
}

QSize CompareView::sizeHint() const {
  return {520, 320};
}

TPaintBox* CompareView::MakeBox(const char* name, QLabel*& label, const char* labelName) {
  label = new QLabel(this);
  label->setObjectName(labelName);
  label->setWordWrap(true);
  auto* box = new TPaintBox(this);
  label->setBuddy(box);
  box->setObjectName(name);
  box->setFocusPolicy(Qt::StrongFocus);
  box->setMinimumSize(160, 160);
  box->setCursor(Qt::OpenHandCursor);
  box->OnMouseDown = [this](TPaintBox&, QMouseEvent& event) { Press(event); };
  box->OnMouseMove = [this](TPaintBox&, QMouseEvent& event) { Drag(event); };
  box->OnKeyDown = [this](TPaintBox&, QKeyEvent& event) { Key(event); };
  box->OnResize = [this](TPaintBox&) { Resize(); };
  return box;
}

void CompareView::SetModel(SavingModel& model) {
  model_ = &model;
  boxBefore_->OnPaint = [this](TPaintBox& box, QPainter& painter) {
    if (model_ != nullptr) Paint(box, painter, model_->Before());
  };
  boxAfter_->OnPaint = [this](TPaintBox& box, QPainter& painter) {
    if (model_ != nullptr) Paint(box, painter, model_->After());
  };
}

void CompareView::ShowParts() {
  if (model_ == nullptr) return;
  labelAfter_->setText(ToQt(model_->AfterText()));
  labelPart_->setText(ToQt(model_->PartText()));
  boxBefore_->SetContentText(ToQt(model_->PartText()));
  boxAfter_->SetContentText(ToQt(model_->PartText()));
  boxBefore_->update();
  boxAfter_->update();
}

void CompareView::Paint(TPaintBox& box, QPainter& painter, const ShownPart& part) const {
  const PartOfPicture viewed = model_->ViewedPart();
  painter.fillRect(box.rect(), palette().color(QPalette::Mid));
  if (part.pixels != nullptr && viewed.width > 0) {
    const QRect inside =
        QRect(viewed.left, viewed.top, viewed.width, viewed.height)
            .intersected({part.place.left, part.place.top, part.place.width, part.place.height});
    QImage image = ImageOfPart(*part.pixels, inside.translated(-part.place.left, -part.place.top));
    if (!image.isNull()) {
      // A pixel of the picture is a pixel of the screen.
      image.setDevicePixelRatio(Scale());
      const QSizeF shown = image.deviceIndependentSize();
      const QPointF at((inside.left() - viewed.left) / Scale(),
                       (inside.top() - viewed.top) / Scale());
      if (image.hasAlphaChannel()) PaintChecks(painter, QRectF(at, shown).toAlignedRect());
      painter.drawImage(at, image);
    }
  }
  box.PaintFocus(painter);
}

void CompareView::Resize() {
  if (model_ == nullptr || !isVisible()) return;
  // Both views show the same part.
  const QSize size = boxBefore_->size().boundedTo(boxAfter_->size());
  model_->ResizeView(static_cast<int>(std::ceil(size.width() * Scale())),
                     static_cast<int>(std::ceil(size.height() * Scale())));
}

void CompareView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Resize();
}

void CompareView::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  if (model_ != nullptr) model_->ResizeView(0, 0);
}

void CompareView::Press(QMouseEvent& event) {
  dragged_ = event.position();
}

void CompareView::Drag(QMouseEvent& event) {
  if (model_ == nullptr || (event.buttons() & Qt::LeftButton) == 0) return;
  const QPointF moved = (dragged_ - event.position()) * Scale();
  const QPoint whole(static_cast<int>(moved.x()), static_cast<int>(moved.y()));
  if (whole.isNull()) return;
  dragged_ -= QPointF(whole) / Scale();
  model_->PanView(whole.x(), whole.y());
}

void CompareView::Key(QKeyEvent& event) {
  if (model_ == nullptr) return;
  const int step =
      event.modifiers().testFlag(Qt::ShiftModifier) ? kKeyStep * kShiftFactor : kKeyStep;
  switch (event.key()) {
    case Qt::Key_Left:
      return model_->PanView(-step, 0);
    case Qt::Key_Right:
      return model_->PanView(step, 0);
    case Qt::Key_Up:
      return model_->PanView(0, -step);
    case Qt::Key_Down:
      return model_->PanView(0, step);
    default:
      event.ignore();
  }
}

}  // namespace rasterkit::detail
