#pragma once

#include <QString>
#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The host's settings file: an INI file of sections with keys and texts (UTF-8). One that is
/// missing or no INI file reads as empty; one that cannot be written loses what is written.
class RASTERKIT_EXPORT SettingsStore {
 public:
  /// `file` is where the settings lie; empty takes DefaultFile.
  explicit SettingsStore(const std::string& file = "");

  /// "rasterkit.ini", or the application's name with that extension, in the user's folder for
  /// settings.
  static std::string DefaultFile();

  std::optional<std::string> Read(const std::string& section, const std::string& key) const;
  void Write(const std::string& section, const std::string& key, const std::string& value);

 private:
  QString file_;
};

}  // namespace rasterkit
