#pragma once

#include <optional>

namespace rasterkit {

/// The resolution in dpi that was rendered last, from the host's settings; nothing when none is
/// kept there, or no sensible one.
std::optional<int> ReadResolution();
void WriteResolution(int dpi);

}  // namespace rasterkit
