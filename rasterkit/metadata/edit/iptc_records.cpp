#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include <rasterkit/metadata/edit/date_text.h>
#include <rasterkit/metadata/edit/iptc_records.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

constexpr uint8_t kMark = 0x1C, kEnvelope = 1, kApplication = 2;
constexpr uint8_t kCharacterSet = 90, kVersion = 0;
constexpr size_t kHeadBytes = 5, kMostShortBytes = 32767;
constexpr std::string_view kUtf8 = "\x1B%G";

using Form = IptcFact::Form;

constexpr IptcFact kFacts[] = {
    {5, "ObjectName", "Title", 64, Form::text, false, false},
    {15, "Category", "", 3, Form::text, false, false},
    {20, "SupplementalCategories", "", 32, Form::text, true, false},
    {25, "Keywords", "", 64, Form::text, true, false},
    {26, "ContentLocationCode", "", 3, Form::text, true, true},
    {27, "ContentLocationName", "", 64, Form::text, true, true},
    {40, "SpecialInstructions", "", 256, Form::text, false, false},
    {55, "DateCreated", "", 8, Form::day, false, false},
    {60, "TimeCreated", "", 11, Form::time, false, false},
    {62, "DigitalCreationDate", "", 8, Form::day, false, false},
    {63, "DigitalCreationTime", "", 11, Form::time, false, false},
    {80, "By-line", "Byline", 32, Form::text, true, false},
    {85, "By-lineTitle", "BylineTitle", 32, Form::text, true, false},
    {90, "City", "", 32, Form::text, false, true},
    {92, "Sub-location", "Sublocation", 32, Form::text, false, true},
    {95, "Province-State", "State", 32, Form::text, false, true},
    {100, "Country-PrimaryLocationCode", "CountryCode", 3, Form::text, false, true},
    {101, "Country-PrimaryLocationName", "Country", 64, Form::text, false, true},
    {103, "OriginalTransmissionReference", "", 32, Form::text, false, false},
    {105, "Headline", "", 256, Form::text, false, false},
    {110, "Credit", "", 32, Form::text, false, false},
    {115, "Source", "", 32, Form::text, false, false},
    {116, "CopyrightNotice", "", 128, Form::text, false, false},
    {118, "Contact", "", 128, Form::text, true, false},
    {120, "Caption-Abstract", "Caption", 2000, Form::text, false, false},
    {122, "Writer-Editor", "", 32, Form::text, true, false},
};

/// Reads the record at `at`, which moves behind it; false if there is no whole one.
bool Take(std::span<const uint8_t> bytes, size_t& at, IptcRecord& record) {
  if (bytes.size() - at < kHeadBytes || bytes[at] != kMark) return false;
  record.record = bytes[at + 1];
  record.dataSet = bytes[at + 2];
  size_t length = size_t{bytes[at + 3]} << 8 | bytes[at + 4];
  size_t begin = at + kHeadBytes;
  if (length > kMostShortBytes) {
    const size_t digits = length & kMostShortBytes;
    if (digits > 4 || bytes.size() - begin < digits) return false;
    length = 0;
    for (size_t i = 0; i < digits; ++i) length = length << 8 | bytes[begin + i];
    begin += digits;
  }
  if (length > bytes.size() - begin) return false;
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(begin);
  record.bytes.assign(first, first + static_cast<std::ptrdiff_t>(length));
  at = begin + length;
  return true;
}

void Append(std::vector<uint8_t>& bytes, const IptcRecord& record) {
  bytes.insert(bytes.end(), {kMark, record.record, record.dataSet});
  const size_t length = record.bytes.size();
  if (length > kMostShortBytes) {
    bytes.insert(bytes.end(), {0x80, 4});
    for (int shift = 24; shift >= 16; shift -= 8) {
      bytes.push_back(static_cast<uint8_t>(length >> shift));
    }
  }
  bytes.push_back(static_cast<uint8_t>(length >> 8));
  bytes.push_back(static_cast<uint8_t>(length));
  bytes.insert(bytes.end(), record.bytes.begin(), record.bytes.end());
}

bool Is(const IptcRecord& record, uint8_t dataSet) {
  return record.record == kApplication && record.dataSet == dataSet;
}

bool IsPlace(const IptcRecord& record) {
  return std::any_of(std::begin(kFacts), std::end(kFacts), [&](const IptcFact& fact) {
    return fact.isPlace && Is(record, fact.dataSet);
  });
}

bool IsText(uint8_t dataSet) {
  // Preview data and numbers are no texts.
  constexpr uint8_t kFirstBinary = 125;
  return dataSet != kVersion && dataSet < kFirstBinary;
}

std::string TextOf(const IptcRecord& record, bool isUtf8) {
  std::string text(record.bytes.begin(), record.bytes.end());
  return isUtf8 ? text : Utf8OfBytes(text);
}

}  // namespace

IptcRecords::IptcRecords(std::span<const uint8_t> bytes) {
  size_t at = 0;
  IptcRecord record;
  while (at < bytes.size() && Take(bytes, at, record)) records_.push_back(record);
  const auto rest = bytes.subspan(at);
  const bool isPadding = std::all_of(rest.begin(), rest.end(), [](uint8_t b) { return b == 0; });
  if (!isPadding) rest_.assign(rest.begin(), rest.end());
}

