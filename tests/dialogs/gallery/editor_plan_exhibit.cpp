#include <QPainter>
#include <QPdfWriter>
#include <QTemporaryDir>
#include <cmath>
#include <utility>

#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>
#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/qt/pdf/qt_pdf.h>
#include <rasterkit/qt/qt_text.h>

#include "tests/dialogs/gallery/editor_exhibits.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

/// Millimeters of an A4 page that lies on its side.
constexpr QRectF kSheet(0, 0, 297, 210);

void DrawTitleBlock(QPainter& painter, int page, const char* title) {
  painter.setPen(QPen(Qt::black, 0.7));
  painter.drawRect(kSheet.adjusted(10, 10, -10, -10));
  const QRectF block(197, 170, 90, 30);
  painter.fillRect(block, Qt::white);
  painter.drawRect(block);
  painter.setPen(QPen(Qt::black, 0.3));
  painter.drawLine(QPointF(197, 185), QPointF(287, 185));
  QFont font("DejaVu Sans");
  font.setPixelSize(6);
  painter.setFont(font);
  painter.drawText(QRectF(201, 170, 84, 15), Qt::AlignVCenter, QString::fromUtf8(title));
  font.setPixelSize(5);
  painter.setFont(font);
  painter.drawText(QRectF(201, 185, 84, 15), Qt::AlignVCenter,
                   QStringLiteral("Scale 1 : 500    Sheet %1 of 3").arg(page));
}

/// Building plots along a road, with houses on them.
void DrawSite(QPainter& painter) {
  const QRectF ground(11, 11, 275, 188);
  painter.setClipRect(ground);
  painter.fillRect(ground, QColor(238, 243, 229));
  const QPolygonF road({{11, 120}, {90, 112}, {170, 84}, {286, 70}});
  painter.setPen(QPen(QColor(140, 140, 140), 13, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.drawPolyline(road);
  painter.setPen(QPen(QColor(252, 252, 248), 12, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.drawPolyline(road);
  for (int i = 0; i < 7; ++i) {
    const double x = 24 + 36 * i, y = 92 - 7.5 * i;
    painter.setPen(QPen(QColor(90, 90, 90), 0.25, Qt::DashLine));
    painter.drawLine(QPointF(x - 6, y - 60), QPointF(x - 6, y + 14));
    painter.setPen(QPen(QColor(80, 40, 30), 0.5));
    painter.setBrush(QColor(222, 150, 120));
    const QRectF house(x, y - 30, 22, 17);
    painter.drawRect(house);
    painter.drawLine(QPointF(house.left(), house.center().y()),
                     QPointF(house.right(), house.center().y()));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Qt::black);
    QFont font("DejaVu Sans");
    font.setPixelSize(4);
    painter.setFont(font);
    painter.drawText(QPointF(x + 5, y - 8), QStringLiteral("%1/%2").arg(214 + i).arg(i + 1));
  }
  painter.setPen(QPen(QColor(60, 110, 160), 0.35));
  for (int i = 0; i < 9; ++i) {
    QPolygonF line;
    for (int x = 11; x <= 286; x += 5)
      line << QPointF(x, 135 + 6 * i + 6 * std::sin((x + 14 * i) / 38.0));
    painter.drawPolyline(line);
  }
  painter.setClipping(false);
}

void DrawSection(QPainter& painter, int page) {
  painter.setPen(QPen(QColor(60, 60, 60), 0.5));
  for (int i = 0; i < 8; ++i) painter.drawRect(QRectF(30 + 28 * i, 60 + 4 * page * i, 22, 80));
}

/// A plan of three sheets; the file lives as long as the process.
std::string PlanFile() {
  static const QTemporaryDir folder;
  const QString name = folder.filePath("site plan.pdf");
  QPdfWriter writer(name);
  writer.setPageSize(QPageSize(QPageSize::A4));
  writer.setPageOrientation(QPageLayout::Landscape);
  writer.setPageMargins({});
  QPainter painter(&writer);
  for (int page = 1; page <= 3; ++page) {
    if (page > 1) writer.newPage();
    painter.resetTransform();
    painter.scale(writer.width() / kSheet.width(), writer.height() / kSheet.height());
    if (page == 1)
      DrawSite(painter);
    else
      DrawSection(painter, page);
    DrawTitleBlock(painter, page, page == 1 ? "Site plan Riverside" : "Section");
  }
  return FromQt(name);
}

const Exhibit kPlan("edit-pdf", [] {
  UseQtPdfInProcess();
  auto form = std::make_unique<TFormEditPdfBmp>();
  SetSizeOfExhibit(*form);
  static const std::string plan = PlanFile();
  form->Model().SetOrgFilename(plan);
  form->Model().SetBmpFilename(plan + ".png");
  return form;
});

/// Three sheets that the user of `editor` does not wait for.
class SlowPlan : public PdfDocument {
 public:
  explicit SlowPlan(EditPdfBmpModel& editor) : editor_(editor) {}

  void LoadFromFile(const std::string&, const std::string&) override {}
  int PageCount() const override { return 3; }
  PdfPageSize PageSize(int) const override { return {841.89, 595.28}; }
  bool ExportPage(int, double, PdfRotation, TBitmap&, const PdfKeepGoing&) override {
    editor_.NaviResultCancelClick();
    return false;
  }

 private:
  EditPdfBmpModel& editor_;
};

/// The window while the first page is rendered.
const Exhibit kRendering("edit-rendering", [] {
  auto form = std::make_unique<TFormEditPdfBmp>();
  SetSizeOfExhibit(*form);
  PdfDocumentMaker before = std::exchange(
      PdfDocumentFactory(), [&form] { return std::make_unique<SlowPlan>(form->Model()); });
  form->Model().SetOrgFilename("/plans/site plan.pdf");
  PdfDocumentFactory() = std::move(before);
  for (QWidget* const widget : form->findChildren<QWidget*>())
    if (widget->focusPolicy() != Qt::NoFocus && widget->objectName() != QLatin1String("nbCancel"))
      widget->setEnabled(false);
  form->findChild<QWidget*>("PanelRendering")->show();
  return form;
});

}  // namespace
}  // namespace rasterkit::test
