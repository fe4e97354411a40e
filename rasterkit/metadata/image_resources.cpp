#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

#include <rasterkit/metadata/ifd.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/md5.h>

namespace rasterkit {
namespace {

constexpr size_t kSignatureBytes = 4;
/// Signature, number, empty name, size.
constexpr size_t kLeastBytes = kSignatureBytes + 2 + 2 + 4;
constexpr std::string_view kSignatures[] = {"8BIM", "8B64", "MeSa", "AgHg", "PHUT", "DCSR"};

class ResourceReader {
 public:
  explicit ResourceReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  size_t At() const { return at_; }

  /// Reads a resource; false if there is no whole one at the position, which then stays.
  bool Next(ImageResource& resource) {
    if (bytes_.size() - at_ < kLeastBytes) return false;
    size_t at = at_;
    resource.signature.assign(bytes_.begin() + Offset(at), bytes_.begin() + Offset(at + 4));
    const auto* known =
        std::find(std::begin(kSignatures), std::end(kSignatures), resource.signature);
    if (known == std::end(kSignatures)) return false;
    const detail::OrderedBytes numbers(bytes_, true);
    resource.id = numbers.Word(at + kSignatureBytes);
    at += kSignatureBytes + 2;
    const size_t nameBytes = bytes_[at];
    // Length byte and name take an even number of bytes.
    const size_t behindName = at + (nameBytes + 2) / 2 * 2;
    if (behindName + 4 > bytes_.size()) return false;
    resource.name.assign(bytes_.begin() + Offset(at + 1),
                         bytes_.begin() + Offset(at + 1 + nameBytes));
    const size_t size = numbers.Long(behindName);
    at = behindName + 4;
    if (size > bytes_.size() - at) return false;
    resource.bytes.assign(bytes_.begin() + Offset(at), bytes_.begin() + Offset(at + size));
    // Some writers leave out the padding of the last one.
    at_ = std::min(at + size + size % 2, bytes_.size());
    return true;
  }

 private:
  static std::ptrdiff_t Offset(size_t at) { return static_cast<std::ptrdiff_t>(at); }

  std::span<const uint8_t> bytes_;
  size_t at_ = 0;
};

void AppendNumber(std::vector<uint8_t>& bytes, uint32_t value, int count) {
  for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<uint8_t>(value >> shift));
  }
}

void Append(std::vector<uint8_t>& bytes, const ImageResource& resource) {
  bytes.insert(bytes.end(), resource.signature.begin(), resource.signature.end());
  AppendNumber(bytes, resource.id, 2);
  bytes.push_back(static_cast<uint8_t>(resource.name.size()));
  bytes.insert(bytes.end(), resource.name.begin(), resource.name.end());
  if (resource.name.size() % 2 == 0) bytes.push_back(0);
  AppendNumber(bytes, static_cast<uint32_t>(resource.bytes.size()), 4);
  bytes.insert(bytes.end(), resource.bytes.begin(), resource.bytes.end());
  if (resource.bytes.size() % 2 != 0) bytes.push_back(0);
}

/// Resolutions are fixed-point numbers of 16 and 16 bits, per inch whatever unit is displayed.
constexpr double kFixedOne = 65536;
constexpr size_t kHorizontalAt = 0, kVerticalAt = 8, kResolutionBytes = 16;

uint32_t FixedOf(double dpi) {
  return static_cast<uint32_t>(std::clamp(std::round(dpi * kFixedOne), 0.0, 4294967295.0));
}

}  // namespace

ImageResources::ImageResources(std::span<const uint8_t> bytes) {
  ResourceReader reader(bytes);
  ImageResource resource;
  while (reader.Next(resource)) resources_.push_back(resource);
  const auto rest = bytes.subspan(reader.At());
  const bool isPadding = std::all_of(rest.begin(), rest.end(), [](uint8_t b) { return b == 0; });
  if (!isPadding) rest_.assign(rest.begin(), rest.end());
}

