// Pages written in bands: the bytes of a page that is written as a whole.

#include <array>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/bands/stage/band.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/rows/made_pages.h"

namespace rasterkit::test {
namespace {

constexpr unsigned kSeed = 23;
constexpr int kWidth = 75, kHeight = 61;

/// Rows of each band in turn; the last number counts for all others.
std::vector<uint8_t> WrittenInBands(const Pixels& pixels, const PictureWriting& writing,
                                    const std::vector<int>& bands, WrittenPicture& written) {
  TMemoryStream stream;
  const WrittenSize size{WidthOf(pixels), HeightOf(pixels)};
  const auto writer = OpenTiffWriter(NewPixels(pixels, 1, 1), size, writing, stream);
  if (!writer) return {};
  size_t number = 0;
  for (int y = 0; y < size.height; number++) {
    const int rows = std::min(bands[std::min(number, bands.size() - 1)], size.height - y);
    Pixels band = NewPixels(pixels, size.width, rows);
    CopyPart(pixels, {0, y, size.width, rows}, band, 0, 0);
    writer->Write(band);
    y += rows;
  }
  written = writer->Finish();
  return stream.TakeBytes();
}

std::vector<std::string> TextsOf(const Changes& changes) {
  std::vector<std::string> texts;
  for (const Loss& loss : changes.losses) texts.push_back(loss.what);
  for (const std::string& note : changes.notes) texts.push_back(note);
  return texts;
}

TEST(TiffRowWriter, Should_WriteTheSameBytes_When_RowsComeInBands) {
  std::mt19937 random(kSeed);
  int compared = 0;
  for (const PageKind& kind : AllPageKinds()) {
    const Pixels pixels = kind.make(kWidth, kHeight, random);
    for (const TiffForm& form : MadeForms()) {
      PictureWriting writing;
      writing.form = form;
      WrittenPicture whole;
      const std::vector<uint8_t> expected = Written(pixels, writing, &whole);
      for (const std::vector<int>& bands :
           {std::vector<int>{1}, {7}, {64}, {kHeight}, {3, 30, 2, 9}}) {
        for (const int threads : {1, 2, 7}) {
          if (bands[0] == 1 && threads == 7) continue;
          writing.threads = threads;
          WrittenPicture written;
          const auto bytes = WrittenInBands(pixels, writing, bands, written);
          if (bytes.empty()) {
            EXPECT_TRUE(std::get<TiffForm>(whole.form).isPlanar);
            continue;
          }
          EXPECT_TRUE(bytes == expected) << kind.name << ", " << Describe(form) << ", bands of "
                                         << bands[0] << " on " << threads << " threads";
          EXPECT_EQ(written.form, whole.form);
          EXPECT_EQ(TextsOf(written.changes), TextsOf(whole.changes));
          compared++;
        }
      }
    }
  }
  EXPECT_GT(compared, 3000);
}

TEST(TiffRowWriter, Should_Refuse_When_RowsAreMissingOrTooMany) {
  std::mt19937 random(kSeed);
  Pixels rows = RandomRaster(pf24bit, 20, 10, random);
  TMemoryStream stream;
  const auto writer = OpenTiffWriter(rows, {20, 15}, {}, stream);
  writer->Write(rows);
  EXPECT_THROW(writer->Finish(), RangeError);
  EXPECT_THROW(writer->Write(rows), RangeError);
}

/// Forgets what is written but the first and the last bytes.
class ForgetfulStream : public TStream {
 public:
  size_t Read(std::span<uint8_t>) override { return 0; }
  void Write(std::span<const uint8_t> source) override {
    if (position_ < head.size()) {
      const size_t count = std::min(source.size(), head.size() - static_cast<size_t>(position_));
      std::copy_n(source.begin(), count, head.begin() + static_cast<ptrdiff_t>(position_));
    }
    position_ += source.size();
    size_ = std::max(size_, position_);
  }
  uint64_t Position() const override { return position_; }
  void SetPosition(uint64_t position) override { position_ = position; }
  uint64_t Size() const override { return size_; }

  std::array<uint8_t, 16> head{};

 private:
  uint64_t position_ = 0, size_ = 0;
};

TEST(TiffRowWriter, Should_WriteBigTiffAndSayIt_When_TheFilePasses4Gigabytes) {
  constexpr int kSide = 66000, kBandRows = 1000;
  Pixels band = Raster(pf8bit, kSide, kBandRows);
  std::memset(std::get<Raster>(band).Row(0), 1, std::get<Raster>(band).Stride() * kBandRows);
  PictureWriting writing;
  TiffForm form = StripForm(COMPRESSION_NONE);
  form.rowsPerStrip = 100;
  writing.form = form;
  ForgetfulStream stream;
  const auto writer = OpenTiffWriter(band, {kSide, kSide}, writing, stream);
  for (int y = 0; y < kSide; y += kBandRows) writer->Write(band);
  const WrittenPicture written = writer->Finish();
  EXPECT_TRUE(std::get<TiffForm>(written.form).isBigTiff);
  EXPECT_THAT(written.changes.notes, testing::Contains(testing::HasSubstr("written as BigTIFF: ")));
  EXPECT_GT(stream.Size(), uint64_t{1} * kSide * kSide);
  EXPECT_EQ(stream.head[2], 43);
  // The directory follows the pixels.
  EXPECT_GT(stream.head[8 + 4], 0);
}

}  // namespace
}  // namespace rasterkit::test
