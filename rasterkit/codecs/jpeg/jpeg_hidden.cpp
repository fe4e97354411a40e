#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_hidden.h>
#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_coding;
using namespace jpeg_marker;
using std::string_view_literals::operator""sv;

constexpr uint16_t kEntriesTag = 0xB002;
constexpr size_t kIndexEntryBytes = 16;
/// More pictures than this are not looked at: each one is walked.
constexpr size_t kMostIndexPictures = 64, kMostBehind = 64;
/// Type of an index picture: 0x01.... for previews of the picture in several sizes.
constexpr uint32_t kTypeMask = 0xFFFFFF, kPreviewMask = 0xFF0000, kPreview = 0x010000;

struct Reader {
  Bytes bytes;
  bool isBig = false;

  bool Has(size_t at, size_t count) const {
    return at <= bytes.size() && count <= bytes.size() - at;
  }
  uint32_t Number(size_t at, size_t count) const {
    uint32_t value = 0;
    for (size_t i = 0; i < count; i++) {
      value = value << 8 | bytes[at + (isBig ? i : count - 1 - i)];
    }
    return value;
  }
};

/// The entries of the index; `start` is the place of the byte-order mark in the payload.
std::vector<JpegIndexPicture> EntriesOf(const Reader& reader, size_t start) {
  const auto at = [&](size_t offset) { return start + offset; };
  std::vector<JpegIndexPicture> pictures;
  if (!reader.Has(at(4), 4)) return {};
  const size_t directory = at(reader.Number(at(4), 4));
  if (!reader.Has(directory, 2)) return {};
  const size_t entries = reader.Number(directory, 2);
  for (size_t i = 0; i < entries; i++) {
    const size_t entry = directory + 2 + 12 * i;
    if (!reader.Has(entry, 12)) return {};
    if (reader.Number(entry, 2) != kEntriesTag) continue;
    const size_t count =
        std::min<size_t>(reader.Number(entry + 4, 4) / kIndexEntryBytes, kMostIndexPictures);
    size_t place = at(reader.Number(entry + 8, 4));
    for (size_t k = 0; k < count && reader.Has(place, kIndexEntryBytes); k++) {
      pictures.push_back({reader.Number(place, 4), reader.Number(place + 4, 4),
                          reader.Number(place + 8, 4), place + 4, place + 8});
      place += kIndexEntryBytes;
    }
    break;
  }
  return pictures;
}

std::string SizeText(uint64_t bytes) {
  constexpr double kMega = 1e6, kKilo = 1e3;
  const auto number = static_cast<double>(bytes);
  if (number >= kMega) return fmt::format("{:.1f} MB", number / kMega);
  if (number >= kKilo) return fmt::format("{:.1f} kB", number / kKilo);
  return fmt::format("{} bytes", bytes);
}

bool Contains(Bytes bytes, std::string_view text) {
  return std::search(bytes.begin(), bytes.end(), text.begin(), text.end(),
                     [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); }) != bytes.end();
}

/// True if the segments of a picture say that it brightens another one.
bool IsGainMap(const JpegParts& parts) {
  for (const JpegSegment& part : parts.head) {
    if (!IsApplication(part.marker)) continue;
    for (const std::string_view name :
         {"hdr-gain-map"sv, "HDRGainMap"sv, "hdrgm:"sv, "urn:iso:std:iso:ts:21496"sv}) {
      if (Contains(part.payload, name)) return true;
    }
  }
  return false;
}

/// A JPEG picture at the start of some bytes.
struct Picture {
  std::string size = "unknown size";
  size_t bytes = 0;
  bool isGainMap = false, isWhole = false;
};

Picture PictureAt(Bytes bytes) {
  Picture picture;
  picture.bytes = bytes.size();
  try {
    JpegParts parts = ReadJpegHead(bytes);
    for (const JpegSegment& part : parts.head) {
      if (!IsFrame(part.marker) || part.payload.size() < 6) continue;
      picture.size = fmt::format("{} x {} pixels", part.payload[3] << 8 | part.payload[4],
                                 part.payload[1] << 8 | part.payload[2]);
      break;
    }
    picture.isGainMap = IsGainMap(parts);
    ReadJpegScans(bytes, parts);
    picture.bytes = parts.end;
    picture.isWhole = parts.hasEndMarker;
  } catch (const FormatError&) {
    // Its bytes are counted.
  }
  return picture;
}

/// Bytes that cameras write to fill a file up.
bool IsPadding(Bytes bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; }) ||
         std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0xFF; });
}

