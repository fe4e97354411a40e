#pragma once

#include <cstdint>
#include <string>

namespace rasterkit {

/// "34.3", with the decimal mark of the texts.
std::string MebibyteText(uint64_t bytes);

}  // namespace rasterkit
