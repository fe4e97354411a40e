#pragma once

#include <shared_mutex>

namespace rasterkit::detail {

/// Returns the lock of open fonts. cairo opens a font file once for all threads and guards only its
/// own use of it. Code that looks into an open font without cairo locks exclusively; code that lets
/// cairo draw letters locks shared.
inline std::shared_mutex& OpenFonts() {
  static std::shared_mutex mutex;
  return mutex;
}

}  // namespace rasterkit::detail
