#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/metadata/edit/date_text.h>
#include <rasterkit/metadata/edit/exif_value_text.h>
#include <rasterkit/metadata/ifd.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using std::string_view_literals::operator""sv;

enum Type : uint16_t {
  typeByte = 1,
  typeText = 2,
  typeWord = 3,
  typeLong = 4,
  typeRational = 5,
  typeUndefined = 7,
  typeSignedRational = 10,
};

constexpr size_t kEncodingBytes = 8;
constexpr std::string_view kAscii = "ASCII\0\0\0"sv, kUnicode = "UNICODE\0"sv;

struct Fraction {
  int64_t numerator = 0, denominator = 1;
};

void Append(std::vector<uint8_t>& bytes, uint64_t value, size_t count) {
  for (size_t i = 0; i < count; ++i) bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
}

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  std::string word;
  for (const char letter : text) {
    if (letter != ' ' && letter != ',' && letter != '\t') {
      word += letter;
    } else if (!word.empty()) {
      words.push_back(std::move(word));
      word.clear();
    }
  }
  if (!word.empty()) words.push_back(std::move(word));
  return words;
}

template <typename Number>
std::optional<Number> NumberOf(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  Number number{};
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && last == end && !text.empty() ? std::optional(number)
                                                              : std::nullopt;
}

uint64_t WholeNumber(const std::string& text, uint64_t most) {
  const auto number = NumberOf<int64_t>(text);
  if (!number) throw RangeError("\"" + text + "\" is no whole number");
  if (*number < 0 || static_cast<uint64_t>(*number) > most) {
    throw RangeError(fmt::format("{} is outside 0 to {}", text, most));
  }
  return static_cast<uint64_t>(*number);
}

/// The decimal number as a fraction, exact where its parts have room.
Fraction FractionOfDecimal(double value, int64_t most) {
  constexpr int64_t kTen = 10, kMostDenominator = 1'000'000'000;
  Fraction best = {std::llround(value), 1};
  for (int64_t denominator = 1; denominator <= std::min(most, kMostDenominator);
       denominator *= kTen) {
    const double scaled = value * static_cast<double>(denominator);
    if (std::abs(scaled) > static_cast<double>(most)) break;
    best = {std::llround(scaled), denominator};
    constexpr double kPrecision = 1e-12;
    if (std::abs(scaled - std::round(scaled)) <= kPrecision * std::max(1.0, std::abs(scaled))) {
      break;
    }
  }
  const int64_t common = std::gcd(best.numerator, best.denominator);
  return common == 0 ? best : Fraction{best.numerator / common, best.denominator / common};
}

Fraction ReadFraction(const std::string& text, bool isSigned) {
  const int64_t most =
      isSigned ? std::numeric_limits<int32_t>::max() : std::numeric_limits<uint32_t>::max();
  Fraction fraction;
  if (const size_t slash = text.find('/'); slash != std::string::npos) {
    const auto above = NumberOf<int64_t>(std::string_view(text).substr(0, slash));
    const auto below = NumberOf<int64_t>(std::string_view(text).substr(slash + 1));
    if (!above || !below) throw RangeError("\"" + text + "\" is no fraction such as 1/125");
    if (*below <= 0) throw RangeError("\"" + text + "\" has no number above 0 below its line");
    fraction = {*above, *below};
  } else {
    const auto number = NumberOf<double>(text);
    if (!number || !std::isfinite(*number)) throw RangeError("\"" + text + "\" is no number");
    if (std::abs(*number) > static_cast<double>(most)) {
      throw RangeError(fmt::format("{} is larger than {}", text, most));
    }
    fraction = FractionOfDecimal(*number, most);
  }
  if (!isSigned && fraction.numerator < 0) throw RangeError("\"" + text + "\" is below 0");
  // The least number of 64 bits has no absolute value.
  if (fraction.numerator < -most || fraction.numerator > most || fraction.denominator > most) {
    throw RangeError(fmt::format("{} has parts larger than {}", text, most));
  }
  return fraction;
}

void Append(std::vector<uint8_t>& bytes, const Fraction& fraction) {
  Append(bytes, static_cast<uint64_t>(fraction.numerator), 4);
  Append(bytes, static_cast<uint64_t>(fraction.denominator), 4);
}

