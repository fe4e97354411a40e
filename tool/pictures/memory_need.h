#pragma once

#include <cstdint>
#include <string>

namespace rasterkit::tool {

/// Estimates the memory for changing the picture of a file: its rows twice, at 32 bits per pixel,
/// but at most 96 MiB if the rows are read one after another.
/// Reads only the header. 0 if that does not state a size, for metafiles, and for pipes.
uint64_t MemoryNeed(const std::string& file);

}  // namespace rasterkit::tool
