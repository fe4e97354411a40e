#include <algorithm>
#include <cmath>
#include <cstring>

#include <rasterkit/placement/geo_keys.h>
#include <rasterkit/placement/geo_tags.h>
#include <rasterkit/placement/six_numbers.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using detail::kRationalNumbers;

constexpr uint16_t kAsciiType = 2, kWordType = 3, kFloatType = 11, kDoubleType = 12;
constexpr size_t kTieNumbers = 6, kMatrixNumbers = 16;

template <class T>
std::vector<T> ValuesOf(const TagValue& tag) {
  std::vector<T> values(tag.bytes.size() / sizeof(T));
  if (!values.empty()) std::memcpy(values.data(), tag.bytes.data(), values.size() * sizeof(T));
  return values;
}

const TagValue* Find(std::span<const TagValue> tags, uint16_t number) {
  const auto is = [&](const TagValue& tag) { return tag.tag == number; };
  const auto place = std::find_if(tags.begin(), tags.end(), is);
  return place == tags.end() ? nullptr : &*place;
}

std::vector<double> DoublesOf(std::span<const TagValue> tags, uint16_t number) {
  const TagValue* const tag = Find(tags, number);
  if (tag == nullptr) return {};
  if (tag->type == kDoubleType) return ValuesOf<double>(*tag);
  if (tag->type != kFloatType) return {};
  const std::vector<float> values = ValuesOf<float>(*tag);
  return {values.begin(), values.end()};
}

/// The bytes of a text without the zero byte at its end.
std::string BytesOf(std::span<const TagValue> tags, uint16_t number) {
  const TagValue* const tag = Find(tags, number);
  if (tag == nullptr) return "";
  std::string bytes(tag->bytes.begin(), tag->bytes.end());
  if (bytes.ends_with('\0')) bytes.pop_back();
  return bytes;
}

/// Texts end at their first zero byte.
std::string TextOf(std::span<const TagValue> tags, uint16_t number) {
  const std::string bytes = BytesOf(tags, number);
  return bytes.substr(0, bytes.find('\0'));
}

/// Coordinates of the first pixel's center in the count of the tags.
double FirstCenter(bool pixelIsPoint) {
  return pixelIsPoint ? 0.0 : 0.5;
}

Affine FromScale(const std::vector<double>& scale, const std::vector<double>& tie, double center) {
  const double columns = center - tie[0], rows = center - tie[1];
  return {scale[0], 0, 0, -scale[1], tie[3] + columns * scale[0], tie[4] - rows * scale[1]};
}

Affine FromMatrix(const std::vector<double>& m, double center) {
  return {m[0],
          m[4],
          m[1],
          m[5],
          m[3] + center * m[0] + center * m[1],
          m[7] + center * m[4] + center * m[5]};
}

void AddPosition(Placement& placement, PositionSource source, const Affine& affine) {
  if (detail::PlacesPixels(affine)) {
    placement.stated.push_back({source, "", affine, 0});
  } else {
    placement.warnings.push_back(std::string(PositionSourceName(source)) +
                                 ": the tags give a pixel no area and are ignored");
  }
}

void ReadTiePoints(const std::vector<double>& ties, size_t first, Placement& placement) {
  const double shift = 0.5 - FirstCenter(placement.pixelIsPoint);
  size_t damaged = 0;
  for (size_t i = first; i + kTieNumbers <= ties.size(); i += kTieNumbers) {
    const double* const t = &ties[i];
    if (std::all_of(t, t + kTieNumbers, [](double n) { return std::isfinite(n); })) {
      placement.controlPoints.push_back({t[0] + shift, t[1] + shift, t[2], t[3], t[4], t[5]});
    } else {
      ++damaged;
    }
  }
  if (damaged > 0) {
    placement.warnings.push_back(std::to_string(damaged) +
                                 " tie points with non-finite numbers are ignored");
  }
}

template <class T>
TagValue MakeTag(uint16_t number, uint16_t type, const std::vector<T>& values) {
  TagValue tag{number, type, values.size(), {}};
  tag.bytes.resize(values.size() * sizeof(T));
  if (!values.empty()) std::memcpy(tag.bytes.data(), values.data(), tag.bytes.size());
  return tag;
}

TagValue MakeText(uint16_t number, const std::string& text) {
  std::vector<char> letters(text.begin(), text.end());
  letters.push_back(0);
  return MakeTag(number, kAsciiType, letters);
}

