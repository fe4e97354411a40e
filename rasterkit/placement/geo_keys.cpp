#include <array>
#include <charconv>

#include <rasterkit/placement/geo_keys.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

constexpr uint16_t kModelType = 1024, kRasterType = 1025, kCitation = 1026, kGeographicType = 2048,
                   kGeographicCitation = 2049, kProjectedType = 3072, kProjectedCitation = 3073;
constexpr int kProjected = 1, kGeographic = 2, kGeocentric = 3;
constexpr int kPixelIsPoint = 2;
constexpr uint16_t kDoubleTag = 34736, kAsciiTag = 34737;
/// 0 is undefined, 32767 and above are the user's own.
constexpr int kFirstCode = 1024, kLastCode = 32766;

constexpr size_t kHeaderWords = 4, kKeyWords = 4;

/// The four words of a key: number, place (0: the value itself), count, value or index.
std::optional<std::span<const uint16_t>> FindKey(std::span<const uint16_t> keys, uint16_t number) {
  if (keys.size() < kHeaderWords) return std::nullopt;
  const size_t count = keys[3];
  for (size_t i = 0; i < count && kHeaderWords + (i + 1) * kKeyWords <= keys.size(); ++i) {
    const auto key = keys.subspan(kHeaderWords + i * kKeyWords, kKeyWords);
    if (key[0] == number) return key;
  }
  return std::nullopt;
}

using detail::ShortKey;

/// Texts of keys end with "|".
std::string TextKey(const CoordinateSystem& system, uint16_t number) {
  const auto key = FindKey(system.keys, number);
  if (!key || (*key)[1] != kAsciiTag || (*key)[3] >= system.ascii.size()) return "";
  std::string text = system.ascii.substr((*key)[3], (*key)[2]);
  if (const size_t end = text.find('\0'); end != std::string::npos) text.resize(end);
  while (text.ends_with('|')) text.pop_back();
  return Trim(Utf8OfBytes(text));
}

/// The name within a citation. Some programs write a whole definition or a list of properties.
std::string NameInCitation(const std::string& citation) {
  constexpr std::string_view kDefinition = "ESRI PE String = ", kPlainNote = "IMAGINE GeoTIFF";
  if (citation.starts_with(kDefinition)) {
    return detail::ReadWktHead(std::string_view(citation).substr(kDefinition.size())).name;
  }
  if (citation.starts_with(kPlainNote)) return "";
  for (const std::string_view start : {"PCS Name = ", "GCS Name = "}) {
    if (citation.starts_with(start)) {
      return Trim(citation.substr(start.size(), citation.find('|') - start.size()));
    }
  }
  // A message has one line.
  return Trim(citation.substr(0, citation.find_first_of("\r\n")));
}

bool IsCode(int code) {
  return code >= kFirstCode && code <= kLastCode;
}

/// True if a projected system stands on the geographic one.
bool IsProjected(std::span<const uint16_t> keys) {
  const int model = ShortKey(keys, kModelType);
  return model == kProjected || (model == 0 && ShortKey(keys, kProjectedType) != 0);
}

std::string NameInKeys(const CoordinateSystem& system) {
  const bool isProjected = IsProjected(system.keys);
  constexpr std::array kProjectedOrder = {kProjectedCitation, kCitation};
  constexpr std::array kGeographicOrder = {kGeographicCitation, kCitation};
  for (const uint16_t key : isProjected ? kProjectedOrder : kGeographicOrder) {
    std::string name = NameInCitation(TextKey(system, key));
    if (!name.empty()) return name;
  }
  return "";
}

}  // namespace

int detail::ShortKey(std::span<const uint16_t> keys, uint16_t number) {
  const auto key = FindKey(keys, number);
  return key && (*key)[1] == 0 ? (*key)[3] : 0;
}

std::optional<double> detail::DoubleKey(const CoordinateSystem& system, uint16_t number) {
  const auto key = FindKey(system.keys, number);
  if (!key || (*key)[1] != kDoubleTag || (*key)[3] >= system.doubles.size()) return std::nullopt;
  return system.doubles[(*key)[3]];
}

bool detail::IsPixelPoint(std::span<const uint16_t> keys) {
  return ShortKey(keys, kRasterType) == kPixelIsPoint;
}

std::vector<uint16_t> detail::KeysOfWkt(std::string_view wkt) {
  constexpr uint16_t kVersion = 1, kRevision = 1, kMinor = 0, kKeys = 3;
  constexpr uint16_t kPixelIsArea = 1;
  const WktHead head = ReadWktHead(wkt);
  const bool isProjected = head.keyword == "PROJCS" || head.keyword == "PROJCRS";
  const bool isGeographic = head.keyword == "GEOGCS" || head.keyword == "GEOGCRS";
  if (!head.epsg || !IsCode(*head.epsg) || !(isProjected || isGeographic)) return {};
  std::vector<uint16_t> keys = {kVersion, kRevision, kMinor, kKeys};
  const auto add = [&](uint16_t key, int value) {
    keys.insert(keys.end(), {key, 0, 1, static_cast<uint16_t>(value)});
  };
  add(kModelType, isProjected ? kProjected : kGeographic);
  add(kRasterType, kPixelIsArea);
  add(isProjected ? kProjectedType : kGeographicType, *head.epsg);
  return keys;
}

bool CoordinateSystem::IsKnown() const {
  for (const uint16_t key : {kModelType, kGeographicType, kProjectedType}) {
    if (FindKey(keys, key)) return true;
  }
  return !wkt.empty();
}

std::optional<int> CoordinateSystem::Epsg() const {
  const int model = ShortKey(keys, kModelType);
  int code = 0;
  if (IsProjected(keys)) {
    code = ShortKey(keys, kProjectedType);
  } else if (model == 0 || model == kGeographic || model == kGeocentric) {
    code = ShortKey(keys, kGeographicType);
  }
  if (IsCode(code)) return code;
  const bool hasKeys =
      FindKey(keys, kModelType) || FindKey(keys, kProjectedType) || FindKey(keys, kGeographicType);
  return hasKeys ? std::nullopt : detail::ReadWktHead(wkt).epsg;
}

std::string CoordinateSystem::Name() const {
  std::string name = NameInKeys(*this);
  return name.empty() ? detail::ReadWktHead(wkt).name : name;
}

std::string CoordinateSystem::Description() const {
  const std::optional<int> epsg = Epsg();
  std::string name = Name();
  if (!epsg) return name;
  const std::string code = "EPSG:" + std::to_string(*epsg);
  return name.empty() ? code : code + " (" + name + ")";
}

}  // namespace rasterkit
