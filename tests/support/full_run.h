#pragma once

#include <cstdlib>

namespace rasterkit::test {

/// True in the long run of the tests (environment variable RASTERKIT_FULL=1): large sizes, many
/// more cases.
inline bool IsFullRun() {
  const char* value = std::getenv("RASTERKIT_FULL");
  return value != nullptr && *value == '1';
}

}  // namespace rasterkit::test
