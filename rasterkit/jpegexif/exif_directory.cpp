#include <algorithm>
#include <utility>

#include <rasterkit/jpegexif/exif_header.h>
#include <rasterkit/jpegexif/image_data.h>

namespace rasterkit {
namespace {

using detail::kTiffPos;

constexpr int64_t kEntryBytes = 12;
constexpr int64_t kMaxInPlace = 4;
/// Bytes of 128 numbers of 8 bytes, the most that formatting uses.
constexpr int64_t kMaxNumberBytes = 128 * 8;

constexpr char kIllegalDirectory[] = "Illegally sized directory";

std::string DirStackItem(int64_t dirStart, int64_t offsetBase) {
  std::string item("[");
  return item.append(std::to_string(offsetBase))
      .append(":")
      .append(std::to_string(dirStart))
      .append("]");
}

}  // namespace

void TImageData::ProcessExif() {
  if (ExifSegment == nullptr || !ExifData) return;
  if (!detail::IsExifSection(ExifBuff)) {
    ErrStr = "Incorrect Exif header";
    return;
  }
  if (!detail::TakeByteOrder(ExifBuff, *this)) {
    ErrStr = "Invalid Exif alignment marker";
    return;
  }
  effort_ = Effort();
  const int64_t dirStart = detail::MainDirectoryPos(ExifBuff, *this);
  ProcessExifDir(dirStart, kTiffPos, ExifSegment->Size - 6, tagExif);
  if (ExifData->HasThumbnail()) {
    ProcessExifDir(ExifData->ThumbStart + kTiffPos, kTiffPos, ExifData->ThumbLength - 12, tagThumb);
  }
}

void TImageData::ProcessExifDir(int64_t DirStart, int64_t OffsetBase, int64_t ExifLength,
                                TTagType tagType) {
  if (!ExifData) return;
  pushDirStack(DirStart, OffsetBase);
  const int64_t count = Get16u(ExifBuff, DirStart);
  const int64_t linkPos = DirStart + 2 + kEntryBytes * count;
  // The start counts on both sides, so the size of the directory itself is limited. Directories
  // that reach past the end of the section are read up to its end.
  if (linkPos > DirStart + OffsetBase + ExifLength) {
    ErrStr = kIllegalDirectory;
    return;
  }
  if (tagType == tagExif) TakeThumbnailLink(linkPos, OffsetBase, ExifLength);
  for (int64_t i = 0; i < count; ++i) {
    if (--effort_.entries < 0) {
      ErrStr = kIllegalDirectory;
      return;
    }
    TTagInfo info;
    if (!GetTagInfo(ExifBuff, OffsetBase, i, DirStart, info)) continue;
    if (!ProcessEntry(info, OffsetBase, ExifLength, tagType)) return;
  }
}

/// The directory after the first one counts as that of the thumbnail.
void TImageData::TakeThumbnailLink(int64_t linkPos, int64_t OffsetBase, int64_t ExifLength) {
  if (ExifData->ThumbStart != 0 || ExifData->TiffFmt) return;
  ExifData->ThumbStart = Get32s(ExifBuff, linkPos);
  const int64_t length = OffsetBase + ExifLength - ExifData->ThumbStart;
  ExifData->ThumbLength = static_cast<int32_t>(length);
}

bool TImageData::GetTagInfo(std::string_view buff, int64_t OffsetBase, int64_t entryIndex,
                            int64_t DirStart, TTagInfo& info) const {
  const int64_t entryPos = DirStart + 2 + kEntryBytes * entryIndex;
  info.Tag = static_cast<uint16_t>(Get16u(buff, entryPos));
  info.FmtType = static_cast<uint16_t>(Get16u(buff, entryPos + 2));
  info.ByteCount = static_cast<int64_t>(Get32u(buff, entryPos + 4)) * BytesPerType(info.FmtType);
  if (info.ByteCount == 0) return false;
  info.ValuePos = entryPos + 8;
  if (info.ByteCount <= kMaxInPlace) return true;
  const int64_t offset = Get32u(buff, entryPos + 8);
  info.ValuePos = OffsetBase + offset;
  const bool isBeyond = info.ValuePos + info.ByteCount > static_cast<int64_t>(buff.size());
  if (isBeyond) info.ValuePos = offset + kTiffPos;
  return true;
}

/// Decodes one entry if its tag is known; false if the section exceeds the work limits.
bool TImageData::ProcessEntry(const TTagInfo& info, int64_t OffsetBase, int64_t ExifLength,
                              TTagType tagType) {
  const TTagRow* row = detail::FindTagRow(tagType, info.Tag);
  if (row == nullptr) return true;
  std::string raw = RawValue(info);
  effort_.valueBytes -= static_cast<int64_t>(raw.size());
  if (effort_.valueBytes < 0) {
    ErrStr = kIllegalDirectory;
    return false;
  }
  TTagEntry entry;
  entry.TagType = tagType;
  entry.Tag = info.Tag;
  entry.Code = row->Code;
  entry.CallBack = row->CallBack;
  FillTagEntry(std::move(raw), info.FmtType, info.ValuePos, info.ByteCount, entry);
  DispatchEntry(entry, OffsetBase, ExifLength);
  ExifData->AddTagToArray(entry);
  return true;
}

std::string TImageData::RawValue(const TTagInfo& info) const {
  const auto size = static_cast<int64_t>(ExifBuff.size());
  const int64_t there = std::clamp<int64_t>(size + 1 - info.ValuePos, 0, info.ByteCount);
  std::string raw;
  if (there > 0) {
    raw = ExifBuff.substr(static_cast<size_t>(info.ValuePos - 1), static_cast<size_t>(there));
  }
  const int64_t wanted = std::min(info.ByteCount, kMaxNumberBytes);
  if (there < wanted) raw.append(static_cast<size_t>(wanted - there), '\0');
  return raw;
}

void TImageData::DispatchEntry(TTagEntry& entry, int64_t OffsetBase, int64_t ExifLength) {
  switch (entry.TagType) {
    case tagExif:
      switch (entry.Tag) {
        case kTagSubDirectories:
        case kTagExifDirectory:
        case kTagInteropDirectory:
        case kTagGpsDirectory:
          FollowPointer(entry, OffsetBase, ExifLength);
          break;
        default:
          ProcTagExif(entry);
      }
      break;
    case tagGPS:
      ProcTagGPS(entry);
      break;
    case tagThumb:
      if (entry.Tag == kTagCompression) {
        ExifData->ThumbType = static_cast<int32_t>(GetNumber(entry.RawBuff, entry.FmtType));
      }
      break;
    case tagSpec:
      break;
  }
}

void TImageData::FollowPointer(const TTagEntry& entry, int64_t OffsetBase, int64_t ExifLength) {
  const int64_t target = OffsetBase + Get32u(ExifBuff, entry.RawPos);
  if (testDirStack(target, OffsetBase)) return;
  const bool isGps = entry.Tag == kTagGpsDirectory;
  if (isGps) GPSData = std::make_unique<TGPSData>();
  ProcessExifDir(target, OffsetBase, ExifLength, isGps ? tagGPS : tagExif);
}

void TImageData::pushDirStack(int64_t dirStart, int64_t offsetBase) {
  DirStack += DirStackItem(dirStart, offsetBase);
}

bool TImageData::testDirStack(int64_t dirStart, int64_t offsetBase) const {
  return DirStack.find(DirStackItem(dirStart, offsetBase)) != std::string::npos;
}

}  // namespace rasterkit
