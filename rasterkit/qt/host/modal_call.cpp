#include <QApplication>
#include <QStyle>
#include <clocale>
#include <optional>
#include <string>

#include <rasterkit/qt/forms/window_settings.h>
#include <rasterkit/qt/host/display.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/qt/look/clear_style.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/look/style.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

/// QApplication sets the locale of the process, after which the C library writes numbers with the
/// user's decimal comma.
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

/// An application object for a host without one, on a platform that was checked.
class OwnApplication {
 public:
  OwnApplication() {
    const UsablePlatform platform = FindPlatform();
    platform_ = platform.name;
    argv_[2] = platform_.data();
    application_.emplace(argc_, argv_);
    locale_.KeepNumbers();
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(detail::NewClearStyle().release());
    // Desktops use it to group the windows and to find their icon.
    QApplication::setDesktopFileName(QStringLiteral("rasterkit"));
    QApplication::setWindowIcon(ProgramIcon());
  }

 private:
  KeptLocale locale_;
  // Qt keeps references to the arguments.
  std::string name_ = "rasterkit", option_ = "-platform", platform_;
  int argc_ = 3;
  char* argv_[4] = {name_.data(), option_.data(), nullptr, nullptr};
  std::optional<QApplication> application_;
};

}  // namespace

struct TModalCall::Services {
  Services() {
    if (QCoreApplication::instance() == nullptr) application.emplace();
    host.emplace();
    if (!application) return;
    const std::string style = ReadSetting(kWindowSection, "Style").value_or("");
    // A desktop without its own colors has Qt's, whose selection is pale.
    const bool isPlain = QApplication::palette() == QApplication::style()->standardPalette();
    if (style == "dark") UsePalette(DarkPalette());
    if (style == "light" || (style.empty() && isPlain)) UsePalette(LightPalette());
  }

  std::optional<OwnApplication> application;
  std::optional<QtHost> host;
};

TModalCall::TModalCall() : services_(std::make_unique<Services>()) {}

TModalCall::~TModalCall() = default;

}  // namespace rasterkit
