#pragma once

#include <QString>
#include <string>

#include <rasterkit/strings/strings.h>

/// Converts between UTF-8 and QString.
namespace rasterkit {

inline QString ToQt(const std::string& utf8) {
  return QString::fromStdString(utf8);
}

inline std::string FromQt(const QString& text) {
  return text.toStdString();
}

/// Returns a text of the resource table in the user's language.
inline QString ResourceText(std::string_view key) {
  return ToQt(ResourceString(key));
}

}  // namespace rasterkit