/// Checks UTF-8 and gives its UTF-16 units.
std::u16string Utf16Of(std::string_view text) {
  std::u16string units;
  for (size_t at = 0; at < text.size();) {
    const auto first = static_cast<uint8_t>(text[at]);
    const size_t more = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    char32_t code = more == 0 ? first : first & (0x3F >> more);
    for (size_t i = 1; i <= more; ++i) {
      code = code << 6 | (static_cast<uint8_t>(text[at + i]) & 0x3F);
    }
    at += more + 1;
    constexpr char32_t kPlane = 0x10000;
    if (code >= kPlane) {
      units += static_cast<char16_t>(0xD800 + ((code - kPlane) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((code - kPlane) & 0x3FF));
    } else {
      units += static_cast<char16_t>(code);
    }
  }
  return units;
}

void RequireText(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) throw RangeError("the text has a zero in it");
  if (Utf8OfBytes(text) != text) throw RangeError("the text is no UTF-8");
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char letter) { return static_cast<uint8_t>(letter) < 0x80; });
}

void SetText(TagValue& value, std::string_view text) {
  RequireText(text);
  value.type = typeText;
  value.bytes.assign(text.begin(), text.end());
  value.bytes.push_back(0);
}

void SetComment(TagValue& value, std::string_view text, bool isBigEndian) {
  RequireText(text);
  value.type = typeUndefined;
  const std::string_view name = IsAscii(text) ? kAscii : kUnicode;
  value.bytes.assign(name.begin(), name.end());
  if (IsAscii(text)) {
    value.bytes.insert(value.bytes.end(), text.begin(), text.end());
    return;
  }
  for (const char16_t unit : Utf16Of(text)) {
    const auto high = static_cast<uint8_t>(unit >> 8), low = static_cast<uint8_t>(unit);
    value.bytes.push_back(isBigEndian ? high : low);
    value.bytes.push_back(isBigEndian ? low : high);
  }
}

void SetWideText(TagValue& value, std::string_view text) {
  RequireText(text);
  value.type = typeByte;
  for (const char16_t unit : Utf16Of(text)) Append(value.bytes, unit, 2);
  Append(value.bytes, 0, 2);
}

void SetNumbers(TagValue& value, const std::vector<std::string>& words, uint16_t type) {
  value.type = type;
  const size_t unit = detail::BytesOfTagType(type);
  constexpr int kByteBits = 8;
  const uint64_t most = (uint64_t{1} << (kByteBits * unit)) - 1;
  for (const std::string& word : words) Append(value.bytes, WholeNumber(word, most), unit);
}

void SetFractions(TagValue& value, const std::vector<std::string>& words, bool isSigned) {
  value.type = isSigned ? typeSignedRational : typeRational;
  for (const std::string& word : words) Append(value.bytes, ReadFraction(word, isSigned));
}

void SetTime(TagValue& value, std::string_view text) {
  value.type = typeRational;
  const std::string time = ReadTime(text);
  for (const size_t at : {0, 3, 6}) {
    Append(value.bytes, Fraction{(time[at] - '0') * 10 + time[at + 1] - '0', 1});
  }
}

/// One number of degrees, or degrees, minutes and seconds.
void SetDegrees(TagValue& value, const std::vector<std::string>& words) {
  value.type = typeRational;
  constexpr double kSixty = 60, kMost = 180;
  std::vector<double> parts;
  for (const std::string& word : words) {
    const Fraction part = ReadFraction(word, false);
    parts.push_back(static_cast<double>(part.numerator) / static_cast<double>(part.denominator));
  }
  if (parts.empty() || parts.size() > 3) throw RangeError("1 to 3 numbers are needed");
  double degrees = 0, unit = 1;
  for (const double part : parts) {
    degrees += part / unit;
    unit *= kSixty;
  }
  if (degrees > kMost) throw RangeError("the angle exceeds 180 degrees");
  if (parts.size() == 3) {
    for (const std::string& word : words) Append(value.bytes, ReadFraction(word, false));
    return;
  }
  // Seconds in steps of 0.3 mm on the ground.
  constexpr int64_t kSteps = 100'000, kPerMinute = 60 * kSteps, kPerDegree = 60 * kPerMinute;
  const int64_t steps = std::llround(degrees * static_cast<double>(kPerDegree));
  Append(value.bytes, Fraction{steps / kPerDegree, 1});
  Append(value.bytes, Fraction{steps % kPerDegree / kPerMinute, 1});
  Append(value.bytes, Fraction{steps % kPerMinute, kSteps});
}

