#pragma once

#include <QString>
#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/format_text.h>

namespace rasterkit {

/// A text of the resource table in the user's language, with values in its places.
inline QString FilledText(std::string_view key, const std::vector<std::string>& values) {
  return ToQt(FormatText(ResourceString(key), values));
}

}  // namespace rasterkit
