#include "tool/command/printable.h"

#include <nlohmann/json.hpp>

namespace rasterkit::tool {

std::string Printable(const std::string& text) {
  using nlohmann::json;
  const std::string quoted = json(text).dump(-1, ' ', false, json::error_handler_t::replace);
  return quoted.substr(1, quoted.size() - 2);
}

}  // namespace rasterkit::tool