const ImageResource* ImageResources::Find(uint16_t id) const {
  const auto found = std::find_if(resources_.begin(), resources_.end(),
                                  [id](const ImageResource& one) { return one.id == id; });
  return found == resources_.end() ? nullptr : &*found;
}

void ImageResources::Set(uint16_t id, std::vector<uint8_t> bytes) {
  const auto found = std::find_if(resources_.begin(), resources_.end(),
                                  [id](const ImageResource& one) { return one.id == id; });
  if (found != resources_.end()) {
    found->bytes = std::move(bytes);
    return;
  }
  ImageResource added;
  added.id = id;
  added.bytes = std::move(bytes);
  resources_.push_back(std::move(added));
}

void ImageResources::SetFirst(ImageResource resource) {
  resources_.insert(resources_.begin(), std::move(resource));
}

bool ImageResources::Remove(uint16_t id) {
  return std::erase_if(resources_, [id](const ImageResource& one) { return one.id == id; }) > 0;
}

std::vector<uint8_t> ImageResources::Bytes() const {
  std::vector<uint8_t> bytes;
  for (const ImageResource& resource : resources_) Append(bytes, resource);
  bytes.insert(bytes.end(), rest_.begin(), rest_.end());
  return bytes;
}

Resolution ResolutionOf(const ImageResources& resources) {
  const ImageResource* found = resources.Find(image_resource::kResolution);
  if (found == nullptr || found->bytes.size() < kResolutionBytes) return {};
  const detail::OrderedBytes numbers(found->bytes, true);
  const Resolution stated = {numbers.Long(kHorizontalAt) / kFixedOne,
                             numbers.Long(kVerticalAt) / kFixedOne};
  return stated.IsKnown() ? stated : Resolution{};
}

void FollowResolution(ImageResources& resources, const Resolution& resolution) {
  const ImageResource* found = resources.Find(image_resource::kResolution);
  if (found == nullptr) return;
  if (!resolution.IsKnown() || found->bytes.size() < kResolutionBytes) {
    resources.Remove(image_resource::kResolution);
    return;
  }
  std::vector<uint8_t> bytes = found->bytes;
  detail::PutLong(bytes, kHorizontalAt, FixedOf(resolution.x), true);
  detail::PutLong(bytes, kVerticalAt, FixedOf(resolution.y), true);
  resources.Set(image_resource::kResolution, std::move(bytes));
}

void SplitImageResources(std::span<const uint8_t> resources, Metadata& metadata) {
  ImageResources kept(resources);
  constexpr uint8_t kRecord = 0x1C;
  for (const ImageResource& resource : kept.All()) {
    if (resource.id != image_resource::kIptc) continue;
    const auto first = std::find(resource.bytes.begin(), resource.bytes.end(), kRecord);
    metadata.iptc.insert(metadata.iptc.end(), first, resource.bytes.end());
  }
  if (!metadata.iptc.empty()) kept.Remove(image_resource::kIptc);
  metadata.photoshop = kept.Bytes();
}

void FollowIptcDigest(ImageResources& resources, std::span<const uint8_t> iptc) {
  if (resources.Find(image_resource::kIptcDigest) == nullptr) return;
  if (iptc.empty()) {
    resources.Remove(image_resource::kIptcDigest);
    return;
  }
  const auto digest = detail::Md5(iptc);
  resources.Set(image_resource::kIptcDigest, {digest.begin(), digest.end()});
}

std::vector<uint8_t> JoinImageResources(const Metadata& metadata) {
  ImageResources all(metadata.photoshop);
  if (all.Find(image_resource::kIptc) == nullptr) {
    FollowIptcDigest(all, metadata.iptc);
    if (!metadata.iptc.empty()) {
      ImageResource records;
      records.id = image_resource::kIptc;
      records.bytes = metadata.iptc;
      all.SetFirst(std::move(records));
    }
  }
  return all.Bytes();
}

}  // namespace rasterkit
