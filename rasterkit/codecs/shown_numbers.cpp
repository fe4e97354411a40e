#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/codecs/visible_numbers.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

bool IsFloating(NumberType type) {
  return type == NumberType::float16 || type == NumberType::float32 || type == NumberType::float64;
}

bool IsUnsigned(NumberType type) {
  return type == NumberType::uint8 || type == NumberType::uint16 || type == NumberType::uint32 ||
         type == NumberType::uint64;
}

/// The number that is full opacity.
double FullOpacity(const PixelLayout& layout) {
  if (IsFloating(layout.type)) return 1;
  return std::ldexp(1.0, IsUnsigned(layout.type) ? layout.bits : layout.bits - 1) - 1;
}

const uint8_t* PlaceOf(const Samples& samples, int y, int band) {
  if (samples.Planes() > 1) return samples.Row(y, band);
  return samples.Row(y) + static_cast<size_t>(band) * BytesOf(samples.Layout().type);
}

/// Calls `use` with the key of each measured, finite number.
template <class Use>
void ForEachNumber(const Samples& samples, const ShownNumbers& numbers, const Use& use) {
  const KeyRange finite = FiniteKeys(numbers.Type());
  ShownRow row;
  for (int y = 0; y < samples.Height(); ++y) {
    RequireTime();
    for (int band = 0; band < numbers.Bands(); ++band) {
      numbers.Read(y, band, row);
      for (size_t x = 0; x < row.keys.size(); ++x) {
        if (row.isMeasured[x] != 0 && finite.Has(row.keys[x])) use(row.keys[x]);
      }
    }
  }
}

KeyRange EndsOf(const Samples& samples, const ShownNumbers& numbers) {
  KeyRange ends{UINT64_MAX, 0};
  bool hasAny = false;
  ForEachNumber(samples, numbers, [&](uint64_t key) {
    ends.first = std::min(ends.first, key);
    ends.last = std::max(ends.last, key);
    hasAny = true;
  });
  return hasAny ? ends : KeyRange{};
}

/// Finds the key of a rank from the greatest digit to the least one, with a table of counts.
class RankedKey {
 public:
  void Begin() { counts_.assign(kDigits, 0); }
  /// `shift`: bits below the digit.
  void Count(uint64_t key, int shift) {
    const bool isCandidate = shift + kDigitBits >= 64 || key >> (shift + kDigitBits) == prefix_;
    if (isCandidate) ++counts_[key >> shift & (kDigits - 1)];
  }
  uint64_t Total() const {
    uint64_t total = 0;
    for (const uint64_t count : counts_) total += count;
    return total;
  }
  /// `rank` counts from 0 among the candidates; becomes that among those of the digit.
  void Choose(uint64_t& rank) {
    uint64_t digit = 0;
    while (rank >= counts_[digit]) rank -= counts_[digit++];
    prefix_ = prefix_ << kDigitBits | digit;
  }
  uint64_t Key() const { return prefix_; }

  static constexpr int kDigitBits = 16;

 private:
  static constexpr uint64_t kDigits = uint64_t{1} << kDigitBits;

  uint64_t prefix_ = 0;
  std::vector<uint64_t> counts_;
};

KeyRange PercentOf(const Samples& samples, const ShownNumbers& numbers, double percent) {
  constexpr double kWhole = 100;
  RankedKey low, high;
  uint64_t lowRank = 0, highRank = 0;
  const int top = std::max(KeyBitsOf(numbers.Type()) - RankedKey::kDigitBits, 0);
  for (int shift = top; shift >= 0; shift -= RankedKey::kDigitBits) {
    low.Begin();
    high.Begin();
    ForEachNumber(samples, numbers, [&](uint64_t key) {
      low.Count(key, shift);
      high.Count(key, shift);
    });
    if (shift == top) {
      const uint64_t count = low.Total();
      if (count == 0) return {};
      lowRank = static_cast<uint64_t>(std::floor(static_cast<double>(count) * percent / kWhole));
      lowRank = std::min(lowRank, (count - 1) / 2);
      highRank = count - 1 - lowRank;
    }
    low.Choose(lowRank);
    high.Choose(highRank);
  }
  return {low.Key(), high.Key()};
}

FoundRange FullRange(const PixelLayout& layout) {
  if (IsFloating(layout.type)) {
    return {ShownRange{ExactOf(uint64_t{0}), ExactOf(uint64_t{1})}, fmt::format("{}", 0),
            fmt::format("{}", 1)};
  }
  const bool isUnsigned = IsUnsigned(layout.type);
  const int bits = isUnsigned ? layout.bits : layout.bits - 1;
  const uint64_t most = bits >= 64 ? UINT64_MAX : (uint64_t{1} << bits) - 1;
  const ExactNumber least = isUnsigned ? ExactNumber() : ExactNumber{true, most + 1, 0};
  return {ShownRange{least, ExactOf(most)},
          isUnsigned ? fmt::format("{}", 0) : fmt::format("-{}", most + 1),
          fmt::format("{}", most)};
}

