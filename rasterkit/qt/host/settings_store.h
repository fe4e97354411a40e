#pragma once

#include <QString>
#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The settings file of the host: an INI file with sections, keys and texts (UTF-8). A missing or
/// invalid file reads as empty; what cannot be written is lost without an error.
class RASTERKIT_EXPORT SettingsStore {
 public:
  /// `file` is the path of the settings file; empty means DefaultFile().
  explicit SettingsStore(const std::string& file = "");

  /// Returns "rasterkit.ini", or the application's name with that extension, in the user's settings
  /// folder.
  static std::string DefaultFile();

  std::optional<std::string> Read(const std::string& section, const std::string& key) const;
  void Write(const std::string& section, const std::string& key, const std::string& value);

 private:
  QString file_;
};

}  // namespace rasterkit
