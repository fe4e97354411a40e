// Metadata of real photographs, written in front of their own pictures and read back.

#include <algorithm>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/jpegexif/exif_writer.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/errors.h>

#include "tests/reference/exif_writer_reference.h"
#include "tests/support/corpus.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::CorpusEntry;

/// Without a header its component names mean red, green and blue; the header of 300 dpi that such a
/// file gets means luminance and differences.
constexpr char kColorsByName[] = "jpeg/serenity__rgb_components.jpg";

class ExifWriterCorpus : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
    entries_ = test::CorpusEntries(GetParam());
  }

  static std::string Name(const CorpusEntry& entry) {
    return (test::CorpusFolder() / entry.at("path")).string();
  }

  std::vector<CorpusEntry> entries_;
};

std::string TextOf(TStream& stream) {
  stream.SetPosition(0);
  const std::vector<uint8_t> bytes = stream.ReadToEnd();
  return {bytes.begin(), bytes.end()};
}

/// Reads without decoding, because invalid coordinates in some files would end the reading.
void ReadPlainly(TImageData& image, TStream& stream) {
  stream.SetPosition(0);
  image.ExifDecode = false;
  image.ReadJpegSections(stream);
}

void ExpectSame(PSection written, PSection read, const std::string& name) {
  ASSERT_EQ(written == nullptr, read == nullptr) << name;
  if (written != nullptr) {
    EXPECT_EQ(written->Data, read->Data) << name;
  }
}

TEST_P(ExifWriterCorpus, WrittenMetadata_Should_BeReadBack_And_ThePictureData_Should_BeTheSame) {
  size_t withExif = 0;
  for (const CorpusEntry& entry : entries_) {
    const std::string name = Name(entry);
    TMemoryStream file, target;
    file.LoadFromFile(name);
    TImageData image, again;
    ReadPlainly(image, file);
    image.WriteImageToStream(file, target, false);
    const std::string bytes = TextOf(file), written = TextOf(target);
    EXPECT_TRUE(written == reference::WriteImageToStream(image, bytes, false)) << name;
    const auto place = static_cast<size_t>(reference::PictureDataPlace(bytes));
    const std::string rest = place < bytes.size() ? bytes.substr(place) : "";
    EXPECT_TRUE(written.size() >= rest.size() &&
                written.compare(written.size() - rest.size(), rest.size(), rest) == 0)
        << name;
    ReadPlainly(again, target);
    if (image.ExifSegment != nullptr) {
      ++withExif;
      ExpectSame(image.ExifSegment, again.ExifSegment, name);
      EXPECT_EQ(image.ExifData->Rotation, again.ExifData->Rotation) << name;
    }
    if (image.IPTCSegment != nullptr) ExpectSame(image.IPTCSegment, again.IPTCSegment, name);
  }
  EXPECT_GT(withExif, 0u);
}

TEST_P(ExifWriterCorpus, Thumbnails_Should_BeWhatTheReferenceFinds_And_BeGone_When_Removed) {
  for (const CorpusEntry& entry : entries_) {
    const std::string name = Name(entry);
    TMemoryStream file, target;
    file.LoadFromFile(name);
    TImageData image, again;
    ReadPlainly(image, file);
    EXPECT_TRUE(image.ExtractThumbnailBuffer() == reference::ExtractThumbnailBuffer(image)) << name;
    if (!image.ExifData || !image.ExifData->HasThumbnail()) continue;
    image.RemoveThumbnail();
    EXPECT_EQ(image.ExifSegment->Size, image.ExifData->ThumbStart - 6) << name;
    image.WriteImageToStream(file, target, false);
    ReadPlainly(again, target);
    EXPECT_EQ(again.ExifSegment->Data, image.ExifSegment->Data) << name;
    EXPECT_EQ(again.ExtractThumbnailBuffer(), "") << name;
  }
}

TEST_P(ExifWriterCorpus, Pixels_Should_BeTheSame) {
  size_t compared = 0;
  for (const CorpusEntry& entry : entries_) {
    if (entry.at("expected") != "loads" || entry.at("path") == kColorsByName) continue;
    TMemoryStream file, target;
    file.LoadFromFile(Name(entry));
    // Small files suffice: the whole of the data is compared above.
    if (file.Size() > 200'000) continue;
    TImageData image;
    ReadPlainly(image, file);
    image.WriteImageToStream(file, target, false);
    EXPECT_TRUE(test::SamePixels(DecodeJpeg(file.Bytes()), DecodeJpeg(target.Bytes())))
        << entry.at("path");
    ++compared;
  }
  EXPECT_GT(compared, 0u);
}

INSTANTIATE_TEST_SUITE_P(Folders, ExifWriterCorpus, ::testing::Values("exif", "jpeg"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace rasterkit
