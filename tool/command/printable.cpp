#include "tool/command/printable.h"

#include "tool/command/json.h"

namespace rasterkit::tool {

std::string Printable(const std::string& text) {
  const std::string quoted = Json(text).Text();
  return quoted.substr(1, quoted.size() - 2);
}

}  // namespace rasterkit::tool
