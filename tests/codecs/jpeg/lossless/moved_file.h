#pragma once

#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>

#include "tests/codecs/jpeg/lossless/bare_coefficients.h"

namespace rasterkit::test {

struct MovedFile {
  std::vector<uint8_t> bytes;
  WrittenPicture written;
};

/// Moves with the metadata of the file. If that throws, nothing must have been written.
inline MovedFile MovedWith(std::span<const uint8_t> file, const PictureWriting& writing) {
  TMemoryStream stream;
  try {
    MovedFile moved;
    moved.written = CopyJpeg(file, writing, stream);
    moved.bytes = stream.TakeBytes();
    return moved;
  } catch (...) {
    EXPECT_EQ(stream.Bytes().size(), 0u);
    throw;
  }
}

inline MovedFile Moved(std::span<const uint8_t> file, const PictureMove& move) {
  PictureWriting writing;
  writing.metadata = ReadJpegHeader(file).metadata;
  writing.move = move;
  return MovedWith(file, writing);
}

/// One of the eight orientations by three bits: axes, columns, rows.
inline PictureMove TurnOf(int bits, int left, int top, int width, int height) {
  return {left, top, width, height, (bits & 4) != 0, (bits & 2) != 0, (bits & 1) != 0};
}

inline PictureMove TurnOf(int bits, const BareJpeg& picture) {
  return TurnOf(bits, 0, 0, picture.width, picture.height);
}

inline constexpr int kQuarterTurn = 6;

inline std::string TextOf(const PictureMove& move) {
  std::string text = std::to_string(move.width) + "x" + std::to_string(move.height) + "+" +
                     std::to_string(move.left) + "+" + std::to_string(move.top);
  if (move.exchangesAxes) text += " exchanged";
  if (move.reversesColumns) text += " columns reversed";
  if (move.reversesRows) text += " rows reversed";
  return text;
}

/// The samplings of most photographs.
inline const std::vector<BareSampling> kHalvedChroma = {{2, 2}, {1, 1}, {1, 1}};

}  // namespace rasterkit::test
