#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Returns the absolute path of the worker program: at a fixed place relative to this library, or
/// beside the library in a build tree. Neither the environment nor a search path is consulted.
/// Throws UnsupportedError if there is no program; the message begins with `absent` and names the
/// path.
RASTERKIT_EXPORT std::string WorkerProgram(
    const std::string& absent = "the program that reads untrusted files is not installed");

/// Sets another program, for tests; an empty text restores the normal one.
RASTERKIT_EXPORT void SetWorkerProgram(const std::string& file);

}  // namespace rasterkit::detail
