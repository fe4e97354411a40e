#include <algorithm>

#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/png/png_raw_profiles.h>
#include <rasterkit/metadata/png/png_texts.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using std::string_view_literals::operator""sv;

constexpr std::string_view kExifPrefix = "Exif\0\0"sv;
constexpr std::string_view kXmpPrefix = "http://ns.adobe.com/xap/1.0/\0"sv;
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

/// Image resources: the IPTC records stand apart from the others.
bool TakeResources(Bytes blocks, Metadata& metadata) {
  if (ImageResources(blocks).All().empty()) return false;
  Metadata parts;
  SplitImageResources(blocks, parts);
  if (metadata.iptc.empty()) metadata.iptc = std::move(parts.iptc);
  if (metadata.photoshop.empty()) metadata.photoshop = std::move(parts.photoshop);
  return true;
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
  ImageResources resources;
  resources.Set(image_resource::kIptc, CopyOf(records));
  return resources.Bytes();
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
