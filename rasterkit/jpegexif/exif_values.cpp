#include <algorithm>
#include <utility>

#include <rasterkit/jpegexif/exif_text.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

/// TIFF field types.
enum FieldType : uint16_t {
  kByte = 1,
  kAscii = 2,
  kShort = 3,
  kLong = 4,
  kRational = 5,
  kSignedByte = 6,
  kUndefined = 7,
  kSignedShort = 8,
  kSignedLong = 9,
  kSignedRational = 10,
};

constexpr size_t kMaxValues = 128;

bool IsInteger(uint16_t fmtType) {
  switch (fmtType) {
    case kByte:
    case kShort:
    case kLong:
    case kSignedByte:
    case kSignedShort:
    case kSignedLong:
      return true;
    default:
      return false;
  }
}

bool IsRational(uint16_t fmtType) {
  return fmtType == kRational || fmtType == kSignedRational;
}

std::string UpToZero(std::string_view bytes) {
  return std::string(bytes.substr(0, bytes.find('\0')));
}

/// Replaces the first "%s" of the template; empty if it has none.
std::string TextInTemplate(const std::string& pattern, const std::string& text) {
  const size_t place = pattern.find("%s");
  return place == std::string::npos ? ""
                                    : pattern.substr(0, place) + text + pattern.substr(place + 2);
}

}  // namespace

void TImageData::FillTagEntry(std::string raw, uint16_t fmtType, int64_t valuePos,
                              int64_t byteCount, TTagEntry& entry) {
  UseRaw = false;
  std::string formatted;
  if (fmtType == kAscii) {
    formatted = Utf8OfBytes(UpToZero(raw));
  } else if (fmtType == kUndefined) {
    formatted = '"' + Utf8OfBytes(UpToZero(raw)) + '"';
  } else {
    formatted = FormatNumber(raw, fmtType, entry.FormatS, entry.Code);
  }
  entry.FmtType = fmtType;
  entry.RawPos = valuePos;
  entry.RawSize = byteCount;
  entry.RawBuff = std::move(raw);
  const bool isDecoded = entry.Tag > 0 && entry.CallBack != nullptr && ExifDecode;
  entry.Inhalt = isDecoded ? entry.CallBack(formatted, entry.Tag, *this) : formatted;
  if (UseRaw) entry.Inhalt = std::move(formatted);
}

int32_t TImageData::GetInt(std::string_view bytes) const {
  uint32_t value = 0;
  for (size_t i = 0; i < bytes.size(); ++i) {
    const size_t place = MotorolaOrder ? i : bytes.size() - 1 - i;
    value = value << 8 | static_cast<uint8_t>(bytes[place]);
  }
  return static_cast<int32_t>(value);
}

double TImageData::GetNumber(std::string_view bytes, uint16_t fmtType) const {
  if (IsInteger(fmtType)) return GetInt(bytes.substr(0, BytesPerType(fmtType)));
  if (!IsRational(fmtType) || bytes.size() < 8) return 0;
  const double numerator = GetInt(bytes.substr(0, 4));
  const double denominator = GetInt(bytes.substr(4, 4));
  return denominator == 0 ? 0 : numerator / denominator;
}

std::string TImageData::FormatNumber(std::string_view bytes, uint16_t fmtType,
                                     const std::string& formatS, const std::string& code) const {
  const auto step = static_cast<size_t>(BytesPerType(fmtType));
  const size_t count = step == 0 ? 0 : std::min(bytes.size() / step, kMaxValues);
  std::string text;
  for (size_t i = 0; i < count; ++i) {
    const std::string_view value = bytes.substr(i * step, step);
    if (i > 0) text += cDataSep;
    if (IsInteger(fmtType)) {
      const std::string number = std::to_string(GetInt(value));
      text += !code.empty() && ExifDecode ? DecodeField(code, number) : number;
    } else if (IsRational(fmtType)) {
      text += std::to_string(GetInt(value.substr(0, 4))) + "/" +
              std::to_string(GetInt(value.substr(4)));
    } else {
      text += '?';
    }
  }
  if (formatS.empty()) return text;
  const bool takesText = formatS.find("%s") != std::string::npos;
  return takesText ? TextInTemplate(formatS, text)
                   : detail::NumberInTemplate(formatS, GetNumber(bytes, fmtType));
}

}  // namespace rasterkit
