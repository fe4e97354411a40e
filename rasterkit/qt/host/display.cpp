#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>
#include <QStringList>
#include <optional>

#include <rasterkit/qt/host/display.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/dynamic_library.h>

namespace rasterkit {
namespace {

const QLatin1String kX11("xcb"), kWayland("wayland");

/// Connects like Qt itself, so that the server name and the user's permission are checked. Null if
/// the server does not answer.
std::shared_ptr<void> ConnectX11() try {
  const DynamicLibrary xcb("xcb", 1, "X11 is not installed", {});
  const std::shared_ptr<void> connection(
      xcb.Entry<void*(const char*, int*)>("xcb_connect")(nullptr, nullptr),
      xcb.Entry<void(void*)>("xcb_disconnect"));
  const bool answers = xcb.Entry<int(void*)>("xcb_connection_has_error")(connection.get()) == 0;
  return answers ? connection : nullptr;
} catch (const Error&) {
  return nullptr;
}

std::shared_ptr<void> ConnectWayland() try {
  const DynamicLibrary wayland("wayland-client", 0, "Wayland is not installed", {});
  void* const connection = wayland.Entry<void*(const char*)>("wl_display_connect")(nullptr);
  if (connection == nullptr) return nullptr;
  return {connection, wayland.Entry<void(void*)>("wl_display_disconnect")};
} catch (const Error&) {
  return nullptr;
}

bool HasKey(const QJsonObject& metaData, const QString& platform) {
  const QJsonArray keys = metaData[QLatin1String("MetaData")][QLatin1String("Keys")].toArray();
  for (const auto& key : keys) {
    if (key.toString().compare(platform, Qt::CaseInsensitive) == 0) return true;
  }
  return false;
}

/// Whether Qt has a plugin for the platform, installed or linked in.
bool IsInstalled(const QString& platform) {
  // That folder is not searched here; Qt may find the plugin in it.
  if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM_PLUGIN_PATH")) return true;
  for (const QStaticPlugin& plugin : QPluginLoader::staticPlugins()) {
    if (HasKey(plugin.metaData(), platform)) return true;
  }
  for (const QString& path : QCoreApplication::libraryPaths()) {
    const QDir folder(path + QLatin1String("/platforms"));
    for (const QString& file : folder.entryList(QDir::Files)) {
      if (HasKey(QPluginLoader(folder.filePath(file)).metaData(), platform)) return true;
    }
  }
  return false;
}

/// Returns nothing if the platform cannot be used. `name` may have arguments after a colon.
std::optional<UsablePlatform> TryPlatform(const QString& name) {
  const QString platform = name.section(QLatin1Char(':'), 0, 0);
  if (!IsInstalled(platform)) return std::nullopt;
  UsablePlatform usable{name.toStdString(), nullptr};
  const bool isX11 = platform.startsWith(kX11);
  if (!isX11 && !platform.startsWith(kWayland)) return usable;
  usable.connection = isX11 ? ConnectX11() : ConnectWayland();
  return usable.connection ? std::optional(usable) : std::nullopt;
}

/// Qt's own choice: Wayland in a Wayland session, except where its windows get no frames.
QStringList DefaultPlatforms() {
  const bool isWayland = qgetenv("XDG_SESSION_TYPE") == "wayland" &&
                         !qgetenv("XDG_CURRENT_DESKTOP").toLower().contains("gnome");
  return isWayland ? QStringList{kWayland, kX11} : QStringList{kX11, kWayland};
}

/// Returns what the user must install or set up.
std::string Missing(const QByteArray& wanted) {
  if (!wanted.isEmpty()) {
    return "none of the platforms that QT_QPA_PLATFORM names (" + wanted.toStdString() +
           ") can be used";
  }
  const QByteArray display = qgetenv("DISPLAY");
  if (!display.isEmpty()) {
    return "the display '" + display.toStdString() + "' (DISPLAY) does not answer";
  }
  const QByteArray wayland = qgetenv("WAYLAND_DISPLAY");
  if (!wayland.isEmpty()) {
    return "the display '" + wayland.toStdString() +
           "' (WAYLAND_DISPLAY) does not answer, or Qt has no plugin for Wayland";
  }
  return "there is no display (DISPLAY is not set)";
}

}  // namespace

UsablePlatform FindPlatform() {
  const QByteArray wanted = qgetenv("QT_QPA_PLATFORM");
  const QStringList names = wanted.isEmpty()
                                ? DefaultPlatforms()
                                : QString::fromLocal8Bit(wanted).split(QLatin1Char(';'));
  for (const QString& name : names) {
    if (const auto platform = TryPlatform(name)) return *platform;
  }
  throw Error("a window cannot be opened: " + Missing(wanted));
}

}  // namespace rasterkit
