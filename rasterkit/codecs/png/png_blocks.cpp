#include <algorithm>
#include <array>
#include <limits>

#include <fmt/format.h>
#include <zlib.h>

#include <rasterkit/codecs/png/png_blocks.h>
#include <rasterkit/codecs/png/png_header.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/stated_facts.h>
#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/metadata/png/png_raw_profiles.h>
#include <rasterkit/metadata/png/png_texts.h>
#include <rasterkit/metadata/xmp/xmp_join.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint32_t kPhysical = PngKind("pHYs"), kSignificant = PngKind("sBIT");
constexpr uint32_t kBackground = PngKind("bKGD"), kHistogram = PngKind("hIST");

void PutLong(std::vector<uint8_t>& bytes, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<uint8_t>(value >> shift));
  }
}

/// Chunks that must stand in front of the palette.
bool IsColorDescription(uint32_t kind) {
  static constexpr std::array kKinds = {PngKind("gAMA"), PngKind("cHRM"), PngKind("sRGB"),
                                        PngKind("cICP"), PngKind("mDCV"), PngKind("cLLI"),
                                        PngKind("sBIT")};
  return std::find(kKinds.begin(), kKinds.end(), kind) != kKinds.end();
}

/// True if the significant bits are those of such samples.
bool HoldsBits(const OtherBlock& chunk, const PngForm& form) {
  const PngSize size{1, 1, form};
  const size_t bands = size.IsPalette() ? 3 : static_cast<size_t>(size.Bands());
  const int most = size.IsPalette() ? 8 : form.bits;
  return chunk.bytes.size() == bands &&
         std::all_of(chunk.bytes.begin(), chunk.bytes.end(),
                     [&](uint8_t bits) { return bits >= 1 && bits <= most; });
}

/// True if such pixels can have the background color.
bool HoldsBackground(const OtherBlock& chunk, const PngBlockRules& rules) {
  const PngSize size{1, 1, rules.form};
  if (size.IsPalette()) return chunk.bytes.size() == 1 && chunk.bytes[0] < rules.paletteEntries;
  if (chunk.bytes.size() != (size.IsGray() ? 2u : 6u)) return false;
  for (size_t i = 0; i < chunk.bytes.size(); i += 2) {
    const int value = chunk.bytes[i] << 8 | chunk.bytes[i + 1];
    if (value >= 1 << rules.form.bits) return false;
  }
  return true;
}

/// No such chunk is a loss: it only helps programs that show the picture.
const char* WhyLeftOut(uint32_t kind) {
  if (kind == kBackground) {
    return "the background color (bKGD) is not written: the new kind of pixels does not have it";
  }
  if (kind == kSignificant) {
    return "the number of significant bits (sBIT) is not written: it describes another kind of "
           "pixels";
  }
  return "the histogram of the palette (hIST) is not written: it counts the old pixels";
}

class BlockMaker {
 public:
  BlockMaker(const Metadata& metadata, const PngBlockRules& rules, Changes& changes)
      : metadata_(metadata), rules_(rules), changes_(changes) {}
  PngBlocks Make();

 private:
  void AddProfile();
  void AddResolution();
  void AddText(const PictureText& text);
  void AddTexts();
  void AddXmp();
  void AddOthers();
  void NameLosses();
  bool Holds(const OtherBlock& chunk) const;

  const Metadata& metadata_;
  const PngBlockRules& rules_;
  Changes& changes_;
  PngBlocks blocks_;
};

void BlockMaker::AddProfile() {
  if (!metadata_.profile || metadata_.profile->empty()) return;
  const PngSize size{1, 1, rules_.form};
  const auto space = size.IsGray() ? ProfileSpace::gray : ProfileSpace::rgb;
  if (!rules_.isCopy && !ProfileFits(metadata_.profile, space)) {
    changes_.Lose(
        LossKind::profile, "ICC profile",
        size.IsGray() ? "it does not describe gray pixels" : "it does not describe RGB pixels");
    return;
  }
  OtherBlock chunk{PngKind("iCCP"), {}, false};
  if (!rules_.sourceProfile.empty() &&
      ProfileOfPngChunk(rules_.sourceProfile) == *metadata_.profile) {
    chunk.bytes.assign(rules_.sourceProfile.begin(), rules_.sourceProfile.end());
  } else {
    constexpr std::string_view kName = "ICC profile";
    chunk.bytes.assign(kName.begin(), kName.end());
    // The end of the name, and the only kind of compression.
    chunk.bytes.insert(chunk.bytes.end(), {0, 0});
    const std::vector<uint8_t> packed = DeflateBytes(*metadata_.profile);
    chunk.bytes.insert(chunk.bytes.end(), packed.begin(), packed.end());
  }
  blocks_.beforePalette.push_back(std::move(chunk));
}

