#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

uint64_t SaturatedProduct(uint64_t a, uint64_t b) {
  constexpr uint64_t kMost = std::numeric_limits<uint64_t>::max();
  return a != 0 && b > kMost / a ? kMost : a * b;
}

void RequirePlausible(const SizeClaim& claim, std::string_view what) {
  const Limits limits = CurrentLimits();
  if (!limits.refuseImplausible) return;
  if (claim.memory <= std::min(limits.pictureBytes, kAlwaysPlausible)) return;
  if (SaturatedProduct(claim.fileBytes, claim.unitsPerByte) >= claim.units) return;
  const uint64_t least = claim.units / claim.unitsPerByte + (claim.units % claim.unitsPerByte != 0);
  throw FormatError(fmt::format(
      "{}: the file is far too small to hold it: {} bytes of data instead of at least {}", what,
      claim.fileBytes, least));
}

}  // namespace rasterkit::detail
