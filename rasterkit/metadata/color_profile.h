#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace rasterkit {

/// An ICC profile's bytes, shared and never changed.
using ColorProfile = std::shared_ptr<const std::vector<uint8_t>>;

}  // namespace rasterkit
