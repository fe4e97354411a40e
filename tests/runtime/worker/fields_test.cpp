#include <cmath>
#include <functional>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/fields.h>

namespace rasterkit::detail {
namespace {

enum class Season { spring, summer, autumn, winter };

std::vector<uint8_t> Written(const std::function<void(FieldWriter&)>& write) {
  FieldWriter writer;
  write(writer);
  return writer.Take();
}

TEST(Fields, NumbersAreLittleEndian) {
  FieldWriter writer;
  writer.U8(0x01);
  writer.U16(0x0203);
  writer.U32(0x04050607);
  writer.U64(0x08090A0B0C0D0E0F);
  EXPECT_EQ(writer.Take(),
            (std::vector<uint8_t>{1, 3, 2, 7, 6, 5, 4, 15, 14, 13, 12, 11, 10, 9, 8}));
  EXPECT_TRUE(writer.Written().empty());
}

TEST(Fields, ComeBackAsWritten) {
  FieldWriter writer;
  writer.U8(255);
  writer.U16(65535);
  writer.U32(0xFFFFFFFF);
  writer.U64(std::numeric_limits<uint64_t>::max());
  writer.I32(std::numeric_limits<int32_t>::min());
  writer.I64(-1);
  writer.F64(-0.0);
  writer.F64(std::numeric_limits<double>::quiet_NaN());
  writer.Bool(true);
  writer.Enum(Season::winter);
  writer.Text("Stra\u00DFe");
  writer.ByteText("\xFF\xFE");
  writer.Bytes(std::vector<uint8_t>{1, 2, 3});
  writer.List(std::vector<int>{4, 5}, [&](int item) { writer.I32(item); });
  writer.Optional(std::optional<int>(6), [&](int value) { writer.I32(value); });
  writer.Optional(std::optional<int>(), [&](int value) { writer.I32(value); });

  FieldReader reader(writer.Written());
  EXPECT_EQ(reader.U8(), 255);
  EXPECT_EQ(reader.U16(), 65535);
  EXPECT_EQ(reader.U32(), 0xFFFFFFFF);
  EXPECT_EQ(reader.U64(), std::numeric_limits<uint64_t>::max());
  EXPECT_EQ(reader.I32(), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(reader.I64(), -1);
  const double zero = reader.F64();
  EXPECT_TRUE(zero == 0 && std::signbit(zero));
  EXPECT_TRUE(std::isnan(reader.F64()));
  EXPECT_TRUE(reader.Bool());
  EXPECT_EQ(reader.Enum(Season::winter), Season::winter);
  EXPECT_EQ(reader.Text(100), "Stra\u00DFe");
  EXPECT_EQ(reader.ByteText(100), "\xFF\xFE");
  const auto bytes = reader.Bytes(3);
  EXPECT_EQ(std::vector<uint8_t>(bytes.begin(), bytes.end()), (std::vector<uint8_t>{1, 2, 3}));
  EXPECT_EQ(reader.List(2, 4, [&] { return reader.I32(); }), (std::vector<int>{4, 5}));
  EXPECT_EQ(reader.Optional([&] { return reader.I32(); }), 6);
  EXPECT_EQ(reader.Optional([&] { return reader.I32(); }), std::nullopt);
  EXPECT_EQ(reader.Rest(), 0u);
  reader.RequireEnd();
}

/// Every field must notice each length at which the message can be cut.
TEST(Fields, CutMessagesAreErrors) {
  const auto bytes = Written([](FieldWriter& writer) {
    writer.U64(1);
    writer.Text("text");
    writer.List(std::vector<int>{4, 5}, [&](int item) { writer.I32(item); });
  });
  const auto read = [](std::span<const uint8_t> part) {
    FieldReader reader(part);
    reader.U64();
    reader.Text(10);
    reader.List(10, 4, [&] { return reader.I32(); });
  };
  read(bytes);
  for (size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_THROW(read(std::span(bytes).first(size)), FormatError) << size;
  }
}

TEST(Fields, LeftBytesAreAnError) {
  const auto bytes = Written([](FieldWriter& writer) { writer.U16(1); });
  FieldReader reader(bytes);
  reader.U8();
  EXPECT_THROW(reader.RequireEnd(), FormatError);
}

TEST(Fields, BooleansAreZeroOrOne) {
  const std::vector<uint8_t> bytes = {2};
  EXPECT_THROW(FieldReader(bytes).Bool(), FormatError);
}

TEST(Fields, EnumsKeepTheirRange) {
  const auto beyond = Written([](FieldWriter& writer) { writer.U32(4); });
  EXPECT_THROW(FieldReader(beyond).Enum(Season::winter), FormatError);
  const auto negative = Written([](FieldWriter& writer) { writer.I32(-1); });
  EXPECT_THROW(FieldReader(negative).Enum(Season::winter), FormatError);
}

TEST(Fields, NumbersKeepTheirRange) {
  const auto bytes = Written([](FieldWriter& writer) { writer.I32(-5); });
  EXPECT_EQ(FieldReader(bytes).I32In(-5, 5), -5);
  EXPECT_THROW(FieldReader(bytes).I32In(-4, 5), FormatError);
  EXPECT_THROW(FieldReader(bytes).U32In(0, 5), FormatError);
}

TEST(Fields, TextsKeepTheirLimitAndTheirEncoding) {
  const auto text = Written([](FieldWriter& writer) { writer.Text("four"); });
  EXPECT_EQ(FieldReader(text).Text(4), "four");
  EXPECT_THROW(FieldReader(text).Text(3), FormatError);
  EXPECT_THROW(FieldReader(text).ByteText(3), FormatError);
  EXPECT_THROW(FieldReader(text).Bytes(3), FormatError);
  const auto invalid = Written([](FieldWriter& writer) { writer.Text("caf\xE9"); });
  EXPECT_THROW(FieldReader(invalid).Text(4), FormatError);
  EXPECT_EQ(FieldReader(invalid).ByteText(4), "caf\xE9");
}

/// A count alone must not allocate: the bytes behind it have to be there.
TEST(Fields, CountsAreBoundedByTheBytes) {
  const auto bytes = Written([](FieldWriter& writer) {
    writer.U32(0xFFFFFFFF);
    writer.U64(0);
  });
  EXPECT_THROW(FieldReader(bytes).Count(10), FormatError);
  EXPECT_THROW(FieldReader(bytes).Count(0xFFFFFFFF, 1), FormatError);
  const auto two = Written([](FieldWriter& writer) {
    writer.U32(2);
    writer.U64(0);
  });
  EXPECT_EQ(FieldReader(two).Count(2, 4), 2u);
  EXPECT_THROW(FieldReader(two).Count(2, 5), FormatError);
}

}  // namespace
}  // namespace rasterkit::detail
