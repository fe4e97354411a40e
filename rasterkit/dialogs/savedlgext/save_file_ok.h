#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Returns whether the file may be written: true if it does not exist; otherwise the user is asked
/// (the port `confirmation`), and only Yes gives true. Runs on the thread that owns the application
/// object; throws Error if the question cannot be shown.
RASTERKIT_EXPORT bool SaveFileOK(const std::string& fileName);

}  // namespace rasterkit