bool IptcRecords::Has(uint8_t dataSet) const {
  return std::any_of(records_.begin(), records_.end(),
                     [&](const IptcRecord& record) { return Is(record, dataSet); });
}

bool IptcRecords::IsUtf8() const {
  return std::any_of(records_.begin(), records_.end(), [](const IptcRecord& record) {
    return record.record == kEnvelope && record.dataSet == kCharacterSet &&
           std::equal(record.bytes.begin(), record.bytes.end(), kUtf8.begin(), kUtf8.end());
  });
}

std::vector<std::string> IptcRecords::Texts(uint8_t dataSet) const {
  std::vector<std::string> texts;
  for (const IptcRecord& record : records_) {
    if (Is(record, dataSet)) texts.push_back(TextOf(record, IsUtf8()));
  }
  return texts;
}

void IptcRecords::MakeUtf8() {
  if (IsUtf8()) return;
  for (IptcRecord& record : records_) {
    if (record.record != kApplication || !IsText(record.dataSet)) continue;
    const std::string text = TextOf(record, false);
    record.bytes.assign(text.begin(), text.end());
  }
  std::erase_if(records_, [](const IptcRecord& record) {
    return record.record == kEnvelope && record.dataSet == kCharacterSet;
  });
  const auto place = std::find_if(records_.begin(), records_.end(), [](const IptcRecord& record) {
    return record.record > kEnvelope ||
           (record.record == kEnvelope && record.dataSet > kCharacterSet);
  });
  records_.insert(place, {kEnvelope, kCharacterSet, {kUtf8.begin(), kUtf8.end()}});
}

void IptcRecords::Set(uint8_t dataSet, const std::vector<std::string>& texts) {
  const auto isAscii = [](const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char letter) { return static_cast<uint8_t>(letter) < 0x80; });
  };
  if (!std::all_of(texts.begin(), texts.end(), isAscii)) MakeUtf8();
  constexpr uint8_t kFourthVersion = 4;
  if (!Has(kVersion)) {
    const auto first = std::find_if(records_.begin(), records_.end(), [](const IptcRecord& one) {
      return one.record >= kApplication;
    });
    records_.insert(first, {kApplication, kVersion, {0, kFourthVersion}});
  }
  Remove(dataSet);
  auto place = std::find_if(records_.begin(), records_.end(), [&](const IptcRecord& record) {
    return record.record > kApplication ||
           (record.record == kApplication && record.dataSet > dataSet);
  });
  for (const std::string& text : texts) {
    place = records_.insert(place, {kApplication, dataSet, {text.begin(), text.end()}}) + 1;
  }
}

bool IptcRecords::Remove(uint8_t dataSet) {
  return std::erase_if(records_, [&](const IptcRecord& record) { return Is(record, dataSet); }) > 0;
}

bool IptcRecords::RemovePlaces() {
  const bool hadRest = !rest_.empty();
  rest_.clear();
  return std::erase_if(records_, IsPlace) > 0 || hadRest;
}

std::vector<uint8_t> IptcRecords::Bytes() const {
  const bool hasContent = std::any_of(records_.begin(), records_.end(), [](const IptcRecord& one) {
    return one.record != kEnvelope && !Is(one, kVersion);
  });
  std::vector<uint8_t> bytes;
  if (!hasContent && rest_.empty()) return bytes;
  for (const IptcRecord& record : records_) Append(bytes, record);
  bytes.insert(bytes.end(), rest_.begin(), rest_.end());
  return bytes;
}

std::span<const IptcFact> IptcFacts() {
  return kFacts;
}

const IptcFact* FindIptcFact(std::string_view name) {
  const auto is = [&](std::string_view other) {
    return !other.empty() && CompareText(other, name) == 0;
  };
  const auto* found = std::find_if(std::begin(kFacts), std::end(kFacts), [&](const IptcFact& fact) {
    return is(fact.name) || is(fact.otherName);
  });
  return found == std::end(kFacts) ? nullptr : found;
}

std::string ReadIptcValue(const IptcFact& fact, std::string_view given) {
  try {
    std::string text(given);
    if (fact.form == Form::day) {
      text = ReadDay(given);
      std::erase(text, ':');
    } else if (fact.form == Form::time) {
      constexpr size_t kTimeLetters = 8;
      const std::string time = ReadTime(given.substr(0, kTimeLetters));
      const std::string_view offset = given.substr(std::min(kTimeLetters, given.size()));
      text = time + (offset.empty() ? "+00:00" : ReadOffset(offset));
      std::erase(text, ':');
    }
    if (text.find('\0') != std::string::npos) throw RangeError("the text has a zero in it");
    if (Utf8OfBytes(text) != text) throw RangeError("the text is no UTF-8");
    if (text.size() > fact.most) {
      throw RangeError(fmt::format("the text has {} bytes and may have {}", text.size(),
                                   static_cast<unsigned>(fact.most)));
    }
    return text;
  } catch (const RangeError& error) {
    throw RangeError("IPTC:" + std::string(fact.name) + ": " + error.Reason());
  }
}

}  // namespace rasterkit
