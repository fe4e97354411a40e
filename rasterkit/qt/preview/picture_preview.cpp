#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QVBoxLayout>
#include <cmath>

#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/qt/preview/picture_preview.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// Longest side of the decoded copy, in pixels of the form.
constexpr int kMostSide = 480;
constexpr auto kHurry = std::chrono::milliseconds(120);

/// Paints the background of transparent pixels.
void PaintChecks(QPainter& painter, const QRect& place) {
  constexpr int kSide = 8;
  painter.fillRect(place, Qt::white);
  painter.save();
  painter.setClipRect(place, Qt::IntersectClip);
  for (int y = 0; y * kSide < place.height(); ++y) {
    for (int x = y % 2; x * kSide < place.width(); x += 2) {
      painter.fillRect(place.x() + x * kSide, place.y() + y * kSide, kSide, kSide,
                       QColor(0xD0, 0xD0, 0xD0));
    }
  }
  painter.restore();
}

/// Returns the rectangle in the center of `area` that keeps the picture's proportions and is at
/// most its own size.
QRect PlaceIn(const QRect& area, const QSizeF& picture) {
  const double factor =
      std::min({1.0, area.width() / picture.width(), area.height() / picture.height()});
  const QSize size(std::max(1, static_cast<int>(std::floor(picture.width() * factor))),
                   std::max(1, static_cast<int>(std::floor(picture.height() * factor))));
  return {area.x() + (area.width() - size.width()) / 2,
          area.y() + (area.height() - size.height()) / 2, size.width(), size.height()};
}

}  // namespace

PicturePreview::PicturePreview(QWidget* parent)
    : QWidget(parent), loader_([this](const detail::Preview& preview) { ShowPreview(preview); }) {
  setObjectName("PicturePreview");
  box_ = new TPaintBox(this);
  box_->setAccessibleName(ResourceText(rsPreview));
  box_->setMinimumSize(160, 120);
  box_->OnPaint = [this](TPaintBox&, QPainter& painter) { Paint(painter); };
  text_ = new QLabel(this);
  text_->setObjectName("PreviewText");
  text_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  text_->setWordWrap(true);
  // Room for two lines, so that the picture does not jump from file to file.
  text_->setMinimumHeight(2 * text_->fontMetrics().lineSpacing());
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(box_, 1);
  column->addWidget(text_);
  delay_.setSingleShot(true);
  delay_.setInterval(kHurry);
  connect(&delay_, &QTimer::timeout, this, [this] { Load(); });
}

QSize PicturePreview::sizeHint() const {
  return {240, 240};
}

void PicturePreview::ShowFile(const QString& fileName) {
  if (fileName == fileName_) return;
  fileName_ = fileName;
  loader_.Cancel();
  if (fileName.isEmpty()) {
    delay_.stop();
    ShowText(QString());
  } else {
    delay_.start();
  }
}

void PicturePreview::Load() {
  ShowText(ResourceText(rsPreviewLoading));
  loader_.Load(FromQt(fileName_), qRound(kMostSide * devicePixelRatioF()));
}

void PicturePreview::ShowPreview(const detail::Preview& preview) {
  if (preview.image.isNull()) return ShowText(ResourceText(preview.problem));
  image_ = preview.image;
  image_.setDevicePixelRatio(devicePixelRatioF());
  // Without digit grouping: 1,024 x 768 would look like three numbers.
  text_->setText(QString("%1 × %2").arg(preview.width).arg(preview.height) + '\n' +
                 locale().formattedDataSize(QFileInfo(fileName_).size(), 1));
  box_->update();
}

void PicturePreview::ShowText(const QString& text) {
  image_ = QImage();
  text_->setText(text);
  box_->update();
}

void PicturePreview::Paint(QPainter& painter) const {
  if (image_.isNull()) return;
  const QRect place = PlaceIn(box_->rect(), image_.deviceIndependentSize());
  if (image_.hasAlphaChannel()) PaintChecks(painter, place);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(place, image_);
}

}  // namespace rasterkit
