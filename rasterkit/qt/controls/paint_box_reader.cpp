#include <QAccessibleWidget>

#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/qt/controls/paint_box_reader.h>

namespace rasterkit::detail {
namespace {

class PaintBoxReader : public QAccessibleWidget, public QAccessibleImageInterface {
 public:
  explicit PaintBoxReader(TPaintBox& box) : QAccessibleWidget(&box, QAccessible::Graphic) {}

  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Value) return Box().ContentText();
    QString own = QAccessibleWidget::text(kind);
    if (kind != QAccessible::Description || Box().ContentText().isEmpty()) return own;
    return own.isEmpty() ? Box().ContentText() : Box().ContentText() + ". " + own;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ImageInterface) return static_cast<QAccessibleImageInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }

  // QAccessibleImageInterface
  QString imageDescription() const override { return text(QAccessible::Description); }
  QSize imageSize() const override { return Box().size(); }
  QPoint imagePosition() const override { return Box().mapToGlobal(QPoint()); }

 private:
  const TPaintBox& Box() const { return static_cast<const TPaintBox&>(*widget()); }
};

QAccessibleInterface* ReaderOf(const QString& className, QObject* object) {
  auto* box = qobject_cast<TPaintBox*>(object);
  const bool isMeant = box != nullptr && className == QLatin1String("rasterkit::TPaintBox");
  return isMeant ? new PaintBoxReader(*box) : nullptr;
}

}  // namespace

void TellReadersOfPaintBoxes() {
  QAccessible::installFactory(ReaderOf);
}

}  // namespace rasterkit::detail