/// Pixel scale and tie point have only columns that run east and rows that run south.
bool RunsSouth(const Affine& affine) {
  return affine.IsStraight() && affine.xPerColumn > 0 && affine.yPerRow < 0;
}

std::vector<double> MatrixOf(const Affine& affine, double center) {
  const MapPoint origin = affine.At(-center, -center);
  return {affine.xPerColumn,
          affine.xPerRow,
          0,
          origin.x,
          affine.yPerColumn,
          affine.yPerRow,
          0,
          origin.y,
          0,
          0,
          0,
          0,
          0,
          0,
          0,
          1};
}

}  // namespace

namespace detail {

void ReadGeoTags(std::span<const TagValue> tags, Placement& placement) {
  if (const TagValue* keys = Find(tags, kGeoKeysTag); keys != nullptr && keys->type == kWordType) {
    placement.system.keys = ValuesOf<uint16_t>(*keys);
  }
  placement.system.doubles = DoublesOf(tags, kGeoDoublesTag);
  placement.system.ascii = BytesOf(tags, kGeoAsciiTag);
  placement.pixelIsPoint = IsPixelPoint(placement.system.keys);
  const double center = FirstCenter(placement.pixelIsPoint);
  const std::vector<double> scale = DoublesOf(tags, kPixelScaleTag);
  const std::vector<double> ties = DoublesOf(tags, kTiePointTag);
  const std::vector<double> matrix = DoublesOf(tags, kTransformationTag);
  // The first tie point belongs to the scale.
  const bool hasScale = scale.size() >= 2 && ties.size() >= kTieNumbers;
  if (hasScale) AddPosition(placement, PositionSource::geoTiff, FromScale(scale, ties, center));
  if (matrix.size() >= kMatrixNumbers) {
    AddPosition(placement, PositionSource::geoTiffTransformation, FromMatrix(matrix, center));
  }
  ReadTiePoints(ties, hasScale ? kTieNumbers : 0, placement);
  placement.noData = Trim(TextOf(tags, kNoDataTag));
  placement.rationalModel = DoublesOf(tags, kRationalModelTag);
  if (!placement.rationalModel.empty() && placement.rationalModel.size() != kRationalNumbers) {
    placement.warnings.push_back("the rational model has " +
                                 std::to_string(placement.rationalModel.size()) +
                                 " numbers instead of 92 and is ignored");
    placement.rationalModel.clear();
  }
}

}  // namespace detail

std::vector<TagValue> TagsOf(const Placement& placement) {
  std::vector<TagValue> tags;
  // The keys say how the tags count; without keys, from the corner.
  const double center = FirstCenter(detail::IsPixelPoint(placement.system.keys));
  std::vector<double> ties;
  if (placement.affine && RunsSouth(*placement.affine)) {
    const Affine& affine = *placement.affine;
    const MapPoint origin = affine.At(-center, -center);
    tags.push_back(MakeTag<double>(detail::kPixelScaleTag, kDoubleType,
                                   {affine.xPerColumn, -affine.yPerRow, 0}));
    ties = {0, 0, 0, origin.x, origin.y, 0};
  }
  for (const ControlPoint& point : placement.controlPoints) {
    const double shift = center - 0.5;
    ties.insert(ties.end(),
                {point.column + shift, point.row + shift, point.level, point.x, point.y, point.z});
  }
  if (!ties.empty()) tags.push_back(MakeTag(detail::kTiePointTag, kDoubleType, ties));
  if (placement.affine && !RunsSouth(*placement.affine)) {
    tags.push_back(
        MakeTag(detail::kTransformationTag, kDoubleType, MatrixOf(*placement.affine, center)));
  }
  const CoordinateSystem& system = placement.system;
  // Few programs read a system from a file beside the picture.
  const auto keys = system.keys.empty() ? detail::KeysOfWkt(system.wkt) : system.keys;
  if (!keys.empty()) tags.push_back(MakeTag(detail::kGeoKeysTag, kWordType, keys));
  if (!system.doubles.empty()) {
    tags.push_back(MakeTag(detail::kGeoDoublesTag, kDoubleType, system.doubles));
  }
  if (!system.ascii.empty()) tags.push_back(MakeText(detail::kGeoAsciiTag, system.ascii));
  if (!placement.noData.empty()) tags.push_back(MakeText(detail::kNoDataTag, placement.noData));
  if (placement.rationalModel.size() == kRationalNumbers) {
    tags.push_back(MakeTag(detail::kRationalModelTag, kDoubleType, placement.rationalModel));
  }
  return tags;
}

}  // namespace rasterkit
