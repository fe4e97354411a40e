#include "tool/pictures/exif/exif_section.h"

#include <algorithm>
#include <cstring>

#include <fmt/core.h>

#include <rasterkit/runtime/text.h>

namespace rasterkit::tool {
namespace {

constexpr int64_t kEntryBytes = 12;
/// Limit for damaged and hostile files; no writer comes close to it.
constexpr size_t kMaxDirectories = 16;
constexpr int64_t kMaxNumbersShown = 16;

enum FieldType : uint16_t { fieldAscii = 2, fieldUndefined = 7 };
enum NamedTag : uint16_t {
  tagExifVersion = 36864,
  tagUserComment = 37510,
  tagFlashpixVersion = 40960
};

struct Pointer {
  const char* from;
  uint16_t tag;
  const char* to;
};

constexpr Pointer kPointers[] = {
    {"main", kTagExifDirectory, "exif"},
    {"main", kTagGpsDirectory, "gps"},
    {"exif", kTagInteropDirectory, "interop"},
};

/// Text after the 8-byte character code of a comment, if the code is plain text.
std::string CommentText(const std::string& raw) {
  constexpr size_t kPrefix = 8;
  const bool isPlain =
      raw.compare(0, 5, "ASCII") == 0 || raw.compare(0, kPrefix, std::string(kPrefix, '\0')) == 0;
  if (raw.size() <= kPrefix || !isPlain) return {};
  return Trim(raw.substr(kPrefix));
}

}  // namespace

const ExifEntry* ExifDirectory::Find(uint16_t tag) const {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [tag](const ExifEntry& entry) { return entry.tag == tag; });
  return found == entries.end() ? nullptr : &*found;
}

ExifBlock::ExifBlock(std::string section) : section_(std::move(section)) {
  const std::string order = ByteOrder();
  if (order.empty()) {
    isDamaged_ = true;
    return;
  }
  reader_.MotorolaOrder = order == "MM";
  constexpr int64_t kTiffHeaderBytes = 8;
  const int64_t offset = reader_.Get32u(section_, kExifBase + 4);
  Walk("main", kExifBase + (offset != 0 ? offset : kTiffHeaderBytes));
  FollowPointers();
  FollowLinks();
}

std::string ExifBlock::ByteOrder() const {
  const std::string mark =
      section_.size() > kExifBase ? section_.substr(static_cast<size_t>(kExifBase - 1), 2) : "";
  return mark == "II" || mark == "MM" ? mark : "";
}

void ExifBlock::Walk(const char* name, int64_t start) {
  const auto size = static_cast<int64_t>(section_.size());
  const bool isKnown = std::any_of(directories_.begin(), directories_.end(),
                                   [start](const auto& other) { return other.start == start; });
  if (isKnown || directories_.size() >= kMaxDirectories || start + 1 > size) {
    isDamaged_ = true;
    return;
  }
  ExifDirectory directory;
  directory.name = name;
  directory.start = start;
  const int64_t claimed = reader_.Get16u(section_, start);
  const int64_t count = std::min(claimed, (size - start - 1) / kEntryBytes);
  isDamaged_ = isDamaged_ || count < claimed;
  directory.linkPos = start + 2 + kEntryBytes * claimed;
  for (int64_t i = 0; i < count; ++i) {
    TTagInfo info;
    if (!reader_.GetTagInfo(section_, kExifBase, i, start, info)) continue;
    directory.entries.push_back({info.Tag, info.FmtType, info.ValuePos, info.ByteCount});
    isDamaged_ = isDamaged_ || info.ValuePos + info.ByteCount - 1 > size;
  }
  directories_.push_back(std::move(directory));
}

void ExifBlock::FollowPointers() {
  for (const Pointer& pointer : kPointers) {
    const ExifDirectory* from = Find(pointer.from);
    const ExifEntry* entry = from != nullptr ? from->Find(pointer.tag) : nullptr;
    if (entry != nullptr) Walk(pointer.to, kExifBase + Number(*entry));
  }
}

/// Directories linked after the main one describe the thumbnail.
void ExifBlock::FollowLinks() {
  int64_t linkPos = directories_.empty() ? 0 : directories_.front().linkPos;
  while (linkPos > 0) {
    const int64_t offset = reader_.Get32u(section_, linkPos);
    const size_t before = directories_.size();
    if (offset != 0) Walk(kThumbnailDirectory, kExifBase + offset);
    linkPos = directories_.size() > before ? directories_.back().linkPos : 0;
  }
}

const ExifDirectory* ExifBlock::Find(const char* name) const {
  const auto found = std::find_if(
      directories_.begin(), directories_.end(),
      [name](const auto& directory) { return std::strcmp(directory.name, name) == 0; });
  return found == directories_.end() ? nullptr : &*found;
}

std::string ExifBlock::Raw(const ExifEntry& entry) const {
  const auto size = static_cast<int64_t>(section_.size());
  if (entry.valuePos < 1 || entry.valuePos > size) return {};
  return section_.substr(static_cast<size_t>(entry.valuePos - 1),
                         static_cast<size_t>(std::min(entry.byteCount, size)));
}

uint32_t ExifBlock::Number(const ExifEntry& entry) const {
  const auto bytes = static_cast<size_t>(BytesPerType(entry.type));
  return static_cast<uint32_t>(reader_.GetInt(Raw(entry).substr(0, bytes)));
}

double ExifBlock::Value(const ExifEntry& entry) const {
  return reader_.GetNumber(Raw(entry), entry.type);
}

std::string ExifBlock::Text(const ExifEntry& entry) const {
  std::string raw = Raw(entry);
  if (entry.type == fieldAscii) return Utf8OfBytes(Trim(raw.substr(0, raw.find('\0'))));
  if (entry.type == fieldUndefined) {
    if (entry.tag == tagExifVersion || entry.tag == tagFlashpixVersion) {
      return Utf8OfBytes(raw);
    }
    const std::string comment = entry.tag == tagUserComment ? CommentText(raw) : "";
    return comment.empty() ? fmt::format("{} bytes", entry.byteCount) : Utf8OfBytes(comment);
  }
  const int64_t values = entry.byteCount / std::max(1, BytesPerType(entry.type));
  if (values > kMaxNumbersShown) return fmt::format("{} values", values);
  return reader_.FormatNumber(raw, entry.type, "", "");
}

}  // namespace rasterkit::tool
