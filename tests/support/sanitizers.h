#pragma once

namespace rasterkit::test {

/// Whether this program runs under the address or the thread sanitizer, which take memory of their
/// own and look for libraries on the program's path instead of the caller's.
constexpr bool IsSanitized() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return true;
#elif defined(__has_feature)
  return __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
  return false;
#endif
}

}  // namespace rasterkit::test
