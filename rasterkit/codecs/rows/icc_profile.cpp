#include <cstring>

#include <rasterkit/codecs/rows/icc_profile.h>

namespace rasterkit::detail {

namespace {

constexpr size_t kHeaderBytes = 128;
constexpr size_t kColorSpaceAt = 16;
constexpr size_t kSignatureAt = 36;

}  // namespace

bool ProfileFits(std::span<const uint8_t> profile, ProfileSpace space) {
  if (profile.size() < kHeaderBytes) return false;
  if (std::memcmp(profile.data() + kSignatureAt, "acsp", 4) != 0) return false;
  constexpr const char* kNames[] = {"GRAY", "RGB ", "CMYK"};
  const char* name = kNames[static_cast<size_t>(space)];
  return std::memcmp(profile.data() + kColorSpaceAt, name, 4) == 0;
}

bool ProfileFits(const ColorProfile& profile, ProfileSpace space) {
  return profile && ProfileFits(std::span(*profile), space);
}

}  // namespace rasterkit::detail
