#include <QApplication>
#include <clocale>
#include <optional>
#include <string>

#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/host/runtime/ports.h>
#include <rasterkit/qt/modal_call.h>
#include <rasterkit/qt/qt_host.h>
#include <rasterkit/qt/style.h>
#include <rasterkit/qt/window_settings.h>

namespace rasterkit {
namespace {

/// Qt ends the process where it finds no display; this looks first.
void RequireDisplay() {
#ifdef Q_OS_UNIX
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  const bool needsServer =
      platform.isEmpty() || platform.startsWith("xcb") || platform.startsWith("wayland");
  if (needsServer && qgetenv("DISPLAY").isEmpty() && qgetenv("WAYLAND_DISPLAY").isEmpty()) {
    throw Error("a dialog cannot be shown: there is no display (DISPLAY is not set)");
  }
#endif
}

/// QApplication sets the process's locale, after which the C library writes numbers with the user's
/// decimal comma.
class KeptLocale {
 public:
  KeptLocale()
      : locale_(std::setlocale(LC_ALL, nullptr)), numbers_(setlocale(LC_NUMERIC, nullptr)) {}
  ~KeptLocale() { std::setlocale(LC_ALL, locale_.c_str()); }
  KeptLocale(const KeptLocale&) = delete;
  KeptLocale& operator=(const KeptLocale&) = delete;

  void KeepNumbers() const { std::setlocale(LC_NUMERIC, numbers_.c_str()); }

 private:
  std::string locale_;
  std::string numbers_;
};

/// An application for a host that has none. Qt keeps references to the arguments.
class OwnApplication {
 public:
  OwnApplication() {
    RequireDisplay();
    application_.emplace(argc_, argv_);
    locale_.KeepNumbers();
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStringLiteral("Fusion"));
  }

 private:
  KeptLocale locale_;
  int argc_ = 1;
  char name_[10] = "rasterkit";
  char* argv_[2] = {name_, nullptr};
  std::optional<QApplication> application_;
};

}  // namespace

struct TModalCall::Services {
  Services() {
    if (QCoreApplication::instance() == nullptr) application.emplace();
    host.emplace();
    if (!application) return;
    const std::string style = ReadSetting(kWindowSection, "Style").value_or("");
    if (style == "dark") UsePalette(DarkPalette());
    if (style == "light") UsePalette(LightPalette());
  }

  std::optional<OwnApplication> application;
  std::optional<QtHost> host;
};

TModalCall::TModalCall() : services_(std::make_unique<Services>()) {}

TModalCall::~TModalCall() = default;

}  // namespace rasterkit
