#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

constexpr int32_t kMaxSections = 20;
/// If these first sections hold no metadata, the search ends.
constexpr int32_t kSectionsToSearch = 5;
constexpr int32_t kMaxOthers = 5;

/// Characters of an IPTC section that count as text.
std::string PrintablePart(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    if (byte >= 32 && byte <= 122) text += byte;
  }
  return text;
}

}  // namespace

bool TImageData::ReadJpegFile(const std::string& FileName) {
  ResetInfos();
  TFileStream file(FileName);
  try {
    detail::SectionReader reader(file);
    return ReadSections(reader);
  } catch (Error& error) {
    error.AttachFile(FileName);
    throw;
  }
}

bool TImageData::ReadJpegSections(TStream& stream) {
  detail::SectionReader reader(stream);
  const bool result = ReadSections(reader);
  stream.SetPosition(reader.Position());
  return result;
}

bool TImageData::ReadSections(detail::SectionReader& reader) {
  if (reader.ReadByte() != 0xFF || reader.ReadByte() != kMarkerSoi) return false;
  SectionCnt = 0;
  bool sawOthers = false;
  while (SectionCnt < kMaxSections) {
    if (!ReadSection(reader)) break;
    if (SectionCnt == kSectionsToSearch && !HasMetaData()) break;
    if (!DispatchSection(Sections[static_cast<size_t>(SectionCnt)], sawOthers)) break;
  }
  return sawOthers || HasMetaData();
}

/// Reads the next section into the next slot. Returns false if its length is invalid; the slot then
/// stays free.
bool TImageData::ReadSection(detail::SectionReader& reader) {
  uint8_t marker = reader.ReadByte();
  while (marker == 0xFF) marker = reader.ReadByte();
  const int32_t length = reader.ReadWord();
  if (length < 2) return false;
  TSection& section = Sections[static_cast<size_t>(++SectionCnt)];
  section.DType = marker;
  section.Size = length;
  section.Data.clear();
  section.Data.reserve(static_cast<size_t>(length));
  section.Data += static_cast<char>(length >> 8);
  section.Data += static_cast<char>(length & 0xFF);
  reader.Append(section.Data, static_cast<size_t>(length - 2));
  return true;
}

/// Dispatches the last section by its type; false if the picture data begins or the file ends.
bool TImageData::DispatchSection(TSection& section, bool& sawOthers) {
  switch (section.DType) {
    case kMarkerEoi:
    case kMarkerSos:
      return false;
    case kMarkerApp0:
      HeaderSegment = &section;
      break;
    case kMarkerApp1:
      KeepFirstApp1(section);
      break;
    case kMarkerApp2:
    case kMarkerApp12:
    case kMarkerApp14:
      sawOthers = true;
      if (OthersCount < kMaxOthers) OtherSegments[static_cast<size_t>(++OthersCount)] = &section;
      break;
    case kMarkerApp13:
      if (IPTCSegment == nullptr) IPTCSegment = &section;
      break;
    case kMarkerCom:
      CommentSegment = &section;
      break;
    default:
      break;
  }
  return true;
}

/// The first APP1 section counts as the EXIF section even if it holds something else; the slot of a
/// later one is reused.
void TImageData::KeepFirstApp1(TSection& section) {
  if (SectionCnt > kSectionsToSearch || ExifSegment != nullptr) {
    --SectionCnt;
    return;
  }
  ExifSegment = &section;
  ExifData = std::make_unique<TExifData>(FTagTypes);
  ExifBuff = section.Data;
  ProcessExif();
}

void TImageData::ResetInfos() {
  ExifSegment = nullptr;
  IPTCSegment = nullptr;
  CommentSegment = nullptr;
  HeaderSegment = nullptr;
  ExifBuff.clear();
  DirStack.clear();
  ExifData.reset();
  GPSData.reset();
  ErrStr.clear();
}

void TImageData::ClearSections() {
  ExifSegment = nullptr;
  IPTCSegment = nullptr;
  CommentSegment = nullptr;
  OthersCount = 0;
}

bool TImageData::HasMetaData() const {
  return ExifSegment != nullptr || IPTCSegment != nullptr || CommentSegment != nullptr;
}

namespace {

/// The length bytes and the text of a section, each as UTF-8.
std::string SectionText(std::string_view data) {
  constexpr size_t kLengthBytes = 2;
  std::string text;
  for (const char byte : data.substr(0, kLengthBytes)) text += Utf8OfBytes({&byte, 1});
  return data.size() > kLengthBytes ? text + Utf8OfBytes(data.substr(kLengthBytes)) : text;
}

}  // namespace

std::string TImageData::GetComment() const {
  std::string text;
  const auto add = [&text](std::string_view part) {
    if (!text.empty()) text += '\r';
    text += part;
  };
  if (CommentSegment != nullptr) add(SectionText(CommentSegment->Data));
  if (ExifData) add(ExifData->Comments);
  if (IPTCSegment != nullptr) add(PrintablePart(IPTCSegment->Data));
  for (int32_t i = 1; i <= OthersCount; ++i) {
    add(SectionText(OtherSegments[static_cast<size_t>(i)]->Data));
  }
  return text;
}

}  // namespace rasterkit
