#pragma once

#include <optional>

#include <rasterkit/codecs/png/png_blocks.h>
#include <rasterkit/codecs/png/png_plan.h>
#include <rasterkit/codecs/png/png_writer.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// What a PNG file has before its pixels and after them.
class PngFrame {
 public:
  /// Writes nothing. The plan must outlive the frame.
  PngFrame(const PngPlan& plan, WrittenSize size, std::optional<TColor> keyColor,
           const PictureWriting& writing, TStream& stream);

  /// The required form; nothing for the usual one.
  static std::optional<PngForm> WantedForm(const PictureWriting& writing);
  /// The transparent color of pixels. Beside an alpha channel it has no meaning, and a negative
  /// color is a system color, which a file cannot hold.
  static std::optional<TColor> KeyColorOf(const Pixels& pixels);

  /// Writes all that comes before the pixels. `level`: see SetPngCompression.
  void WriteFront(int level);
  /// Writes a chunk of packed pixels.
  void WriteData(std::span<const uint8_t> packed);
  /// Packs and writes the pixels by libpng.
  void WritePixels(const Pixels& pixels);
  /// Writes all that comes after the pixels.
  void WriteBack();

  const WrittenPicture& Written() const { return written_; }

 private:
  void SetKeyColor();

  const PngPlan& plan_;
  const WrittenSize size_;
  const std::optional<TColor> keyColor_;
  WrittenPicture written_;
  PngBlocks blocks_;
  PngWriter writer_;
};

}  // namespace rasterkit::detail
