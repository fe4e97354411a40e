#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Returns the bytes of memory that this process may use: those of the machine, or the limit of its
/// control group (version 1 or 2) or of a parent group, whichever is least. Reads files of the
/// system; takes less than a millisecond.
RASTERKIT_EXPORT uint64_t MachineMemory();

}  // namespace rasterkit
