#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit::test {

inline void WriteText(AtomicFile& file, std::string_view text) {
  file.Write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

/// Saves a file and returns the warnings.
inline std::vector<std::string> SaveText(const std::string& name, std::string_view text,
                                         const AtomicFileOptions& options = {}) {
  AtomicFile file(name, options);
  WriteText(file, text);
  file.Commit();
  return file.Warnings();
}

}  // namespace rasterkit::test
