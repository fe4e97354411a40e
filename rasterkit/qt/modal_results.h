#pragma once

namespace rasterkit {

/// Modal results of the system's dialogs.
inline constexpr int mrOk = 1;
inline constexpr int mrCancel = 2;

}  // namespace rasterkit
