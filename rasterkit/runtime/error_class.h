#pragma once

#include <exception>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The name of an error's class as its users know it, without namespaces: "FormatError".
RASTERKIT_EXPORT std::string ErrorClassName(const std::exception& error);

}  // namespace rasterkit
