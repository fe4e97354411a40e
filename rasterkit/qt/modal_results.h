#pragma once

namespace rasterkit {

/// Modal results of the dialogs.
inline constexpr int mrOk = 1;
inline constexpr int mrCancel = 2;

}  // namespace rasterkit