void SetVersion(TagValue& value, const std::string& text) {
  constexpr size_t kDigits = 4;
  const bool isVersion =
      text.size() == kDigits && text.find_first_not_of("0123456789") == std::string::npos;
  if (!isVersion) throw RangeError("\"" + text + "\" is no version of four digits such as 0232");
  value.type = typeUndefined;
  value.bytes.assign(text.begin(), text.end());
}

std::vector<std::string> VersionWords(std::string_view text) {
  std::string spaced(text);
  std::replace(spaced.begin(), spaced.end(), '.', ' ');
  return Words(spaced);
}

/// The directions, places and measures that texts of GPS tags stand for.
struct Letters {
  uint16_t tag;
  std::string_view allowed;
};
constexpr Letters kLetters[] = {{1, "NS"},   {3, "EW"},  {9, "AV"},  {10, "23"},
                                {12, "KMN"}, {14, "TM"}, {16, "TM"}, {19, "NS"},
                                {21, "EW"},  {23, "TM"}, {25, "KMN"}};

void CheckLetter(const ExifTagFact& fact, std::string_view text) {
  if (fact.directory != ExifDirectoryId::gps) return;
  for (const Letters& letters : kLetters) {
    if (letters.tag != fact.tag) continue;
    if (text.size() != 1 || letters.allowed.find(text[0]) == std::string_view::npos) {
      throw RangeError(
          fmt::format("\"{}\" is none of the letters {}", text, fmt::join(letters.allowed, ", ")));
    }
  }
}

/// Degrees, minutes and seconds.
double DegreesOf(const TagValue& value) {
  constexpr size_t kFraction = 8;
  constexpr double kSixty = 60;
  double degrees = 0, unit = 1;
  for (size_t at = 0; at + kFraction <= value.bytes.size(); at += kFraction) {
    const detail::OrderedBytes parts(value.bytes, false);
    degrees += static_cast<double>(parts.Long(at)) / static_cast<double>(parts.Long(at + 4)) / unit;
    unit *= kSixty;
  }
  return degrees;
}

void CheckRange(const ExifTagFact& fact, const TagValue& value) {
  constexpr uint16_t kLatitude = 2, kLatitudeOfTarget = 20;
  constexpr double kPole = 90;
  const bool isLatitude = fact.directory == ExifDirectoryId::gps &&
                          (fact.tag == kLatitude || fact.tag == kLatitudeOfTarget);
  if (isLatitude && DegreesOf(value) > kPole) throw RangeError("a latitude is at most 90 degrees");
  constexpr uint16_t kOrientation = 274, kPositions = 8;
  const bool isOrientation = fact.directory == ExifDirectoryId::main && fact.tag == kOrientation;
  if (isOrientation && (value.bytes[0] < 1 || value.bytes[0] > kPositions || value.bytes[1] > 0)) {
    throw RangeError("an orientation is 1 to 8");
  }
}

TagValue Read(const ExifTagFact& fact, std::string_view text, bool isBigEndian) {
  TagValue value;
  value.tag = fact.tag;
  switch (fact.form) {
    case ExifForm::fixed:
      throw RangeError("it says how the picture is stored and cannot be set");
    case ExifForm::text:
      CheckLetter(fact, text);
      SetText(value, text);
      break;
    case ExifForm::moment:
      SetText(value, ReadMoment(text).Exif());
      break;
    case ExifForm::day:
      SetText(value, ReadDay(text));
      break;
    case ExifForm::offset:
      SetText(value, ReadOffset(text));
      break;
    case ExifForm::byte:
      SetNumbers(value, VersionWords(text), typeByte);
      break;
    case ExifForm::word:
      SetNumbers(value, Words(text), typeWord);
      break;
    case ExifForm::longNumber:
      SetNumbers(value, Words(text), typeLong);
      break;
    case ExifForm::fraction:
      SetFractions(value, Words(text), false);
      break;
    case ExifForm::signedFraction:
      SetFractions(value, Words(text), true);
      break;
    case ExifForm::time:
      SetTime(value, text);
      break;
    case ExifForm::degrees:
      SetDegrees(value, Words(text));
      break;
    case ExifForm::version:
      SetVersion(value, Trim(text));
      break;
    case ExifForm::plainByte:
      SetNumbers(value, Words(text), typeByte);
      value.type = typeUndefined;
      break;
    case ExifForm::comment:
      SetComment(value, text, isBigEndian);
      break;
    case ExifForm::wideText:
      SetWideText(value, text);
      break;
  }
  value.count = value.bytes.size() / detail::BytesOfTagType(value.type);
  if (fact.count != 0 && value.count != fact.count) {
    throw RangeError(
        fmt::format("{} value{} needed", fact.count, fact.count == 1 ? " is" : "s are"));
  }
  if (value.count == 0) throw RangeError("a value is needed");
  CheckRange(fact, value);
  return value;
}

