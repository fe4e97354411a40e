#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// Whether two rows of `count` pixels B G R A have the same colors; alpha takes no part. Reading
/// ends soon after the first difference.
bool EqualColors32(const uint8_t* a, const uint8_t* b, size_t count);

}  // namespace rasterkit::kernels
