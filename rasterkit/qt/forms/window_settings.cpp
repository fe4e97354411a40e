#include <QGuiApplication>
#include <QRegion>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include <rasterkit/qt/forms/window_settings.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

std::string NameOf(const QWidget& window, const std::string& name) {
  return name.empty() ? FromQt(window.objectName()) : name;
}

std::optional<int> ReadNumber(const std::string& name, const char* what) {
  const auto text = ReadSetting(kWindowSection, name + "." + what);
  if (!text) return std::nullopt;
  bool isNumber = false;
  const int number = ToQt(*text).toInt(&isNumber);
  // Larger than any desktop; sums of such numbers must not overflow.
  if (!isNumber || std::abs(static_cast<int64_t>(number)) > 1'000'000) return std::nullopt;
  return number;
}

void WriteNumber(const std::string& name, const char* what, int number) {
  WriteSetting(kWindowSection, name + "." + what, std::to_string(number));
}

std::optional<QRect> ReadPlace(const std::string& name) {
  const auto left = ReadNumber(name, "Left");
  const auto top = ReadNumber(name, "Top");
  const auto width = ReadNumber(name, "Width");
  const auto height = ReadNumber(name, "Height");
  if (!left || !top || !width || !height || *width <= 0 || *height <= 0) return std::nullopt;
  return QRect(*left, *top, *width, *height);
}

QList<QRect> Screens() {
  QList<QRect> screens;
  for (const QScreen* screen : QGuiApplication::screens()) screens += screen->availableGeometry();
  return screens;
}

int64_t SharedArea(const QRect& a, const QRect& b) {
  const QRect shared = a & b;
  return static_cast<int64_t>(shared.width()) * shared.height();
}

QRect MoveInto(QRect place, const QRect& screen) {
  place.setSize(place.size().boundedTo(screen.size()));
  place.moveLeft(std::clamp(place.left(), screen.left(), screen.right() + 1 - place.width()));
  place.moveTop(std::clamp(place.top(), screen.top(), screen.bottom() + 1 - place.height()));
  return place;
}

}  // namespace

bool LoadWindowSettings(QWidget& window, const std::string& givenName) {
  const std::string name = NameOf(window, givenName);
  if (name.empty()) return false;
  const std::optional<QRect> place = ReadPlace(name);
  if (!place) return false;
  PlaceWindow(window, *place);
  const bool isMaximized = ReadNumber(name, "Maximized").value_or(0) != 0;
  window.setWindowState(window.windowState().setFlag(Qt::WindowMaximized, isMaximized));
  return true;
}

void SaveWindowSettings(const QWidget& window, const std::string& givenName) {
  const std::string name = NameOf(window, givenName);
  if (name.empty()) return;
  const QRect normal = window.normalGeometry();
  const QRect place = normal.isEmpty() ? window.geometry() : normal;
  WriteNumber(name, "Left", place.left());
  WriteNumber(name, "Top", place.top());
  WriteNumber(name, "Width", place.width());
  WriteNumber(name, "Height", place.height());
  WriteNumber(name, "Maximized", window.isMaximized() ? 1 : 0);
}

void PlaceWindow(QWidget& window, const QRect& place) {
  const int caption = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
  window.setGeometry(BringBack(place, Screens(), caption));
}

QRect BringBack(QRect place, const QList<QRect>& screens, int captionHeight) {
  const QRect withCaption = place.adjusted(0, -captionHeight, 0, 0);
  QRegion desk;
  for (const QRect& screen : screens) desk += screen;
  if (screens.isEmpty() || QRegion(withCaption).subtracted(desk).isEmpty()) return place;
  const auto showsLess = [&](const QRect& a, const QRect& b) {
    return SharedArea(a, withCaption) < SharedArea(b, withCaption);
  };
  const QRect screen = *std::max_element(screens.begin(), screens.end(), showsLess);
  return MoveInto(withCaption, screen).adjusted(0, captionHeight, 0, 0);
}

}  // namespace rasterkit
