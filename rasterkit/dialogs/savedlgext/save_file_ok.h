#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Whether the file may be written: true when there is none of the name; else the user is asked
/// (the port `confirmation`), and only Yes gives true. Runs on the thread that owns the application
/// object; throws Error where nobody can be asked.
RASTERKIT_EXPORT bool SaveFileOK(const std::string& fileName);

}  // namespace rasterkit
