#pragma once

#include <optional>

namespace rasterkit {

/// Returns the last rendered resolution in dots per inch from the host's settings; nothing if none
/// is stored or the value is invalid.
std::optional<int> ReadResolution();
void WriteResolution(int dpi);

}  // namespace rasterkit
