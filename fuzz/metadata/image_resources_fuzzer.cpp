// Reads any bytes as image resources; written and read again they must be the same.

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/metadata/image_resources.h>

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace rasterkit;
  const std::span<const uint8_t> bytes(data, size);
  ImageResources resources(bytes);
  const std::vector<uint8_t> written = resources.Bytes();
  Require(written.size() <= size + 2);
  Require(ImageResources(written).Bytes() == written);
  Metadata metadata;
  SplitImageResources(bytes, metadata);
  const ImageResources joined(JoinImageResources(metadata));
  Require(metadata.iptc.empty() || joined.Find(image_resource::kIptc) != nullptr);
  ResolutionOf(resources);
  FollowResolution(resources, {300, 200});
  if (resources.Find(image_resource::kResolution) != nullptr) {
    Require(ResolutionOf(resources) == Resolution{300, 200});
  }
  return 0;
}
