#pragma once

#include <optional>
#include <vector>

#include <rasterkit/codecs/png/png_decoding.h>
#include <rasterkit/codecs/png/png_map.h>
#include <rasterkit/codecs/png/png_reader.h>
#include <rasterkit/codecs/png/rows/png_row_change.h>
#include <rasterkit/codecs/png/rows/png_row_kind.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// How the rows of a PNG file are unpacked. The pixels, words and errors are the same.
enum class PngWay {
  /// Chosen by the size.
  automatic,
  /// By libpng.
  library
};

/// What a reader of PNG rows is opened for.
struct PngOpening {
  /// Nothing: the kind that loses nothing.
  std::optional<PngRowKind> kind;
  /// The whole picture is read at once, into memory that counts as one picture.
  bool isWhole = false;
  PngWay way = PngWay::automatic;
};

/// Decodes a PNG file row by row. The rows of an interlaced picture are read all at once only.
///
/// Pictures of up to 64 MiB of filtered rows that are not interlaced are inflated in one call and
/// checked to the end of the file before the first row is given. Everything that is not perfect,
/// and all other pictures, are read by libpng.
class RASTERKIT_EXPORT PngRows : public RowReader {
 public:
  /// Reads all that comes before the pixels.
  PngRows(TStream& stream, const PngOpening& opening);

  int Width() const override { return static_cast<int>(facts_.width); }
  int Height() const override { return static_cast<int>(facts_.height); }
  RowAccess Access() const override { return RowAccess::rising; }
  const Pixels& Like() const override { return like_; }
  void Read(int left, int top, Pixels& target) override;
  void Finish(CodecReport& report) override;

  /// Reads the whole picture. Afterwards there is no `Like`: nothing else is held.
  Pixels ReadWhole();

  bool IsInterlaced() const { return facts_.interlaced; }
  /// True if the rows were inflated in one call. Known after the first Read.
  bool IsInOneCall() const { return isInOneCall_; }

 private:
  void Begin();
  void ReadInflated(Pixels& target, int first, int count);
  void ReadByLibrary(Pixels& target, int first, int count);
  void FillMissing(Pixels& target, int first);
  const uint8_t* NextInflated();

  TStream& stream_;
  const PngMap map_;
  PngReader reader_;
  PngFacts facts_;
  PngRowKind kind_;
  const bool isAutomatic_;
  CodecReport noticed_;
  Pixels like_;

  bool hasBegun_ = false, hasFailed_ = false, isJudged_ = false, isInOneCall_ = false;
  /// The next row, and the first one that the file lacks.
  int next_ = 0, end_ = 0;
  int saidWarnings_ = 0;
  /// Filtered rows, unfiltered in place one after the other. Freed after the last one.
  PixelMemory inflated_;
  std::vector<uint8_t> zeros_;
  std::optional<PngRowChange> change_;
  std::vector<uint8_t> skipped_;
};

}  // namespace rasterkit::detail
