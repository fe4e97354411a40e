#include <gtest/gtest.h>

#include <rasterkit/metafiles/records/metafile_bytes.h>

#include "tests/support/field_bytes.h"

namespace rasterkit::test {
namespace {

using detail::MetafileBytes;

TEST(MetafileBytes, Should_ReadLittleEndianFields) {
  const FieldBytes fields =
      FieldBytes().Byte(0xFE).Word(0x8001).Word(-2).Long(0x80000003).Long(-5).Single(-2.5F);
  MetafileBytes bytes(fields.bytes);
  EXPECT_EQ(bytes.Byte(), 0xFE);
  EXPECT_EQ(bytes.Word(), 0x8001);
  EXPECT_EQ(bytes.Short(), -2);
  EXPECT_EQ(bytes.Long(), 0x80000003);
  EXPECT_EQ(bytes.Int(), -5);
  EXPECT_EQ(bytes.Single(), -2.5);
  EXPECT_EQ(bytes.Left(), 0u);
}

TEST(MetafileBytes, Should_Throw_When_AFieldDoesNotFit) {
  const FieldBytes fields{0x01020304};
  for (size_t start = 1; start <= 4; ++start) {
    MetafileBytes bytes(fields.bytes, start);
    EXPECT_EQ(bytes.Left(), 4 - start);
    EXPECT_THROW(bytes.Long(), FormatError) << start;
    EXPECT_THROW(bytes.Take(bytes.Left() + 1), FormatError) << start;
    EXPECT_THROW(bytes.Skip(bytes.Left() + 1), FormatError) << start;
    // A failed read does not move the position.
    EXPECT_EQ(bytes.Position(), start);
    EXPECT_EQ(bytes.Take(bytes.Left()).size(), 4 - start);
  }
  MetafileBytes atEnd(fields.bytes, 4);
  EXPECT_THROW(atEnd.Byte(), FormatError);
  EXPECT_THROW(atEnd.Word(), FormatError);
  EXPECT_THROW(atEnd.Skip(SIZE_MAX), FormatError);
}

TEST(MetafileBytes, Position_Should_StayInside) {
  const FieldBytes fields{1, 2};
  EXPECT_EQ(MetafileBytes(fields.bytes, 8).Left(), 0u);
  EXPECT_THROW(MetafileBytes(fields.bytes, 9), FormatError);
  MetafileBytes bytes(fields.bytes);
  EXPECT_THROW(bytes.SetPosition(9), FormatError);
  EXPECT_THROW(bytes.SetPosition(SIZE_MAX), FormatError);
  bytes.SetPosition(4);
  EXPECT_EQ(bytes.Long(), 2u);
}

TEST(MetafileBytes, Count_Should_BeWhatTheBytesHold) {
  const FieldBytes fields = FieldBytes().FillTo(17);
  MetafileBytes bytes(fields.bytes, 1);
  EXPECT_EQ(bytes.Count(0, 16), 0u);
  EXPECT_EQ(bytes.Count(1, 16), 1u);
  EXPECT_EQ(bytes.Count(4, 4), 4u);
  EXPECT_THROW(bytes.Count(2, 16), FormatError);
  EXPECT_THROW(bytes.Count(5, 4), FormatError);
  EXPECT_THROW(bytes.Count(1, 17), FormatError);
  EXPECT_THROW(bytes.Count(UINT64_MAX, 1), FormatError);
  // A product that overflows to a small number in 32 or 64 bits.
  EXPECT_THROW(bytes.Count(uint64_t{1} << 32, 16), FormatError);
  EXPECT_THROW(bytes.Count(uint64_t{1} << 62, 16), FormatError);
}

TEST(MetafileBytes, Singles_Should_Be0_When_TheyAreNoNumbers) {
  const FieldBytes fields{0x7FC00000, 0x7F800000, 0xFF800000, 0xFFFFFFFF, 0x3F800000};
  MetafileBytes bytes(fields.bytes);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(bytes.Single(), 0) << i;
  EXPECT_EQ(bytes.Single(), 1);
}

}  // namespace
}  // namespace rasterkit::test
