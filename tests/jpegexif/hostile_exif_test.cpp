#include <cstdint>

#include "tests/jpegexif/exif_fixture.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::TiffEntry;
using test::TiffWriter;

constexpr size_t kLargestTiff = 65535 - 2 - 6;

/// Sections that cost as much as possible. Counters limit the work, so the tests check numbers, not
/// times.
class HostileExif : public test::ExifFixture {
 protected:
  TiffWriter writer_{ByteOrder::intel};

  std::string Entry12(uint16_t tag, uint16_t type, uint32_t count, uint32_t value) const {
    return writer_.Word(tag) + writer_.Word(type) + writer_.Long(count) + writer_.Long(value);
  }
  int64_t KeptBytes() const {
    int64_t bytes = 0;
    for (const TTagEntry& entry : Exif().FTagArray) {
      bytes += static_cast<int64_t>(entry.RawBuff.size() + entry.Inhalt.size());
    }
    return bytes;
  }
};

TEST_F(HostileExif, EntriesThatAllClaimTheWholeSection_Should_KeepABoundedAmount) {
  std::string tiff = writer_.Header() + writer_.Word(5459);
  while (tiff.size() + 12 <= kLargestTiff) tiff += Entry12(274, 1, 60000, 8);
  ReadTiff(tiff);
  EXPECT_EQ(image_->ErrStr, "Illegally sized directory");
  EXPECT_LE(KeptBytes(), 16 << 20);
}

TEST_F(HostileExif, GpsDirectoriesInEachOther_Should_KeepABoundedAmount) {
  // Each entry of the main directory points to another place of itself, where a directory of
  // thousands begins.
  std::string tiff = writer_.Header() + writer_.Word(5459);
  for (uint32_t i = 0; tiff.size() + 12 <= kLargestTiff; ++i)
    tiff += Entry12(34853, 4, 1, 10 + 12 * i);
  ReadTiff(tiff);
  EXPECT_LE(KeptBytes(), 16 << 20);
  EXPECT_LE(image_->DirStack.size(), 64u << 10);
}

TEST_F(HostileExif, GpsDirectoriesAtEveryByte_Should_KeepABoundedAmount) {
  // Words 0x0005 everywhere: any place is a directory of 5 or 0x0500 rationals.
  std::string tiff = writer_.Header() + writer_.Word(2000);
  for (uint32_t i = 0; i < 2000; ++i) tiff += Entry12(34853, 4, 1, 24100 + i);
  while (tiff.size() + 2 <= kLargestTiff) tiff += writer_.Word(5);
  ReadTiff(tiff);
  EXPECT_EQ(image_->ErrStr, "Illegally sized directory");
  EXPECT_LE(KeptBytes(), 16 << 20);
}

TEST_F(HostileExif, EmptyGpsDirectoriesWithoutEnd_Should_KeepABoundedAmount) {
  // The more directories, the longer the list that tells which were visited.
  constexpr uint32_t kPointers = 5000;
  std::string tiff = writer_.Header() + writer_.Word(kPointers);
  for (uint32_t i = 0; i < kPointers; ++i) tiff += Entry12(34853, 4, 1, 60020 + i);
  tiff.resize(kLargestTiff, '\0');
  ReadTiff(tiff);
  EXPECT_EQ(image_->ErrStr, "");
  EXPECT_EQ(Exif().FTagCount, static_cast<int>(kPointers));
  EXPECT_LE(image_->DirStack.size(), 64u << 10);
}

TEST_F(HostileExif, ManyGpsDirectories_Should_AllBeRead_When_TheyDoNotOverlap) {
  constexpr uint32_t kDirectories = 2000, kEmptyDirectory = 2;
  const uint32_t first = 8 + 2 + 12 * kDirectories + 4;
  std::string tiff = writer_.Header() + writer_.Word(kDirectories);
  for (uint32_t i = 0; i < kDirectories; ++i) {
    tiff += Entry12(34853, 4, 1, first + i * kEmptyDirectory);
  }
  tiff += writer_.Long(0) + std::string(kEmptyDirectory * (kDirectories - 1), '\0');
  tiff += writer_.Directory(0, {writer_.Ascii(1, "S")});
  ReadTiff(tiff);
  EXPECT_EQ(image_->ErrStr, "");
  EXPECT_EQ(Gps().Latitude.Ref, 'S') << "the last one stays";
}

TEST_F(HostileExif, ThumbnailThatIsTheMainDirectory_Should_BeReadOnceMore) {
  std::string main = writer_.Header(30) + std::string(22, '\0') +
                     writer_.Directory(30, {writer_.Short(274, 6)}, 30) + std::string(400, '\0');
  ReadTiff(main);
  EXPECT_EQ(Exif().FTagCount, 2);
  EXPECT_EQ(Exif().Rotation, 270);
}

TEST_F(HostileExif, HonestSection_Should_BeReadWhole_When_ItIsAsLargeAsSectionsGet) {
  // 3,000 known entries of a GPS directory with a value each, without overlap: more than any camera
  // writes.
  std::vector<TiffEntry> entries(3000, writer_.Rationals(6, {{85, 10}}));
  ReadTiff(writer_.Tiff({writer_.GpsPointer(), writer_.Short(274, 6)}, entries));
  EXPECT_EQ(Exif().FTagCount, 3002);
  EXPECT_EQ(image_->ErrStr, "");
  EXPECT_EQ(Exif().Rotation, 270);
}

}  // namespace
}  // namespace rasterkit