// --- Shown -------------------------------------------------------------------------------------

/// Text after the 8-byte character code of a comment, if the code is plain text.
std::string CommentText(const std::string& raw) {
  const bool isPlain = raw.starts_with("ASCII") || raw.starts_with(std::string(kEncodingBytes, 0));
  if (raw.size() <= kEncodingBytes || !isPlain) return {};
  return Trim(raw.substr(kEncodingBytes));
}

int32_t SignedOf(std::span<const uint8_t> bytes) {
  uint32_t number = 0;
  for (size_t i = 0; i < bytes.size(); ++i) number |= uint32_t{bytes[i]} << 8 * i;
  return static_cast<int32_t>(number);
}

bool IsSigned(uint16_t type) {
  constexpr uint16_t kSignedByte = 6, kSignedWord = 8, kSignedLong = 9;
  return type == kSignedByte || type == kSignedWord || type == kSignedLong;
}

std::string NumberText(std::span<const uint8_t> bytes, uint16_t type) {
  if (type == typeRational) {
    return fmt::format("{}/{}", static_cast<uint32_t>(SignedOf(bytes.first(4))),
                       static_cast<uint32_t>(SignedOf(bytes.subspan(4))));
  }
  if (type == typeSignedRational) {
    return fmt::format("{}/{}", SignedOf(bytes.first(4)), SignedOf(bytes.subspan(4)));
  }
  if (bytes.size() > 4) return "?";
  const int32_t number = SignedOf(bytes);
  if (!IsSigned(type)) return std::to_string(static_cast<uint32_t>(number));
  const int unused = static_cast<int>(32 - 8 * bytes.size());
  return std::to_string(static_cast<int32_t>(static_cast<uint32_t>(number) << unused) >> unused);
}

}  // namespace

TagValue ReadExifValue(const ExifTagFact& fact, std::string_view text, bool isBigEndian) {
  try {
    return Read(fact, text, isBigEndian);
  } catch (const RangeError& error) {
    throw RangeError(std::string(fact.name) + ": " + error.Reason());
  }
}

std::string TextOfExifValue(const TagValue& value) {
  constexpr uint16_t kUserComment = 37510, kExifVersion = 36864, kFlashpixVersion = 40960;
  constexpr uint16_t kFloat = 11, kDouble = 12;
  constexpr size_t kMostNumbers = 16;
  const std::string raw(value.bytes.begin(), value.bytes.end());
  if (value.type == typeText) return Utf8OfBytes(Trim(raw.substr(0, raw.find('\0'))));
  if (value.type == typeUndefined) {
    if (value.tag == kExifVersion || value.tag == kFlashpixVersion) return Utf8OfBytes(raw);
    const std::string comment = value.tag == kUserComment ? CommentText(raw) : "";
    return comment.empty() ? fmt::format("{} bytes", value.bytes.size()) : Utf8OfBytes(comment);
  }
  const size_t unit = std::max<size_t>(1, detail::BytesOfTagType(value.type));
  const size_t count = value.bytes.size() / unit;
  if (count > kMostNumbers) return fmt::format("{} values", count);
  std::string text;
  for (size_t i = 0; i < count; ++i) {
    if (i > 0) text += ", ";
    const bool isFloat = value.type == kFloat || value.type == kDouble;
    text += isFloat ? "?" : NumberText(std::span(value.bytes).subspan(i * unit, unit), value.type);
  }
  return text;
}

}  // namespace rasterkit
