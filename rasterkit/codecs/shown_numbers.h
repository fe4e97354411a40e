#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/gray_steps.h>
#include <rasterkit/codecs/number_keys.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/number_stretch.h>
#include <rasterkit/raster/samples.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// The end of the note that names the numbers that became black and white.
inline constexpr const char* kShownRangeNote = "are shown as black to white";

/// A row of one band: the key of each number, and whether it was measured.
struct ShownRow {
  std::vector<uint64_t> keys;
  std::vector<uint8_t> isMeasured;
};

/// The numbers of the color bands that a picture shows: those of the samples, or, where they are
/// multiplied by opacity, divided by it, as doubles.
class RASTERKIT_EXPORT ShownNumbers {
 public:
  /// `noData` is the file's text.
  ShownNumbers(const PixelLayout& layout, const std::string& noData);

  NumberType Type() const { return type_; }
  bool HasMissing() const { return missing_.isKnown; }
  /// Color bands: gray has one.
  int Bands() const { return bands_; }
  /// Not measured: the number for missing data, NaN, and what is fully transparent.
  void Read(const Samples& samples, int y, int band, ShownRow& row) const;

 private:
  void DivideByOpacity(const Samples& samples, int y, int band, ShownRow& row) const;

  const int bands_;
  const bool isAssociated_;
  const NumberType type_;
  const MissingKeys missing_;
};

/// The range that a stretch shows, and what it is called in notes.
struct FoundRange {
  /// Nothing if no finite number was measured.
  std::optional<ShownRange> range;
  std::string black, white;
};

/// True if the stretch shows colors otherwise than by their whole range.
bool IsStretchedColor(const PixelLayout& layout, const NumberStretch& stretch);

/// The opacity of each pixel of a row, 0 to 255; the samples must have such a band.
void ReadOpacity(const Samples& samples, int y, uint8_t* opacity);

/// True for gray without alpha: a single band that can be a grid.
RASTERKIT_EXPORT bool IsSingleBand(const PixelLayout& layout);

/// True for whole numbers with a sign.
bool HasNegatives(NumberType type);

/// What `automatic` means for samples; other kinds stay.
RASTERKIT_EXPORT NumberStretch::Kind KindFor(const PixelLayout& layout,
                                             const NumberStretch& stretch);

/// Finds the range that a stretch shows, exactly and with a bounded table, in passes over the rows.
/// Of unsigned gray whose least number is white, black is the greater end; `fixed` says itself
/// which is black.
class RASTERKIT_EXPORT RangeFinder {
 public:
  RangeFinder(const PixelLayout& layout, const std::string& noData, const NumberStretch& stretch);
  ~RangeFinder();

  /// True if all rows must be seen, once more.
  bool NeedsPass() const;
  /// Sees rows `first` to `last - 1`. Several threads may see different rows.
  void Look(const Samples& samples, int first, int last);
  void EndPass();
  FoundRange Found() const;

 private:
  class State;
  std::unique_ptr<State> state_;
};

/// The range of samples that are there as a whole.
RASTERKIT_EXPORT FoundRange FindRange(const Samples& samples, const std::string& noData,
                                      const NumberStretch& stretch);

/// Says which numbers are shown black and white.
void NoteRange(const FoundRange& found, Changes& changes);

}  // namespace rasterkit::detail
