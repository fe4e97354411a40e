#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/look/style.h>

// Without this call, a program that links the archive would not contain the drawings.
static void LoadDrawings() {
  Q_INIT_RESOURCE(icons);
}

namespace rasterkit {
namespace {

/// The colors of the drawings and their replacements on a dark background.
struct Ink {
  const char* onLight;
  const char* onDark;
};
constexpr Ink kInks[] = {
    {"#37474f", "#dfe6ea"},
    {"#2e7d32", "#8fd694"},
    {"#c62828", "#ff9a92"},
    {"#1565c0", "#8cc2ff"},
};

constexpr double kPaleness = 0.4;

QByteArray InColorsOfStyle(QByteArray drawing) {
  if (!IsDark(QGuiApplication::palette())) return drawing;
  for (const Ink& ink : kInks) drawing.replace(ink.onLight, ink.onDark);
  return drawing;
}

/// Renders the drawing at each size in the colors of the current palette.
class DrawingEngine : public QIconEngine {
 public:
  explicit DrawingEngine(QByteArray drawing) : drawing_(std::move(drawing)) {}

  void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override {
    QSvgRenderer renderer(InColorsOfStyle(drawing_));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    painter->save();
    if (mode == QIcon::Disabled) painter->setOpacity(painter->opacity() * kPaleness);
    renderer.render(painter, place);
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }

  QIconEngine* clone() const override { return new DrawingEngine(*this); }

 private:
  QByteArray drawing_;
};

QIcon IconOf(const QString& drawing) {
  LoadDrawings();
  QFile file(drawing);
  if (!file.open(QIODevice::ReadOnly)) return {};
  // The icon owns its engine.
  return QIcon(std::make_unique<DrawingEngine>(file.readAll()).release());
}

}  // namespace

QIcon Icon(const QString& name) {
  return IconOf(":/rasterkit/icons/" + name + ".svg");
}

QIcon ProgramIcon() {
  return IconOf(QStringLiteral(":/rasterkit/program.svg"));
}

}  // namespace rasterkit
