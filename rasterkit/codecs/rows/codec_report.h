#pragma once

#include <string>
#include <vector>

namespace rasterkit {

/// What a decoder noticed without failing: "JPEG: premature end of data, 120 of 480 rows are
/// complete".
struct CodecReport {
  std::vector<std::string> warnings;
};

}  // namespace rasterkit
