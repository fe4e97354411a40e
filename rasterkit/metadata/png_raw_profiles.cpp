#include <algorithm>
#include <iterator>

#include <rasterkit/metadata/png_raw_profiles.h>
#include <rasterkit/metadata/png_texts.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using std::string_view_literals::operator""sv;

constexpr std::string_view kExifPrefix = "Exif\0\0"sv;
constexpr std::string_view kXmpPrefix = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kResourceMark = "8BIM";
/// The resource that holds IPTC records.
constexpr uint8_t kIptcResource[] = {0x04, 0x04};
constexpr uint8_t kIptcMark = 0x1C;

bool StartsWith(Bytes bytes, std::string_view text) {
  return bytes.size() >= text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin(),
                    [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

bool IsExifBlock(Bytes block) {
  return StartsWith(block, "II*\0"sv) || StartsWith(block, "MM\0*"sv);
}

std::vector<uint8_t> CopyOf(Bytes bytes) {
  return {bytes.begin(), bytes.end()};
}

bool TakeExif(Bytes block, Metadata& metadata) {
  if (StartsWith(block, kExifPrefix)) block = block.subspan(kExifPrefix.size());
  if (!IsExifBlock(block)) return false;
  if (metadata.exif.empty()) metadata.exif = CopyOf(block);
  return true;
}

bool TakeXmp(Bytes block, Metadata& metadata) {
  if (StartsWith(block, kXmpPrefix)) block = block.subspan(kXmpPrefix.size());
  if (block.empty() || block[0] == 0) return false;
  if (metadata.xmp.empty()) metadata.xmp.assign(block.begin(), block.end());
  return true;
}

/// The length of the image resource at the start of `blocks`, and the place and size of its data.
struct Resource {
  size_t bytes = 0, dataAt = 0, dataBytes = 0;
};

/// A resource is a mark, a number of two bytes, a name with its length, the size and the data.
/// Name and data take an even number of bytes each.
Resource FirstResource(Bytes blocks) {
  constexpr size_t kNameAt = 6;
  if (!StartsWith(blocks, kResourceMark) || blocks.size() <= kNameAt) return {};
  const size_t nameBytes = (blocks[kNameAt] + size_t{2}) / 2 * 2;
  const size_t sizeAt = kNameAt + nameBytes;
  if (blocks.size() < sizeAt + 4) return {};
  const size_t size = uint32_t{blocks[sizeAt]} << 24 | uint32_t{blocks[sizeAt + 1]} << 16 |
                      uint32_t{blocks[sizeAt + 2]} << 8 | blocks[sizeAt + 3];
  const size_t dataAt = sizeAt + 4;
  if (size > blocks.size() - dataAt) return {};
  return {std::min(dataAt + size + size % 2, blocks.size()), dataAt, size};
}

/// Image resources: the IPTC records stand apart from the others.
bool TakeResources(Bytes blocks, Metadata& metadata) {
  std::vector<uint8_t> others, iptc;
  bool isKnown = false;
  while (!blocks.empty()) {
    const Resource resource = FirstResource(blocks);
    if (resource.bytes == 0) break;
    isKnown = true;
    if (std::equal(std::begin(kIptcResource), std::end(kIptcResource), blocks.begin() + 4)) {
      if (iptc.empty()) iptc = CopyOf(blocks.subspan(resource.dataAt, resource.dataBytes));
    } else {
      const Bytes whole = blocks.first(resource.bytes);
      others.insert(others.end(), whole.begin(), whole.end());
    }
    blocks = blocks.subspan(resource.bytes);
  }
  if (metadata.iptc.empty()) metadata.iptc = std::move(iptc);
  if (metadata.photoshop.empty()) metadata.photoshop = std::move(others);
  return isKnown;
}

bool TakeIptc(Bytes block, Metadata& metadata) {
  if (block.empty() || block[0] != kIptcMark) return TakeResources(block, metadata);
  if (metadata.iptc.empty()) metadata.iptc = CopyOf(block);
  return true;
}

bool TakeProfile(Bytes block, Metadata& metadata) {
  if (block.empty()) return false;
  if (!metadata.profile) {
    metadata.profile = std::make_shared<const std::vector<uint8_t>>(CopyOf(block));
  }
  return true;
}

PictureText TextWith(std::string_view name, Bytes block) {
  PictureText text;
  text.keyword = std::string(kRawProfileKeyword) + std::string(name);
  text.text = RawProfileText(name, block);
  text.isCompressed = true;
  return text;
}

std::vector<uint8_t> IptcResource(Bytes records) {
  std::vector<uint8_t> resource(kResourceMark.begin(), kResourceMark.end());
  resource.insert(resource.end(), std::begin(kIptcResource), std::end(kIptcResource));
  // No name.
  resource.insert(resource.end(), {0, 0});
  for (int shift = 24; shift >= 0; shift -= 8) {
    resource.push_back(static_cast<uint8_t>(records.size() >> shift));
  }
  resource.insert(resource.end(), records.begin(), records.end());
  if (records.size() % 2 != 0) resource.push_back(0);
  return resource;
}

}  // namespace

bool TakeRawProfile(const PictureText& text, Metadata& metadata) {
  if (!text.keyword.starts_with(kRawProfileKeyword)) return false;
  const std::string_view name = std::string_view(text.keyword).substr(kRawProfileKeyword.size());
  const auto block = ReadRawProfile(text.text);
  if (!block) return false;
  if (name == "exif" || name == "APP1") {
    if (TakeExif(*block, metadata)) return true;
    return StartsWith(*block, kXmpPrefix) && TakeXmp(*block, metadata);
  }
  if (name == "xmp") return TakeXmp(*block, metadata);
  if (name == "iptc") return TakeIptc(*block, metadata);
  if (name == "8bim") return TakeResources(*block, metadata);
  if (name == "icc" || name == "icm") return TakeProfile(*block, metadata);
  return false;
}

std::vector<PictureText> RawProfileTexts(const Metadata& metadata) {
  std::vector<PictureText> texts;
  if (!metadata.iptc.empty()) texts.push_back(TextWith("iptc", IptcResource(metadata.iptc)));
  if (!metadata.photoshop.empty()) texts.push_back(TextWith("8bim", metadata.photoshop));
  return texts;
}

}  // namespace rasterkit::detail
