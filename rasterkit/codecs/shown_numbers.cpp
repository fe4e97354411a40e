#include <algorithm>
#include <cmath>
#include <mutex>
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

/// Calls `use` with the key of each measured, finite number of some rows.
template <class Use>
void ForEachNumber(const Samples& samples, int first, int last, const ShownNumbers& numbers,
                   const Use& use) {
  const KeyRange finite = FiniteKeys(numbers.Type());
  ShownRow row;
  for (int y = first; y < last; ++y) {
    RequireTime();
    for (int band = 0; band < numbers.Bands(); ++band) {
      numbers.Read(samples, y, band, row);
      for (size_t x = 0; x < row.keys.size(); ++x) {
        if (row.isMeasured[x] != 0 && finite.Has(row.keys[x])) use(row.keys[x]);
      }
    }
  }
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

/// Least and greatest number.
class Ends {
 public:
  void Look(const Samples& samples, int first, int last, const ShownNumbers& numbers) {
    KeyRange ends{UINT64_MAX, 0};
    ForEachNumber(samples, first, last, numbers, [&](uint64_t key) {
      ends.first = std::min(ends.first, key);
      ends.last = std::max(ends.last, key);
    });
    const std::lock_guard lock(mutex_);
    ends_.first = std::min(ends_.first, ends.first);
    ends_.last = std::max(ends_.last, ends.last);
  }
  KeyRange Keys() const { return ends_.first > ends_.last ? KeyRange{} : ends_; }

 private:
  std::mutex mutex_;
  KeyRange ends_{UINT64_MAX, 0};
};

/// The numbers that a percentage of all lies below and above, digit by digit.
class Percentiles {
 public:
  Percentiles(NumberType type, double percent)
      : percent_(percent),
        top_(std::max(KeyBitsOf(type) - RankedKey::kDigitBits, 0)),
        shift_(top_) {
    Begin();
  }

  bool IsDone() const { return shift_ < 0; }
  void Look(const Samples& samples, int first, int last, const ShownNumbers& numbers) {
    const std::lock_guard lock(mutex_);
    ForEachNumber(samples, first, last, numbers, [&](uint64_t key) {
      low_.Count(key, shift_);
      high_.Count(key, shift_);
    });
  }
  void EndPass() {
    if (shift_ == top_ && !Rank()) {
      shift_ = -1;
      return;
    }
    low_.Choose(lowRank_);
    high_.Choose(highRank_);
    shift_ -= RankedKey::kDigitBits;
    if (!IsDone()) Begin();
  }
  KeyRange Keys() const { return isKnown_ ? KeyRange{low_.Key(), high_.Key()} : KeyRange{}; }

 private:
  void Begin() {
    low_.Begin();
    high_.Begin();
  }
  /// False if there is no number.
  bool Rank() {
    constexpr double kWhole = 100;
    const uint64_t count = low_.Total();
    isKnown_ = count > 0;
    if (!isKnown_) return false;
    lowRank_ = static_cast<uint64_t>(std::floor(static_cast<double>(count) * percent_ / kWhole));
    lowRank_ = std::min(lowRank_, (count - 1) / 2);
    highRank_ = count - 1 - lowRank_;
    return true;
  }

  const double percent_;
  const int top_;
  int shift_;
  std::mutex mutex_;
  RankedKey low_, high_;
  uint64_t lowRank_ = 0, highRank_ = 0;
  bool isKnown_ = false;
};

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

ShownNumbers::ShownNumbers(const PixelLayout& layout, const std::string& noData)
    : bands_(IsSingleBand(layout) ? 1 : ColorBandsOf(layout)),
      isAssociated_(layout.alpha == AlphaKind::associated),
      type_(isAssociated_ ? NumberType::float64 : layout.type),
      missing_(MissingKeysOf(noData, layout.type)) {}

void ShownNumbers::Read(const Samples& samples, int y, int band, ShownRow& row) const {
  const NumberType type = samples.Layout().type;
  const auto width = static_cast<size_t>(samples.Width());
  row.keys.resize(width);
  row.isMeasured.assign(width, 1);
  LoadKeys(type, PlaceOf(samples, y, band), samples.PixelBytes(), width, row.keys.data());
  const KeyRange numbers = NumberKeys(type);
  for (size_t x = 0; x < width; ++x) {
    const bool isMissing = !numbers.Has(row.keys[x]) || missing_.keys.Has(row.keys[x]);
    if (isMissing) row.isMeasured[x] = 0;
  }
  if (!HasAlphaBand(samples.Layout())) return;
  DivideByOpacity(samples, y, band, row);
}

void ShownNumbers::DivideByOpacity(const Samples& samples, int y, int band, ShownRow& row) const {
  const auto pitch = static_cast<size_t>(bands_) + 1;
  std::vector<double> pixels(row.keys.size() * pitch);
  UnpackSamples(samples, y, pitch, pixels.data());
  const double full = FullOpacity(samples.Layout());
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

bool IsStretchedColor(const PixelLayout& layout, const NumberStretch& stretch) {
  const bool isLight = layout.model == ColorModel::gray || layout.model == ColorModel::rgb ||
                       layout.model == ColorModel::grayWhiteIsZero;
  return isLight && IsStretched(layout) && stretch.kind != NumberStretch::Kind::automatic &&
         (stretch.kind != NumberStretch::Kind::full || HasNegatives(layout.type));
}

bool HasNegatives(NumberType type) {
  return !IsFloating(type) && !IsUnsigned(type);
}

NumberStretch::Kind KindFor(const PixelLayout& layout, const NumberStretch& stretch) {
  if (stretch.kind != NumberStretch::Kind::automatic) return stretch.kind;
  return IsSingleBand(layout) ? NumberStretch::Kind::minMax : NumberStretch::Kind::full;
}

class RangeFinder::State {
 public:
  State(const PixelLayout& pixels, const std::string& noData, const NumberStretch& wanted)
      : layout(pixels), stretch(wanted), kind(KindFor(pixels, wanted)), numbers(pixels, noData) {
    if (kind == NumberStretch::Kind::percent) percentiles.emplace(numbers.Type(), wanted.percent);
  }

  const PixelLayout layout;
  const NumberStretch stretch;
  const NumberStretch::Kind kind;
  const ShownNumbers numbers;
  Ends ends;
  bool hasEnds = false;
  std::optional<Percentiles> percentiles;
};

RangeFinder::RangeFinder(const PixelLayout& layout, const std::string& noData,
                         const NumberStretch& stretch)
    : state_(std::make_unique<State>(layout, noData, stretch)) {}

RangeFinder::~RangeFinder() = default;

bool RangeFinder::NeedsPass() const {
  if (state_->percentiles) return !state_->percentiles->IsDone();
  return state_->kind == NumberStretch::Kind::minMax && !state_->hasEnds;
}

void RangeFinder::Look(const Samples& samples, int first, int last) {
  if (state_->percentiles) return state_->percentiles->Look(samples, first, last, state_->numbers);
  state_->ends.Look(samples, first, last, state_->numbers);
}

void RangeFinder::EndPass() {
  if (state_->percentiles) return state_->percentiles->EndPass();
  state_->hasEnds = true;
}

FoundRange RangeFinder::Found() const {
  const PixelLayout& layout = state_->layout;
  const NumberType type = state_->numbers.Type();
  if (state_->kind == NumberStretch::Kind::fixed) return FixedRange(state_->stretch);
  FoundRange found = state_->kind == NumberStretch::Kind::full ? FullRange(layout)
                     : state_->percentiles ? RangeOfKeys(type, state_->percentiles->Keys())
                                           : RangeOfKeys(type, state_->ends.Keys());
  const bool isTurned = layout.model == ColorModel::grayWhiteIsZero && IsUnsigned(layout.type);
  if (isTurned && found.range) {
    std::swap(found.range->black, found.range->white);
    std::swap(found.black, found.white);
  }
  return found;
}

FoundRange FindRange(const Samples& samples, const std::string& noData,
                     const NumberStretch& stretch) {
  RangeFinder finder(samples.Layout(), noData, stretch);
  while (finder.NeedsPass()) {
    finder.Look(samples, 0, samples.Height());
    finder.EndPass();
  }
  return finder.Found();
}

void NoteRange(const FoundRange& found, Changes& changes) {
  changes.Note(found.range ? fmt::format("numbers from {} to {} {}", found.black, found.white,
                                         kShownRangeNote)
                           : "the grid holds no number; all of it is shown white");
}

}  // namespace rasterkit::detail
