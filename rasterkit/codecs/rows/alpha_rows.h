#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::detail {

/// Sets the alpha of `width` pixels B G R A to 255.
void MakeOpaque(uint8_t* row, size_t width);

/// True if any of `width` pixels B G R A has an alpha that is not 0.
bool HasAnyAlpha(const uint8_t* row, size_t width);

}  // namespace rasterkit::detail
