#include "tool/command/size_option.h"

#include <rasterkit/pictures/picture_size.h>

namespace rasterkit::tool {

std::string CheckSize(const std::string& text) {
  return ParseSize(text)
             ? std::string()
             : "a size is WxH, Wx or xH in pixels (800x600, 800x, x600), each from 1 to 1000000, "
               "not '" +
                   text + "'";
}

}  // namespace rasterkit::tool
