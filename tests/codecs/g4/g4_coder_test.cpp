#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/codecs/g4/g4_decoder.h>
#include <rasterkit/codecs/g4/g4_encoder.h>

#include "tests/codecs/g4/g4_peer.h"
#include "tests/codecs/g4/g4_rows.h"
#include "tests/reference/g4_reference.h"

namespace rasterkit::tests {
namespace {

using detail::G4Bits;
using detail::G4Decoder;
using detail::G4Encoder;

std::vector<uint8_t> Encoded(const PackedRows& rows, const G4Bits& bits) {
  G4Encoder encoder(rows.width, bits);
  encoder.Encode(rows.bytes.data(), rows.RowBytes(), rows.height);
  return encoder.EndStrip();
}

PackedRows Decoded(std::span<const uint8_t> strip, int width, size_t height, const G4Bits& bits,
                   size_t* regular = nullptr) {
  PackedRows rows(width, height);
  G4Decoder decoder(strip, width, bits);
  const size_t count = decoder.Decode(rows.bytes.data(), rows.RowBytes(), height);
  EXPECT_EQ(decoder.Row(), count);
  if (regular != nullptr) {
    *regular = count;
  } else {
    EXPECT_EQ(count, height);
  }
  return rows;
}

/// All four orders of bits and colors, both ways, and libtiff.
void ExpectRoundTrip(const PackedRows& rows) {
  for (const bool isLowBitFirst : {false, true}) {
    const std::vector<uint8_t> strip = Encoded(rows, {isLowBitFirst, false});
    ASSERT_EQ(strip, peer::EncodeByLibtiff(rows.bytes, rows.width, isLowBitFirst));
    ASSERT_EQ(strip, Encoded(rows.Turned(), {isLowBitFirst, true}));
    ASSERT_EQ(Decoded(strip, rows.width, rows.height, {isLowBitFirst, false}).bytes, rows.bytes);
    ASSERT_EQ(Decoded(strip, rows.width, rows.height, {isLowBitFirst, true}).bytes,
              rows.Turned().bytes);
  }
}

void ExpectReference(const PackedRows& rows) {
  for (const bool isLowBitFirst : {false, true}) {
    const auto strip = reference::EncodeG4Reference(rows.Pixels(), isLowBitFirst);
    ASSERT_EQ(Encoded(rows, {isLowBitFirst, false}), strip);
    ASSERT_EQ(reference::DecodeG4Reference(strip, rows.width, rows.height, isLowBitFirst),
              rows.Pixels());
  }
}

TEST(G4Coder, CodesAllPairsOfNarrowRows) {
  for (int width = 1; width <= 8; width++) {
    const unsigned rowKinds = 1u << width;
    PackedRows rows(width, size_t{2} * rowKinds * rowKinds);
    for (unsigned i = 0; i < rowKinds * rowKinds; i++) {
      for (int x = 0; x < width; x++) {
        rows.Set(x, 2 * i, (i / rowKinds >> x & 1) != 0);
        rows.Set(x, 2 * i + 1, (i % rowKinds >> x & 1) != 0);
      }
    }
    ExpectRoundTrip(rows);
    if (width <= 6) ExpectReference(rows);
  }
}

TEST(G4Coder, CodesAllPairsOfRowsUpTo12Pixels) {
  for (int width = 9; width <= 12; width++) {
    const unsigned rowKinds = 1u << width;
    // Strips of one row in turns with itself and all later ones: each pair both ways.
    for (unsigned above = 0; above < rowKinds; above++) {
      PackedRows rows(width, size_t{2} * (rowKinds - above));
      for (unsigned row = above; row < rowKinds; row++) {
        for (size_t i = 0; i < 2; i++) {
          const unsigned bits = (i == 0 ? above : row) << (16 - width);
          rows.Row(2 * (row - above) + i)[0] = static_cast<uint8_t>(bits >> 8);
          rows.Row(2 * (row - above) + i)[1] = static_cast<uint8_t>(bits);
        }
      }
      const std::vector<uint8_t> strip = Encoded(rows, {});
      ASSERT_EQ(strip, peer::EncodeByLibtiff(rows.bytes, width, false)) << width << " " << above;
      ASSERT_EQ(Decoded(strip, width, rows.height, {}).bytes, rows.bytes) << width << " " << above;
    }
  }
}

TEST(G4Coder, CodesRandomRows) {
  const unsigned seed = 20;
  std::mt19937 random(seed);
  SCOPED_TRACE(seed);
  for (int width = 1; width <= 300; width++) {
    for (const int run : {1, 4, 20, 100}) {
      ExpectRoundTrip(RandomRows(random, width, 20, run, 4));
      if (HasFatalFailure()) FAIL() << width << " " << run;
    }
    ExpectReference(RandomRows(random, width, 6, 9, 4));
    if (HasFatalFailure()) FAIL() << width;
  }
}

TEST(G4Coder, CodesLongRuns) {
  const unsigned seed = 21;
  std::mt19937 random(seed);
  SCOPED_TRACE(seed);
  for (const int width :
       {2559, 2560, 2561, 2623, 2624, 2625, 5119, 5120, 5184, 7680, 18724, 65537}) {
    for (const int run : {700, 3000, 30000}) {
      ExpectRoundTrip(RandomRows(random, width, 12, run, 3));
      if (HasFatalFailure()) FAIL() << width << " " << run;
    }
  }
  // Each length of a run of each color.
  for (int run = 0; run <= 5300; run++) {
    PackedRows rows(5400, 2);
    for (int x = 0; x < run; x++) rows.Set(x, 0, true);
    for (int x = run; x < 5400; x++) rows.Set(x, 1, true);
    for (const auto& row : {rows, rows.Turned()}) {
      const std::vector<uint8_t> strip = Encoded(row, {});
      ASSERT_EQ(strip, peer::EncodeByLibtiff(row.bytes, 5400, false)) << run;
      ASSERT_EQ(Decoded(strip, 5400, 2, {}).bytes, row.bytes) << run;
    }
  }
}

TEST(G4Coder, CodesWhiteAndBlackRows) {
  for (const int width : {1, 7, 8, 63, 64, 65, 127, 128, 2560, 9999}) {
    PackedRows rows(width, 9);
    ExpectRoundTrip(rows);
    for (size_t y = 0; y < rows.height; y++) {
      for (int x = 0; x < width; x++) rows.Set(x, y, y % 3 != 1);
    }
    ExpectRoundTrip(rows);
  }
}

TEST(G4Coder, TakesBytesInPieces) {
  const unsigned seed = 22;
  std::mt19937 random(seed);
  SCOPED_TRACE(seed);
  const PackedRows rows = RandomRows(random, 777, 200, 7, 3);
  for (const bool isLowBitFirst : {false, true}) {
    const G4Bits bits{isLowBitFirst, false};
    const std::vector<uint8_t> strip = Encoded(rows, bits);
    for (const size_t most : {1, 2, 9, 40}) {
      size_t at = 0;
      std::vector<uint8_t> piece;
      const auto next = [&]() -> std::span<const uint8_t> {
        const size_t count = std::min(strip.size() - at, 1 + random() % most);
        // A place of its own, so that bytes beyond the piece are not read.
        piece = std::vector<uint8_t>(strip.begin() + static_cast<std::ptrdiff_t>(at),
                                     strip.begin() + static_cast<std::ptrdiff_t>(at + count));
        at += count;
        return piece;
      };
      G4Decoder decoder(next, rows.width, bits);
      PackedRows decoded(rows.width, rows.height);
      ASSERT_EQ(decoder.Decode(decoded.bytes.data(), decoded.RowBytes(), rows.height), rows.height);
      ASSERT_EQ(decoded.bytes, rows.bytes);
    }
    // The encoder hands out pieces, too.
    G4Encoder encoder(rows.width, bits);
    std::vector<uint8_t> joined;
    for (size_t y = 0; y < rows.height; y++) {
      encoder.Encode(rows.Row(y));
      const std::vector<uint8_t> piece = encoder.TakeBytes();
      joined.insert(joined.end(), piece.begin(), piece.end());
    }
    const std::vector<uint8_t> end = encoder.EndStrip();
    joined.insert(joined.end(), end.begin(), end.end());
    ASSERT_EQ(joined, strip);
    // Strips do not depend on those before.
    encoder.Encode(rows.bytes.data(), rows.RowBytes(), rows.height);
    ASSERT_EQ(encoder.EndStrip(), strip);
  }
}

TEST(G4Coder, StopsWhereLibtiffWouldComplain) {
  const unsigned seed = 23;
  std::mt19937 random(seed);
  SCOPED_TRACE(seed);
  constexpr int kWidth = 90;
  constexpr size_t kHeight = 12;
  int whole = 0, cut = 0;
  for (const bool isLowBitFirst : {false, true}) {
    const G4Bits bits{isLowBitFirst, false};
    peer::LibtiffDecoder libtiff(kWidth, kHeight, isLowBitFirst);
    for (int turn = 0; turn < 20000; turn++) {
      std::vector<uint8_t> strip = Encoded(RandomRows(random, kWidth, kHeight, 5, 3), bits);
      const int kind = static_cast<int>(random() % 3);
      if (kind == 0) {
        strip[random() % strip.size()] ^= static_cast<uint8_t>(1u << random() % 8);
      } else if (kind == 1) {
        strip.resize(1 + random() % strip.size());
      } else {
        for (uint8_t& byte : strip) byte = static_cast<uint8_t>(byte & random());
      }
      size_t regular = 0;
      const PackedRows rows = Decoded(strip, kWidth, kHeight, bits, &regular);
      const auto expected = reference::DecodeG4Reference(strip, kWidth, kHeight, isLowBitFirst);
      ASSERT_EQ(regular, expected.size());
      ASSERT_EQ(rows.bytes, PackedOf(expected, kWidth, kHeight).bytes);
      const peer::LibtiffRows peer = libtiff.Decode(strip);
      const auto end = peer.rows.begin() + static_cast<std::ptrdiff_t>(regular * rows.RowBytes());
      ASSERT_TRUE(std::equal(peer.rows.begin(), end, rows.bytes.begin()));
      if (regular < kHeight) {
        cut++;
        continue;
      }
      whole++;
      ASSERT_TRUE(peer.isWhole);
      ASSERT_EQ(peer.messages, 0);
    }
  }
  EXPECT_GT(whole, 2000);
  EXPECT_GT(cut, 10000);
}

TEST(G4Coder, LooksAtNothingBehindTheLastRow) {
  const PackedRows rows(40, 3);
  std::vector<uint8_t> strip = Encoded(rows, {});
  ASSERT_EQ(strip[0] >> 5, 7);
  strip = {0xE0};
  EXPECT_EQ(Decoded(strip, 40, 3, {}).bytes, rows.bytes);
  size_t regular = 0;
  Decoded(strip, 40, 4, {}, &regular);
  EXPECT_EQ(regular, 3u);
  // The end of the strip is no row.
  Decoded(Encoded(rows, {}), 40, 4, {}, &regular);
  EXPECT_EQ(regular, 3u);
  Decoded({}, 40, 4, {}, &regular);
  EXPECT_EQ(regular, 0u);
}

}  // namespace
}  // namespace rasterkit::tests
