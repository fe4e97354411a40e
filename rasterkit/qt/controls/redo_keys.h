#pragma once

class QKeyEvent;

namespace rasterkit {

/// Whether a key redoes: Ctrl+Y and Ctrl+Shift+Z, of which each desktop has one alone.
bool IsRedo(const QKeyEvent& event);

}  // namespace rasterkit
