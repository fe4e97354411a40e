#include <gtest/gtest.h>

#include <rasterkit/metafiles/records/ddb_reader.h>

#include "tests/support/field_bytes.h"

namespace rasterkit::test {
namespace {

using namespace detail;

/// Type, size, bytes per row, planes, bits per pixel, and the rows.
FieldBytes Ddb(int width, int height, int rowBytes, int bits, const std::vector<uint8_t>& rows,
               int planes = 1) {
  FieldBytes fields;
  fields.Words({0, width, height, rowBytes}).Byte(planes).Byte(bits);
  return fields.Bytes(rows);
}

Raster Read(const FieldBytes& fields) {
  MetafileBytes bytes(fields.bytes);
  return ReadDdb(bytes);
}

TEST(DdbReader, Should_ReadRowsFromTopToBottom) {
  const Raster mono = Read(Ddb(9, 2, 2, 1, {0x80, 0x80, 0x01, 0x00}));
  EXPECT_EQ(mono.Format(), pf1bit);
  EXPECT_EQ(mono.PixelColor(0, 0), clWhite);
  EXPECT_EQ(mono.PixelColor(1, 0), clBlack);
  EXPECT_EQ(mono.PixelColor(8, 0), clWhite);
  EXPECT_EQ(mono.PixelColor(0, 1), clBlack);
  EXPECT_EQ(mono.PixelColor(7, 1), clWhite);
  const Raster color = Read(Ddb(1, 2, 4, 24, {1, 2, 3, 99, 4, 5, 6, 99}));
  EXPECT_EQ(color.Format(), pf24bit);
  EXPECT_EQ(color.PixelColor(0, 0), 0x010203);
  EXPECT_EQ(color.PixelColor(0, 1), 0x040506);
  const Raster deep = Read(Ddb(2, 1, 8, 32, {1, 2, 3, 0, 4, 5, 6, 0}));
  EXPECT_EQ(deep.Format(), pf32bit);
  EXPECT_EQ(deep.PixelColor(1, 0), 0x040506);
}

TEST(DdbReader, Should_SkipTheRoomBeforeTheRows_When_ItIsAPattern) {
  FieldBytes fields = Ddb(8, 1, 2, 1, std::vector<uint8_t>(22, 0xFF));
  fields.Byte(0x0F).Byte(0xFF);
  MetafileBytes bytes(fields.bytes);
  const Raster pattern = ReadDdbPattern(bytes);
  EXPECT_EQ(pattern.PixelColor(3, 0), clBlack);
  EXPECT_EQ(pattern.PixelColor(4, 0), clWhite);
  EXPECT_EQ(bytes.Left(), 0u);
}

TEST(DdbReader, Should_Refuse_When_RowsAreShorterThanTheirPixels) {
  const std::vector<uint8_t> rows(64, 0xFF);
  EXPECT_NO_THROW(Read(Ddb(9, 2, 2, 1, rows)));
  EXPECT_THROW(Read(Ddb(9, 2, 1, 1, rows)), FormatError);
  EXPECT_THROW(Read(Ddb(17, 2, 2, 1, rows)), FormatError);
  EXPECT_NO_THROW(Read(Ddb(3, 2, 9, 24, rows)));
  EXPECT_THROW(Read(Ddb(3, 2, 8, 24, rows)), FormatError);
  EXPECT_THROW(Read(Ddb(3, 2, 11, 32, rows)), FormatError);
  EXPECT_THROW(Read(Ddb(3, 2, 0, 24, rows)), FormatError);
}

TEST(DdbReader, Should_Refuse_When_SizeDepthOrRowsAreImpossible) {
  const std::vector<uint8_t> rows(64, 0xFF);
  for (const int side : {0, -1, -32768}) {
    EXPECT_THROW(Read(Ddb(side, 2, 2, 1, rows)), FormatError) << side;
    EXPECT_THROW(Read(Ddb(2, side, 2, 1, rows)), FormatError) << side;
  }
  for (const int bits : {0, 4, 8, 16, 255}) {
    EXPECT_THROW(Read(Ddb(2, 2, 8, bits, rows)), UnsupportedError) << bits;
  }
  EXPECT_THROW(Read(Ddb(2, 2, 2, 1, rows, 4)), UnsupportedError);
  EXPECT_THROW(Read(Ddb(8, 33, 2, 1, rows)), FormatError);
  EXPECT_NO_THROW(Read(Ddb(8, 32, 2, 1, rows)));
  EXPECT_THROW(Read(Ddb(32767, 32767, 65535, 1, rows)), FormatError);
}

}  // namespace
}  // namespace rasterkit::test
