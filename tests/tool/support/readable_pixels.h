#pragma once

#include <nlohmann/json.hpp>

namespace rasterkit::test {

/// True if `info --verify` decoded a picture, whole or with missing parts.
inline bool HasReadablePixels(const nlohmann::json& facts) {
  return facts.value("verified", false) || !facts.value("damage", nlohmann::json::array()).empty();
}

}  // namespace rasterkit::test
