#include <random>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jpeg/lossless/bare_coefficients.h"

namespace rasterkit::test {
namespace {

struct Moved {
  std::vector<uint8_t> file;
  WrittenPicture written;
};

Moved Move(std::span<const uint8_t> file, const PictureMove& move) {
  PictureWriting writing;
  writing.metadata = ReadJpegHeader(file).metadata;
  writing.move = move;
  TMemoryStream stream;
  Moved moved;
  moved.written = CopyJpeg(file, writing, stream);
  moved.file = stream.TakeBytes();
  return moved;
}

PictureMove TurnOf(int bits, int left, int top, int width, int height) {
  return {left, top, width, height, (bits & 4) != 0, (bits & 2) != 0, (bits & 1) != 0};
}

std::string TextOf(const PictureMove& move) {
  std::string text = std::to_string(move.width) + "x" + std::to_string(move.height) + "+" +
                     std::to_string(move.left) + "+" + std::to_string(move.top);
  if (move.exchangesAxes) text += " exchanged";
  if (move.reversesColumns) text += " columns reversed";
  if (move.reversesRows) text += " rows reversed";
  return text;
}

/// Moves the largest part that can be and compares it with the plain rule.
void ExpectMoved(std::span<const uint8_t> file, const BareJpeg& source, const PictureMove& wanted) {
  const PictureHeader header = ReadJpegHeader(file);
  const auto& form = std::get<JpegForm>(header.form);
  const auto part = MovableJpegPart(form, source.width, source.height, wanted);
  if (part != wanted) {
    EXPECT_THROW(Move(file, wanted), RangeError) << TextOf(wanted);
  }
  if (!part) return;
  EXPECT_EQ(MovableJpegPart(form, source.width, source.height, *part), part);
  const Moved moved = Move(file, *part);
  EXPECT_EQ(DifferenceOf(ReadBare(moved.file), MovedBare(source, *part)), "") << TextOf(*part);
  EXPECT_EQ(std::get<JpegForm>(moved.written.form),
            std::get<JpegForm>(ReadJpegHeader(moved.file).form));
}

void ExpectAllTurns(const BareJpeg& source, const BareWriting& writing, std::mt19937& random) {
  const std::vector<uint8_t> file = WriteBare(source, writing);
  const auto below = [&](int most) {
    return static_cast<int>(random() % static_cast<unsigned>(most));
  };
  for (int bits = 0; bits < 8; bits++) {
    ExpectMoved(file, source, TurnOf(bits, 0, 0, source.width, source.height));
    const int left = below(source.width), top = below(source.height);
    ExpectMoved(
        file, source,
        TurnOf(bits, left, top, 1 + below(source.width - left), 1 + below(source.height - top)));
  }
}

struct Kind {
  J_COLOR_SPACE space;
  std::vector<BareSampling> samplings;
};

/// All factors of the first component beside chroma of 1 x 1, and others that are not usual.
std::vector<Kind> AllKinds() {
  std::vector<Kind> kinds;
  for (int h = 1; h <= 4; h++) {
    for (int v = 1; v <= 4; v++) {
      kinds.push_back({JCS_GRAYSCALE, {{h, v}}});
      kinds.push_back({JCS_YCbCr, {{h, v}, {1, 1}, {1, 1}}});
      kinds.push_back({JCS_YCCK, {{h, v}, {1, 1}, {1, 1}, {h, v}}});
    }
  }
  // Chroma larger than luminance; factors that do not divide; components that all differ.
  kinds.push_back({JCS_YCbCr, {{1, 1}, {2, 2}, {2, 1}}});
  kinds.push_back({JCS_YCbCr, {{3, 2}, {2, 1}, {1, 2}}});
  kinds.push_back({JCS_YCbCr, {{4, 1}, {3, 1}, {2, 1}}});
  kinds.push_back({JCS_YCbCr, {{2, 2}, {2, 2}, {2, 2}}});
  kinds.push_back({JCS_RGB, {{1, 1}, {1, 1}, {1, 1}}});
  kinds.push_back({JCS_CMYK, {{1, 1}, {1, 1}, {1, 1}, {1, 1}}});
  kinds.push_back({JCS_CMYK, {{1, 2}, {1, 1}, {2, 1}, {2, 2}}});
  kinds.push_back({JCS_UNKNOWN, {{2, 1}, {1, 1}}});
  return kinds;
}

bool FitsOneScan(const Kind& kind) {
  int blocks = 0;
  for (const BareSampling& sampling : kind.samplings) blocks += sampling.h * sampling.v;
  return kind.samplings.size() == 1 || blocks <= 10;
}

TEST(MoveJpeg, Coefficients_Should_BeThoseOfTheSource_InAllTurnsAndSamplings) {
  constexpr unsigned kSeed = 160;
  std::mt19937 random(kSeed);
  unsigned number = 0;
  for (const Kind& kind : AllKinds()) {
    for (const bool progressive : {false, true}) {
      for (const int restarts : {0, 1, 3}) {
        BareJpeg source =
            RandomBare(5 + static_cast<int>(random() % 90), 5 + static_cast<int>(random() % 90),
                       kind.space, kind.samplings, kSeed + number++);
        source.progressive = progressive;
        source.restartInterval = restarts;
        BareWriting writing;
        writing.separatesComponents = !FitsOneScan(kind);
        writing.optimizes = random() % 2 == 0 || progressive;
        SCOPED_TRACE(testing::Message()
                     << "seed " << kSeed << ", picture " << number << ", components "
                     << kind.samplings.size() << ", first " << kind.samplings[0].h << " x "
                     << kind.samplings[0].v << ", progressive " << progressive);
        ExpectAllTurns(source, writing, random);
      }
    }
  }
}

TEST(MoveJpeg, Coefficients_Should_BeThoseOfTheSource_AroundTheBordersOfUnits) {
  std::mt19937 random(3);
  for (const auto& samplings : {std::vector<BareSampling>{{2, 2}, {1, 1}, {1, 1}},
                                std::vector<BareSampling>{{2, 1}, {1, 1}, {1, 1}},
                                std::vector<BareSampling>{{1, 1}, {1, 1}, {1, 1}}}) {
    for (const int width : {1, 7, 8, 9, 15, 16, 17, 24, 31, 32, 33}) {
      for (const int height : {1, 8, 15, 16, 17, 31, 32, 33}) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        ExpectAllTurns(RandomBare(width, height, JCS_YCbCr, samplings, 7), {}, random);
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
