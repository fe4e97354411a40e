#pragma once

#include <cstddef>

#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Returns how many files this process can have open at a time.
RASTERKIT_EXPORT size_t MostOpenFiles();

}  // namespace rasterkit::detail
