#pragma once

#include <iterator>
#include <random>
#include <string>

#include "tests/codecs/png/png_files.h"

/// PNG files of random pixels with every filter, and with single flaws.
namespace rasterkit::test {

struct MadeKind {
  int bits, colorType;
};
inline constexpr MadeKind kMadeKinds[] = {{1, 0}, {2, 0},  {4, 0},  {8, 0}, {16, 0},
                                          {8, 2}, {16, 2}, {1, 3},  {2, 3}, {4, 3},
                                          {8, 3}, {8, 4},  {16, 4}, {8, 6}, {16, 6}};

enum class MadeFlaw {
  wrongFilter,
  fewerRows,
  moreRows,
  wrongSum,
  moreData,
  cutData,
  smallWindow,
  emptyDataBehind,
  chunkBetweenData,
  criticalChunkBehind,
  wrongChunkSum,
  wrongSumBehind,
  fullEnd,
  noEnd,
  cutFile
};
inline constexpr MadeFlaw kMadeFlaws[] = {MadeFlaw::wrongFilter,      MadeFlaw::fewerRows,
                                          MadeFlaw::moreRows,         MadeFlaw::wrongSum,
                                          MadeFlaw::moreData,         MadeFlaw::cutData,
                                          MadeFlaw::smallWindow,      MadeFlaw::emptyDataBehind,
                                          MadeFlaw::chunkBetweenData, MadeFlaw::criticalChunkBehind,
                                          MadeFlaw::wrongChunkSum,    MadeFlaw::wrongSumBehind,
                                          MadeFlaw::fullEnd,          MadeFlaw::noEnd,
                                          MadeFlaw::cutFile};

/// A file in the making.
class MadePng {
 public:
  /// Random pixels with random filters, palettes and transparent colors.
  MadePng(const MadeKind& kind, int width, int height, std::mt19937& random);

  /// One filter for all rows.
  void SetFilters(uint8_t filter);
  /// Chunks of so many bytes; with empty ones in between.
  void Split(size_t pieceBytes, bool withEmpty);
  void AddFlaw(MadeFlaw flaw, std::mt19937& random);

  ByteList File() const;
  /// "2 bits, color type 3, 10 x 7".
  std::string Name() const;

 private:
  ByteList Packed() const;
  bool Has(MadeFlaw flaw) const { return hasFlaw_ && flaw_ == flaw; }

  MadeKind kind_;
  int width_, height_;
  size_t stride_;
  /// Filtered rows.
  ByteList rows_;
  ByteList before_;
  size_t pieceBytes_ = 0;
  bool withEmpty_ = false, hasFlaw_ = false;
  MadeFlaw flaw_ = MadeFlaw::noEnd;
};

}  // namespace rasterkit::test
