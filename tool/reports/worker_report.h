#pragma once

#include <string>

namespace rasterkit::tool {

/// How untrusted files are read on this machine, a line each: the worker program's path, the
/// version of the kernel's Landlock, and whether system calls are filtered. Starts the program
/// once.
std::string WorkerReport();

}  // namespace rasterkit::tool