class Finder {
 public:
  Finder(Bytes file, const JpegParts& parts) : file_(file), parts_(parts) {}

  JpegHidden Find() {
    for (const JpegSegment& part : parts_.head) FindInSegment(part);
    FindIndexed();
    FindBehind();
    return std::move(found_);
  }

 private:
  void FindInSegment(const JpegSegment& part) {
    const Bytes payload = part.payload;
    constexpr size_t kJfifThumbnailAt = 12;
    const JpegBlock block = BlockOf(part);
    if (block == JpegBlock::jfif && payload.size() > kJfifThumbnailAt + 1 &&
        payload[kJfifThumbnailAt] != 0 && payload[kJfifThumbnailAt + 1] != 0) {
      found_.copies.push_back(fmt::format("thumbnail of the JFIF header of {} x {} pixels",
                                          payload[kJfifThumbnailAt],
                                          payload[kJfifThumbnailAt + 1]));
    } else if (block == JpegBlock::jfxx) {
      found_.copies.push_back("thumbnail of the JFXX segment of " + SizeText(payload.size()));
    }
  }

  void FindIndexed() {
    const JpegIndex index = ReadJpegIndex(file_, parts_);
    for (const JpegIndexPicture& entry : index.pictures) {
      const uint64_t at = uint64_t{index.start} + entry.offset;
      if (entry.offset == 0 || at < parts_.end || at >= file_.size()) continue;
      const Bytes rest = file_.subspan(static_cast<size_t>(at));
      const Picture picture = PictureAt(rest.first(std::min<size_t>(rest.size(), entry.bytes)));
      known_.emplace_back(static_cast<size_t>(at), static_cast<size_t>(at) + picture.bytes);
      const bool isPreview = (entry.attributes & kPreviewMask) == kPreview;
      if (picture.isGainMap) {
        found_.others.push_back("gain map of " + picture.size);
      } else if (isPreview) {
        found_.copies.push_back("preview of " + picture.size);
      } else {
        found_.others.push_back((entry.attributes & kTypeMask) == 0
                                    ? "further picture of " + picture.size
                                    : "other view of " + picture.size);
      }
    }
  }

  /// Names what is after the end marker and not in the index.
  void FindBehind() {
    std::sort(known_.begin(), known_.end());
    size_t at = parts_.end;
    for (const auto& [start, end] : known_) {
      if (start > at) NameGap(file_.subspan(at, start - at));
      at = std::max(at, end);
    }
    if (at < file_.size()) NameGap(file_.subspan(at));
  }

  void NameGap(Bytes gap) {
    for (size_t i = 0; i < kMostBehind && !gap.empty() && !IsPadding(gap); i++) {
      const auto isFiller = [](uint8_t byte) { return byte == 0; };
      const auto first = std::find_if_not(gap.begin(), gap.end(), isFiller);
      gap = gap.subspan(static_cast<size_t>(first - gap.begin()));
      if (!StartsWith(gap, "\xFF\xD8\xFF")) break;
      const Picture picture = PictureAt(gap);
      found_.others.push_back((picture.isGainMap ? "gain map of " : "further picture of ") +
                              picture.size);
      gap = gap.subspan(std::max<size_t>(picture.bytes, 3));
    }
    if (gap.empty() || IsPadding(gap)) return;
    const std::string size = SizeText(gap.size());
    found_.others.push_back(Contains(gap, "ftyp") ? "video of " + size
                                                  : size + " after the end of the picture");
  }

  const Bytes file_;
  const JpegParts& parts_;
  JpegHidden found_;
  /// Ranges of the pictures of the index.
  std::vector<std::pair<size_t, size_t>> known_;
};

}  // namespace

JpegIndex ReadJpegIndex(Bytes file, const JpegParts& parts) {
  for (size_t i = 0; i < parts.head.size(); i++) {
    const JpegSegment& segment = parts.head[i];
    if (BlockOf(segment) != JpegBlock::mpf) continue;
    JpegIndex index;
    const size_t mark = segment.payload.size() - BlockBytes(segment).size();
    index.part = i;
    index.start = PlaceOf(segment, file) + mark;
    index.isBigEndian = HasTextAt(segment.payload, mark, "MM");
    if (!index.isBigEndian && !HasTextAt(segment.payload, mark, "II")) return {};
    index.pictures = EntriesOf({segment.payload, index.isBigEndian}, mark);
    return index;
  }
  return {};
}

JpegHidden FindHidden(Bytes file, const JpegParts& parts) {
  return Finder(file, parts).Find();
}

}  // namespace rasterkit::detail