FoundRange FixedRange(const NumberStretch& stretch) {
  return {ShownRange{ExactOf(stretch.least), ExactOf(stretch.greatest)},
          fmt::format("{}", stretch.least), fmt::format("{}", stretch.greatest)};
}

FoundRange RangeOfKeys(NumberType type, const KeyRange& keys) {
  if (keys.first > keys.last) return {};
  return {ShownRange{NumberOfKey(type, keys.first), NumberOfKey(type, keys.last)},
          TextOfKey(type, keys.first), TextOfKey(type, keys.last)};
}

}  // namespace

ShownNumbers::ShownNumbers(const Samples& samples, const std::string& noData)
    : samples_(samples),
      bands_(IsSingleBand(samples.Layout()) ? 1 : ColorBandsOf(samples.Layout())),
      isAssociated_(samples.Layout().alpha == AlphaKind::associated),
      type_(isAssociated_ ? NumberType::float64 : samples.Layout().type),
      missing_(MissingKeysOf(noData, samples.Layout().type)) {}

void ShownNumbers::Read(int y, int band, ShownRow& row) const {
  const NumberType type = samples_.Layout().type;
  const auto width = static_cast<size_t>(samples_.Width());
  row.keys.resize(width);
  row.isMeasured.assign(width, 1);
  LoadKeys(type, PlaceOf(samples_, y, band), samples_.PixelBytes(), width, row.keys.data());
  const KeyRange numbers = NumberKeys(type);
  for (size_t x = 0; x < width; ++x) {
    const bool isMissing = !numbers.Has(row.keys[x]) || missing_.keys.Has(row.keys[x]);
    if (isMissing) row.isMeasured[x] = 0;
  }
  if (!HasAlphaBand(samples_.Layout())) return;
  DivideByOpacity(y, band, row);
}

void ShownNumbers::DivideByOpacity(int y, int band, ShownRow& row) const {
  const auto pitch = static_cast<size_t>(bands_) + 1;
  std::vector<double> pixels(row.keys.size() * pitch);
  UnpackSamples(samples_, y, pitch, pixels.data());
  const double full = FullOpacity(samples_.Layout());
  for (size_t x = 0; x < row.keys.size(); ++x) {
    const double opacity = pixels[x * pitch + pitch - 1];
    const bool isSeen = opacity > 0;
    if (!isSeen) row.isMeasured[x] = 0;
    if (!isAssociated_) continue;
    const double number = pixels[x * pitch + static_cast<size_t>(band)];
    row.keys[x] = KeyOfDouble(isSeen ? number * full / std::min(opacity, full) : number);
  }
}

void ReadOpacity(const Samples& samples, int y, uint8_t* opacity) {
  constexpr int kHalves = 510;
  const auto pitch = static_cast<size_t>(ColorBandsOf(samples.Layout())) + 1;
  const auto width = static_cast<size_t>(samples.Width());
  std::vector<double> pixels(width * pitch);
  UnpackSamples(samples, y, pitch, pixels.data());
  const double full = FullOpacity(samples.Layout());
  for (size_t x = 0; x < width; ++x) {
    const double share = pixels[x * pitch + pitch - 1] / full;
    const double cut = share > 0 ? std::min(share, 1.0) : 0.0;
    opacity[x] = static_cast<uint8_t>((static_cast<int>(cut * kHalves) + 1) / 2);
  }
}

bool IsSingleBand(const PixelLayout& layout) {
  const bool isGray =
      layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
  return isGray && !HasAlphaBand(layout);
}

bool HasNegatives(NumberType type) {
  return !IsFloating(type) && !IsUnsigned(type);
}

NumberStretch::Kind KindFor(const PixelLayout& layout, const NumberStretch& stretch) {
  if (stretch.kind != NumberStretch::Kind::automatic) return stretch.kind;
  return IsSingleBand(layout) ? NumberStretch::Kind::minMax : NumberStretch::Kind::full;
}

FoundRange FindRange(const Samples& samples, const std::string& noData,
                     const NumberStretch& stretch) {
  const PixelLayout& layout = samples.Layout();
  const NumberStretch::Kind kind = KindFor(layout, stretch);
  if (kind == NumberStretch::Kind::fixed) return FixedRange(stretch);
  const ShownNumbers numbers(samples, noData);
  FoundRange found = kind == NumberStretch::Kind::full ? FullRange(layout)
                     : kind == NumberStretch::Kind::percent
                         ? RangeOfKeys(numbers.Type(), PercentOf(samples, numbers, stretch.percent))
                         : RangeOfKeys(numbers.Type(), EndsOf(samples, numbers));
  const bool isTurned = layout.model == ColorModel::grayWhiteIsZero && IsUnsigned(layout.type);
  if (isTurned && found.range) {
    std::swap(found.range->black, found.range->white);
    std::swap(found.black, found.white);
  }
  return found;
}

void NoteRange(const FoundRange& found, Changes& changes) {
  changes.Note(found.range ? fmt::format("numbers from {} to {} {}", found.black, found.white,
                                         kShownRangeNote)
                           : "the grid holds no number; all of it is shown white");
}

}  // namespace rasterkit::detail
