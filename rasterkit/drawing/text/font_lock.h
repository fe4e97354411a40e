#pragma once

#include <shared_mutex>

namespace rasterkit::detail {

/// cairo opens a font's file once for all threads, and takes care of what it does with it itself.
/// Who looks into an open font beside cairo holds this lock alone; who lets cairo draw letters
/// shares it.
inline std::shared_mutex& OpenFonts() {
  static std::shared_mutex mutex;
  return mutex;
}

}  // namespace rasterkit::detail
