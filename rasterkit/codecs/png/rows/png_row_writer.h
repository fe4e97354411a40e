#pragma once

#include <optional>
#include <vector>

#include <rasterkit/codecs/png/png_frame.h>
#include <rasterkit/codecs/png/png_plan.h>
#include <rasterkit/codecs/png/rows/png_packing.h>
#include <rasterkit/codecs/png/rows/png_stripes.h>
#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// Writes a PNG file that is not interlaced. Up to 64 MiB of filtered rows are kept and packed in
/// one call; larger pictures are packed in stripes while their rows come in.
class PngRowWriter : public RowWriter {
 public:
  /// `like` has the kind of the pixels.
  PngRowWriter(PngPlan plan, WrittenSize size, const Pixels& like, const PictureWriting& writing,
               TStream& stream);

  /// True if the file can be begun before all pixels are known.
  static bool CanBegin(const PngPlan& plan, WrittenSize size);

  void Write(Pixels& rows) override;
  /// The same for rows that stay as they are.
  void Write(const Pixels& rows);
  WrittenPicture Finish() override;

 private:
  const uint8_t* FileRow(const Pixels& rows, int y);
  void FollowIndexes(const Raster& rows);
  void WriteSmall();

  PngPlan plan_;
  const WrittenSize size_;
  const std::optional<TColor> keyColor_;
  const PictureWriting writing_;
  TStream& stream_;
  const PngPacking packing_;
  PngRowShape shape_;
  std::optional<PngFrame> frame_;
  int next_ = 0, largestIndex_ = 0;

  /// A row as it is in the file, and the one above.
  std::vector<uint8_t> row_, above_, candidate_;
  std::vector<uint8_t> indexes_;
  /// All filtered rows of a small picture.
  PixelMemory filtered_;
  std::optional<PngStripes> stripes_;
};

}  // namespace rasterkit::detail
