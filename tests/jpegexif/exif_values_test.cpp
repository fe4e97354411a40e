#include <random>

#include <rasterkit/jpegexif/exif_text.h>
#include <rasterkit/runtime/errors.h>

#include "tests/jpegexif/exif_fixture.h"

namespace rasterkit {
namespace {

using test::ByteOrder;

class ExifValues : public test::ExifInBothOrders {
 protected:
  void SetUp() override { image_->MotorolaOrder = GetParam() == ByteOrder::motorola; }
};
INSTANTIATE_TEST_SUITE_P(Orders, ExifValues,
                         ::testing::Values(ByteOrder::intel, ByteOrder::motorola), test::OrderName);

TEST_P(ExifValues, GetInt_Should_NotExtendTheSign_ForEveryByte) {
  for (int byte = 0; byte <= 255; ++byte) {
    ASSERT_EQ(image_->GetInt(std::string(1, static_cast<char>(byte))), byte);
  }
}

TEST_P(ExifValues, GetInt_Should_NotExtendTheSign_ForEveryWord) {
  for (uint32_t word = 0; word <= 0xFFFF; ++word) {
    ASSERT_EQ(image_->GetInt(writer_.Word(word)), static_cast<int32_t>(word));
  }
}

TEST_P(ExifValues, GetInt_Should_BeSigned_When_FourBytesSaySo) {
  EXPECT_EQ(image_->GetInt(writer_.Long(0xFFFFFFFF)), -1);
  EXPECT_EQ(image_->GetInt(writer_.Long(0x80000000)), INT32_MIN);
}

TEST_P(ExifValues, GetInt_Should_KeepTheLow32Bits_When_BytesAreMany) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  for (int i = 0; i < 2000; ++i) {
    std::string bytes(random() % 20, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    uint32_t expected = 0;
    const bool motorola = GetParam() == ByteOrder::motorola;
    for (size_t k = 0; k < 4 && k < bytes.size(); ++k) {
      const size_t place = motorola ? bytes.size() - 1 - k : k;
      expected += static_cast<uint32_t>(static_cast<uint8_t>(bytes[place])) << 8 * k;
    }
    ASSERT_EQ(image_->GetInt(bytes), static_cast<int32_t>(expected));
  }
  EXPECT_EQ(image_->GetInt(""), 0);
}

TEST_P(ExifValues, GetNumber_Should_TakeTheFirstValue) {
  EXPECT_EQ(image_->GetNumber("\7\10", 1), 7);
  EXPECT_EQ(image_->GetNumber("\377", 6), 255);
  EXPECT_EQ(image_->GetNumber(writer_.Word(513) + writer_.Word(9), 3), 513);
  EXPECT_EQ(image_->GetNumber(writer_.Word(0xFFFF), 8), 65535);
  EXPECT_EQ(image_->GetNumber(writer_.Long(70000), 4), 70000);
  EXPECT_EQ(image_->GetNumber(writer_.Long(0xFFFFFFFE), 9), -2);
  EXPECT_EQ(image_->GetNumber(writer_.Long(25) + writer_.Long(2), 5), 12.5);
  EXPECT_EQ(image_->GetNumber(writer_.Long(0xFFFFFFFF) + writer_.Long(4), 10), -0.25);
}

TEST_P(ExifValues, GetNumber_Should_BeZero_When_TheDenominatorIsZero) {
  EXPECT_EQ(image_->GetNumber(writer_.Long(25) + writer_.Long(0), 5), 0);
}

TEST_P(ExifValues, GetNumber_Should_BeZero_When_TheTypeIsNoNumber) {
  for (const uint16_t type : {0, 2, 7, 11, 12, 13, 65535}) {
    EXPECT_EQ(image_->GetNumber(writer_.Long(1) + writer_.Long(1), type), 0) << type;
  }
  EXPECT_EQ(image_->GetNumber("", 3), 0);
  EXPECT_EQ(image_->GetNumber("abc", 5), 0);
}

TEST_P(ExifValues, FormatNumber_Should_JoinTheValues) {
  EXPECT_EQ(image_->FormatNumber("\1\2\377", 1, "", ""), "1, 2, 255");
  EXPECT_EQ(image_->FormatNumber(writer_.Word(7), 3, "", ""), "7");
  EXPECT_EQ(image_->FormatNumber(writer_.Long(0xFFFFFFFF) + writer_.Long(2), 9, "", ""), "-1, 2");
  EXPECT_EQ(image_->FormatNumber(
                writer_.Long(1) + writer_.Long(2) + writer_.Long(3) + writer_.Long(0), 5, "", ""),
            "1/2, 3/0");
  EXPECT_EQ(image_->FormatNumber("ab", 7, "", ""), "?, ?");
  EXPECT_EQ(image_->FormatNumber(writer_.Word(7), 12, "", ""), "");
}

TEST_P(ExifValues, FormatNumber_Should_LeaveOutBytesThatMakeNoValue) {
  EXPECT_EQ(image_->FormatNumber(writer_.Word(7) + "x", 3, "", ""), "7");
  EXPECT_EQ(image_->FormatNumber("x", 3, "", ""), "");
}

TEST_P(ExifValues, FormatNumber_Should_EndAt128Values) {
  const std::string text = image_->FormatNumber(std::string(129, '\1'), 1, "", "");
  EXPECT_EQ(StrCount(text, ", "), 127);
}

TEST_P(ExifValues, FormatNumber_Should_DecodeIntegersByTheCodeList) {
  const std::string code = "1:one,2:two";
  EXPECT_EQ(image_->FormatNumber("\1\2\3", 1, "", code), "one, two, ");
  EXPECT_EQ(image_->FormatNumber(writer_.Long(1) + writer_.Long(1), 5, "", code), "1/1");
  image_->ExifDecode = false;
  EXPECT_EQ(image_->FormatNumber("\1\2\3", 1, "", code), "1, 2, 3");
}

TEST_P(ExifValues, FormatNumber_Should_FillATemplate) {
  const std::string half = writer_.Long(1) + writer_.Long(2);
  EXPECT_EQ(image_->FormatNumber(half, 5, "%s s", ""), "1/2 s");
  EXPECT_EQ(image_->FormatNumber(half, 5, "%0.2f s", ""), "0.50 s");
  EXPECT_EQ(image_->FormatNumber(half, 5, "100%% of %5.1f", ""), "100% of 0.5");
  EXPECT_EQ(image_->FormatNumber(half, 5, "plain", ""), "plain");
  EXPECT_EQ(image_->FormatNumber(half, 5, "%n%p%", ""), "%n%p%");
}

TEST_P(ExifValues, FillTagEntry_Should_CutTextAtTheFirstZero) {
  TTagEntry entry;
  entry.Tag = 18;
  image_->FillTagEntry(std::string("WGS-84\0junk", 11), 2, 55, 11, entry);
  EXPECT_EQ(entry.Inhalt, "WGS-84");
  EXPECT_EQ(entry.RawBuff.size(), 11u);
  EXPECT_EQ(entry.RawPos, 55);
  EXPECT_EQ(entry.RawSize, 11);
  EXPECT_EQ(entry.FmtType, 2);
  image_->FillTagEntry("no zero", 2, 1, 7, entry);
  EXPECT_EQ(entry.Inhalt, "no zero");
}

TEST_P(ExifValues, FillTagEntry_Should_QuoteUndefinedBytes) {
  TTagEntry entry;
  image_->FillTagEntry(std::string("0220\0x", 6), 7, 1, 6, entry);
  EXPECT_EQ(entry.Inhalt, "\"0220\"");
  image_->FillTagEntry(std::string("\0", 1), 7, 1, 1, entry);
  EXPECT_EQ(entry.Inhalt, "\"\"");
}

std::string Shout(const std::string& text, uint16_t tag, TImageData& image) {
  image.UseRaw = tag == 99;
  return text + "!" + std::to_string(tag);
}

TEST_P(ExifValues, FillTagEntry_Should_AskTheCallback) {
  TTagEntry entry;
  entry.Tag = 98;
  entry.CallBack = Shout;
  image_->FillTagEntry("a", 2, 1, 1, entry);
  EXPECT_EQ(entry.Inhalt, "a!98");
  entry.Tag = 99;
  image_->FillTagEntry("a", 2, 1, 1, entry);
  EXPECT_EQ(entry.Inhalt, "a") << "a callback that sets UseRaw leaves the plain text";
  EXPECT_TRUE(image_->UseRaw);
  entry.Tag = 0;
  image_->FillTagEntry("a", 2, 1, 1, entry);
  EXPECT_EQ(entry.Inhalt, "a") << "tag 0 is never given to a callback";
  EXPECT_FALSE(image_->UseRaw) << "each entry starts anew";
  entry.Tag = 98;
  image_->ExifDecode = false;
  image_->FillTagEntry("a", 2, 1, 1, entry);
  EXPECT_EQ(entry.Inhalt, "a");
}

class ExifEffects : public ExifValues {
 protected:
  void Store(uint16_t tag, const std::string& raw, uint16_t type, const std::string& text = "") {
    if (!image_->ExifData) image_->ExifData = std::make_unique<TExifData>(kAllTagTypes);
    entry_ = TTagEntry();
    entry_.Tag = tag;
    entry_.FmtType = type;
    entry_.RawBuff = raw;
    entry_.RawSize = static_cast<int64_t>(raw.size());
    entry_.RawPos = 77;
    entry_.Inhalt = text;
    image_->ProcTagExif(entry_);
  }
  TTagEntry entry_;
};
INSTANTIATE_TEST_SUITE_P(Orders, ExifEffects,
                         ::testing::Values(ByteOrder::intel, ByteOrder::motorola), test::OrderName);

TEST_P(ExifEffects, Sizes_Should_BeStored) {
  Store(256, writer_.Word(640), 3);
  Store(257, writer_.Long(480), 4);
  EXPECT_EQ(Exif().Width, 640);
  EXPECT_EQ(Exif().Height, 480);
  Store(40962, writer_.Word(641), 3);
  Store(40963, writer_.Long(481), 4);
  EXPECT_EQ(Exif().Width, 641);
  EXPECT_EQ(Exif().Height, 481);
}

TEST_P(ExifEffects, Number_Should_BeCutTo32Bits_When_AQuotientIsLarger) {
  Store(256, writer_.Long(0x80000000) + writer_.Long(0xFFFFFFFF), 10);
  EXPECT_EQ(Exif().Width, INT32_MAX);
}

TEST_P(ExifEffects, Texts_Should_BeStored) {
  Store(271, "", 2, "Maker");
  Store(272, "", 2, "Model");
  EXPECT_EQ(Exif().CameraMake, "Maker");
  EXPECT_EQ(Exif().CameraModel, "Model");
  Store(36864, "0220", 7, "\"0220\"");
  EXPECT_EQ(Exif().ExifVersion, "0220");
  Store(37385, writer_.Word(25), 3);
  EXPECT_EQ(Exif().FlashUsed, 25);
}

TEST_P(ExifEffects, BothDates_Should_GoToDateTime) {
  Store(306, "", 2, "changed");
  EXPECT_EQ(Exif().DateTime, "changed");
  Store(36867, "", 2, "taken");
  EXPECT_EQ(Exif().DateTime, "taken");
  EXPECT_EQ(Exif().DateTime_org, "");
}

TEST_P(ExifEffects, UserComment_Should_LoseItsPrefixAndItsLastByte) {
  Store(37510, std::string("ASCII\0\0\0 hello x", 16), 7, "old");
  EXPECT_EQ(Exif().Comments, "hello");
  EXPECT_EQ(entry_.Inhalt, "hello");
  EXPECT_EQ(Exif().CommentPosn, 77);
  EXPECT_EQ(Exif().CommentSize, 7);
  Store(37510, "short", 7, "old");
  EXPECT_EQ(Exif().Comments, "");
  EXPECT_EQ(Exif().CommentSize, -4);
}

TEST_P(ExifEffects, UserComment_Should_BeUtf8_When_ItsBytesAreLatin1) {
  Store(37510, std::string("ASCII\0\0\0gr\xFC\xDF x", 14), 7, "old");
  EXPECT_EQ(Exif().Comments, "grüß");
  Store(37510, std::string("ASCII\0\0\0gr\xC3\xBC\xC3\x9F x", 16), 7, "old");
  EXPECT_EQ(Exif().Comments, "grüß");
  Store(36864, "02\xE9\x30", 7, "old");
  EXPECT_EQ(Exif().ExifVersion, "02\u00E90");
}

TEST_P(ExifEffects, NothingShould_BeStored_When_ThereIsNoExifData) {
  TImageData image;
  TTagEntry entry;
  entry.Tag = 274;
  image.ProcTagExif(entry);
  image.ProcTagGPS(entry);
  EXPECT_EQ(image.ExifData, nullptr);
}

}  // namespace
}  // namespace rasterkit
