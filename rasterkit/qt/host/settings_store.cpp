#include <QCoreApplication>
#include <QSettings>
#include <QStandardPaths>

#include <rasterkit/qt/host/settings_store.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

/// Replaces slashes, which would start a subsection.
QString Name(const std::string& section, const std::string& key) {
  QString name = ToQt(key);
  name.replace(u'/', u'_');
  return ToQt(section) + u'/' + name;
}

}  // namespace

SettingsStore::SettingsStore(const std::string& file)
    : file_(ToQt(file.empty() ? DefaultFile() : file)) {}

std::string SettingsStore::DefaultFile() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  QString name = QCoreApplication::applicationName();
  if (name.isEmpty()) name = QStringLiteral("rasterkit");
  return FromQt(folder + u'/' + name + QStringLiteral(".ini"));
}

std::optional<std::string> SettingsStore::Read(const std::string& section,
                                               const std::string& key) const {
  const QSettings settings(file_, QSettings::IniFormat);
  const QVariant value = settings.value(Name(section, key));
  if (!value.isValid()) return std::nullopt;
  // A text with a comma that was edited by hand is read as a list.
  return FromQt(value.toStringList().join(QStringLiteral(", ")));
}

void SettingsStore::Write(const std::string& section, const std::string& key,
                          const std::string& value) {
  QSettings settings(file_, QSettings::IniFormat);
  settings.setValue(Name(section, key), ToQt(value));
}

}  // namespace rasterkit
