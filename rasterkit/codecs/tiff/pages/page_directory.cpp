#include <algorithm>
#include <optional>

#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/page_directory.h>
#include <rasterkit/codecs/tiff/pages/tag_kinds.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/ifd.h>

namespace rasterkit::detail {

namespace {

std::optional<uint64_t> WriteValues(const std::vector<TagValue>& values, const TagValue* pointer,
                                    TagFileWriter& file, Changes& changes) {
  TagMap tags;
  for (const TagValue& value : values) tags.emplace(value.tag, value);
  if (pointer) tags[pointer->tag] = *pointer;
  if (tags.empty()) return std::nullopt;
  return file.WriteDirectory(tags, changes).at;
}

/// Pointers to EXIF directories are plain 32-bit numbers where they fit, as most readers expect.
TagValue PointerTag(uint16_t tag, uint64_t at) {
  if (at <= UINT32_MAX) return LongTag(tag, static_cast<uint32_t>(at));
  TagValue value{tag, TIFF_IFD8, 1, {}};
  for (int i = 0; i < 8; i++) value.bytes.push_back(static_cast<uint8_t>(at >> 8 * i));
  return value;
}

/// The usual type of IPTC records is words of 32 bits, whose bytes stand in the order of the
/// records whatever the order of the file is.
void MakeWords(TagValue& records, bool isBigEndian) {
  constexpr size_t kWordBytes = 4;
  if (records.type != TIFF_UNDEFINED) return;
  std::vector<uint8_t>& bytes = records.bytes;
  bytes.resize((bytes.size() + kWordBytes - 1) / kWordBytes * kWordBytes);
  // They are turned when they are written.
  if (isBigEndian) TurnTagBytes(bytes, TIFF_LONG);
  records.type = TIFF_LONG;
  records.count = bytes.size() / kWordBytes;
}

}  // namespace

void AddPageTags(const PageTags& tags, TagFileWriter& file, TagMap& directory, Changes& changes) {
  for (const TagValue& value : tags.main) directory.emplace(value.tag, value);
  if (const auto records = directory.find(TIFFTAG_RICHTIFFIPTC); records != directory.end()) {
    MakeWords(records->second, file.IsBigEndian());
  }
  if (std::any_of(tags.exif.begin(), tags.exif.end(),
                  [](const TagValue& value) { return value.tag == exif::kMakerNote; })) {
    changes.Note(
        "TIFF: the maker note has another place in the file, so that programs may not "
        "find what it refers to");
  }
  std::optional<TagValue> interop;
  if (const auto at = WriteValues(tags.interop, nullptr, file, changes)) {
    interop = PointerTag(kInteropPointer, *at);
  }
  const TagValue* pointer = interop ? &*interop : nullptr;
  if (const auto at = WriteValues(tags.exif, pointer, file, changes)) {
    directory[TIFFTAG_EXIFIFD] = PointerTag(TIFFTAG_EXIFIFD, *at);
  }
  if (const auto at = WriteValues(tags.gps, nullptr, file, changes)) {
    directory[TIFFTAG_GPSIFD] = PointerTag(TIFFTAG_GPSIFD, *at);
  }
}

}  // namespace rasterkit::detail
