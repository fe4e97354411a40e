#include <string>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {

uint64_t PictureMemoryLimit() {
  return CurrentLimits().pictureBytes;
}

void SetPictureMemoryLimit(uint64_t bytes) {
  Limits limits = DefaultLimits();
  limits.pictureBytes = bytes;
  SetDefaultLimits(limits);
}

void RequirePicture(uint64_t width, uint64_t height, uint64_t bytes, std::string_view what) {
  RequirePictureSize(width, height, what);
  RequirePictureMemory(bytes, what);
}

void RequirePictureMemory(uint64_t bytes, std::string_view what) {
  const uint64_t allowed = PictureMemoryLimit();
  if (bytes <= allowed) return;
  throw LimitError(LimitKind::pictureBytes, std::string(what) + " needs " + std::to_string(bytes) +
                                                " bytes, the limit is " + std::to_string(allowed) +
                                                " bytes");
}

}  // namespace rasterkit