void BlockMaker::AddResolution() {
  if (!metadata_.resolution.IsKnown()) return;
  constexpr uint8_t kMeters = 1;
  OtherBlock chunk{kPhysical, {}, false};
  PutLong(chunk.bytes, DotsPerMeter(metadata_.resolution.x));
  PutLong(chunk.bytes, DotsPerMeter(metadata_.resolution.y));
  chunk.bytes.push_back(kMeters);
  blocks_.beforePixels.push_back(std::move(chunk));
}

void BlockMaker::AddText(const PictureText& text) {
  if (auto chunk = PngTextChunk(text)) {
    blocks_.beforePixels.push_back(std::move(*chunk));
  } else {
    changes_.Lose(LossKind::text, fmt::format("text \"{}\"", text.keyword),
                  "a keyword of a PNG file has 1 to 79 letters of Latin-1");
  }
}

void BlockMaker::AddTexts() {
  for (const PictureText& text : metadata_.texts) AddText(text);
  for (const std::string& comment : metadata_.comments) {
    PictureText text;
    text.keyword = "Comment";
    // Zeros at the end belong to no text, and within a text they end it.
    text.text = Utf8OfBytes(comment.substr(0, comment.find_last_not_of('\0') + 1));
    std::replace(text.text.begin(), text.text.end(), '\0', ' ');
    AddText(text);
  }
  for (const PictureText& text : RawProfileTexts(metadata_)) AddText(text);
}

void BlockMaker::AddXmp() {
  if (metadata_.xmp.empty() && metadata_.extendedXmp.empty()) return;
  PictureText text;
  text.keyword = std::string(kXmpKeyword);
  text.text = metadata_.xmp;
  if (!metadata_.extendedXmp.empty()) {
    if (auto joined = JoinXmp(metadata_.xmp, metadata_.extendedXmp)) {
      text.text = *std::move(joined);
    } else {
      changes_.Lose(LossKind::xmp,
                    fmt::format("extended XMP of {} bytes", metadata_.extendedXmp.size()),
                    "it is damaged and cannot join the packet");
    }
  }
  text.isInternational = true;
  if (!text.text.empty()) AddText(text);
}

bool BlockMaker::Holds(const OtherBlock& chunk) const {
  if (rules_.isCopy) return true;
  if (chunk.kind == kSignificant) return HoldsBits(chunk, rules_.form);
  if (chunk.kind == kBackground) return HoldsBackground(chunk, rules_);
  // It counts the old pixels.
  if (chunk.kind == kHistogram) return false;
  return true;
}

void BlockMaker::AddOthers() {
  for (const OtherBlock& chunk : metadata_.pngChunks) {
    // A shape of pixels without a unit, beside a resolution.
    if (chunk.kind == kPhysical && metadata_.resolution.IsKnown()) continue;
    if (!Holds(chunk)) {
      changes_.Note(WhyLeftOut(chunk.kind));
      continue;
    }
    auto& place = chunk.isBehindPixels             ? blocks_.behindPixels
                  : IsColorDescription(chunk.kind) ? blocks_.beforePalette
                                                   : blocks_.beforePixels;
    place.push_back(chunk);
  }
}

void BlockMaker::NameLosses() {
  for (const OtherBlock& segment : metadata_.jpegSegments) {
    changes_.Lose(
        LossKind::otherBlock,
        fmt::format("JPEG segment APP{} of {} bytes", segment.kind & 15, segment.bytes.size()),
        "a PNG file has no place for it");
  }
  LoseTiffTags(metadata_, "a PNG file", changes_);
}

PngBlocks BlockMaker::Make() {
  AddProfile();
  AddResolution();
  if (!metadata_.exif.empty()) {
    blocks_.beforePixels.push_back({PngKind("eXIf"), metadata_.exif, false});
  }
  AddXmp();
  AddTexts();
  AddOthers();
  NameLosses();
  return std::move(blocks_);
}

}  // namespace

PngBlocks MakePngBlocks(const Metadata& metadata, const PngBlockRules& rules, Changes& changes) {
  return BlockMaker(metadata, rules, changes).Make();
}

void WritePngChunk(TStream& stream, uint32_t kind, Bytes data) {
  if (data.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
    throw LimitError("PNG: a chunk holds at most 2 GiB");
  }
  std::vector<uint8_t> head;
  PutLong(head, static_cast<uint32_t>(data.size()));
  PutLong(head, kind);
  auto sum = crc32(0, head.data() + 4, 4);
  // Without data zlib takes the null pointer for a request to start anew.
  if (!data.empty()) sum = crc32(sum, data.data(), static_cast<uInt>(data.size()));
  std::vector<uint8_t> tail;
  PutLong(tail, static_cast<uint32_t>(sum));
  stream.Write(head);
  if (!data.empty()) stream.Write(data);
  stream.Write(tail);
}

std::vector<uint8_t> ProfileOfPngChunk(Bytes data) {
  const auto zero = std::find(data.begin(), data.end(), 0);
  const auto nameBytes = static_cast<size_t>(zero - data.begin());
  if (nameBytes + 2 > data.size()) return {};
  return InflateBytes(data.subspan(nameBytes + 2)).value_or(std::vector<uint8_t>());
}

}  // namespace rasterkit::detail
