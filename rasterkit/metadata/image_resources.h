#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metadata/metadata.h>
#include <rasterkit/metadata/resolution.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Numbers of image resources.
namespace image_resource {
inline constexpr uint16_t kResolution = 1005, kIptc = 1028, kOldThumbnail = 1033, kThumbnail = 1036,
                          kIptcDigest = 1061;
}

/// One block of Photoshop's image resources.
struct ImageResource {
  /// "8BIM" as a rule.
  std::string signature = "8BIM";
  uint16_t id = 0;
  /// Up to 255 bytes, without length and padding.
  std::string name;
  std::vector<uint8_t> bytes;
};

/// Image resources of a JPEG file's APP13 segments or of TIFF tag 34377, as a value. What cannot be
/// read at the end is kept as it is.
class RASTERKIT_EXPORT ImageResources {
 public:
  ImageResources() = default;
  explicit ImageResources(std::span<const uint8_t> bytes);

  const std::vector<ImageResource>& All() const { return resources_; }
  /// True if bytes at the end are no whole resource.
  bool IsDamaged() const { return !rest_.empty(); }
  /// The first of this number; null if there is none.
  const ImageResource* Find(uint16_t id) const;
  /// Replaces the first of this number, or adds one.
  void Set(uint16_t id, std::vector<uint8_t> bytes);
  void SetFirst(ImageResource resource);
  /// Removes all of this number; true if there was one.
  bool Remove(uint16_t id);
  std::vector<uint8_t> Bytes() const;

 private:
  std::vector<ImageResource> resources_;
  std::vector<uint8_t> rest_;
};

/// Resource 1005; unknown if there is none.
RASTERKIT_EXPORT Resolution ResolutionOf(const ImageResources& resources);
/// Changes resource 1005 if there is one. Its display units stay.
RASTERKIT_EXPORT void FollowResolution(ImageResources& resources, const Resolution& resolution);

/// Separates the IPTC records (1028) from the others into `metadata.iptc` and `.photoshop`.
RASTERKIT_EXPORT void SplitImageResources(std::span<const uint8_t> resources, Metadata& metadata);

/// The reverse: all resources with the IPTC records in front, and a true digest of them (1061) if
/// there was a digest.
RASTERKIT_EXPORT std::vector<uint8_t> JoinImageResources(const Metadata& metadata);

/// Makes the digest (1061) that of the IPTC records, or removes it if there are none. Nothing is
/// added.
RASTERKIT_EXPORT void FollowIptcDigest(ImageResources& resources, std::span<const uint8_t> iptc);

}  // namespace rasterkit
