#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/qt/preview/preview_decoder.h>
#include <rasterkit/runtime/worker/worker_program.h>
#include <rasterkit/strings/strings.h>

#include "tests/support/bmp_file.h"
#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::detail {
namespace {

using test::BmpFile;
using test::TempFolder;

class PreviewDecoderTest : public testing::Test {
 protected:
  static Preview Decode(const std::string& fileName, int side = 100) {
    const std::atomic<bool> isCanceled = false;
    return DecodePreview(fileName, side, isCanceled);
  }

  /// Saves a bitmap in the kind of its extension; returns its full name.
  std::string Save(const std::string& name, TBitmap bitmap) const {
    std::unique_ptr<TGraphic> graphic = std::make_unique<TBitmap>(std::move(bitmap));
    SaveGraphic(folder_ / name, graphic);
    return folder_ / name;
  }

  TempFolder folder_;
};

std::string Sample(const std::string& name) {
  return std::string(RASTERKIT_SOURCE_TREE) + "/samples/" + name;
}

TEST_F(PreviewDecoderTest, Picture_Should_BeShrunkToTheSide) {
  const Preview preview = Decode(Save("wide.png", test::GradientBitmap(pf24bit, 403, 201)));
  EXPECT_EQ(preview.problem, "");
  EXPECT_EQ(preview.image.size(), QSize(100, 50));
  EXPECT_EQ(preview.width, 403);
  EXPECT_EQ(preview.height, 201);
}

TEST_F(PreviewDecoderTest, Preview_Should_BeTheSame_InAWorkerProcess) {
  SetWorkerProgram(RASTERKIT_WORKER);
  std::ofstream(folder_ / "broken.png") << "no picture";
  std::ofstream(folder_ / "plan.emf", std::ios::binary)
      << test::ReadFile(std::string(RASTERKIT_SOURCE_TREE) + "/fuzz/seeds/emf/text.emf");
  for (const std::string& file :
       {Sample("plan.png"), Sample("orientation-6.jpg"), Sample("orientation-3.jpg"),
        Sample("terrain.tif"), Sample("plan-colored.bmp"), folder_ / "broken.png",
        folder_ / "plan.emf", folder_ / "missing.png"}) {
    const Preview here = Decode(file);
    SetPreviewIsolation(Isolation::process);
    const Preview isolated = Decode(file);
    SetPreviewIsolation(Isolation::none);
    EXPECT_EQ(isolated.problem, here.problem) << file;
    EXPECT_EQ(isolated.image, here.image) << file;
    EXPECT_EQ(isolated.width, here.width) << file;
    EXPECT_EQ(isolated.height, here.height) << file;
  }
}

TEST_F(PreviewDecoderTest, Picture_Should_KeepAPixel_When_ItIsVeryNarrow) {
  const Preview preview = Decode(Save("line.bmp", test::GradientBitmap(pf8bit, 30000, 1)));
  EXPECT_EQ(preview.image.size(), QSize(100, 1));
}

TEST_F(PreviewDecoderTest, Picture_Should_StayAsItIs_When_Small) {
  for (const char* name : {"a.bmp", "a.png", "a.tif"}) {
    const TBitmap bitmap = test::GradientBitmap(pf24bit, 31, 17);
    const Preview preview = Decode(Save(name, TBitmap(bitmap.Content().Clone())));
    ASSERT_EQ(preview.image.size(), QSize(31, 17)) << name;
    const QColor color = preview.image.pixelColor(30, 0);
    EXPECT_EQ(RGB(static_cast<uint8_t>(color.red()), static_cast<uint8_t>(color.green()),
                  static_cast<uint8_t>(color.blue())),
              bitmap.PixelColor(30, 0))
        << name;
  }
}

TEST_F(PreviewDecoderTest, EveryFormat_Should_BeShrunk) {
  for (const TPixelFormat format : test::kEveryFormat) {
    const Preview preview = Decode(Save("a.bmp", test::GradientBitmap(format, 301, 77)));
    EXPECT_EQ(preview.image.width(), 100) << format;
  }
}

TEST_F(PreviewDecoderTest, Alpha_Should_BeKept_When_Defined) {
  TBitmap bitmap = test::GradientBitmap(pf32bit, 301, 77);
  bitmap.SetAlphaFormat(afDefined);
  const Preview preview = Decode(Save("a.png", std::move(bitmap)));
  EXPECT_TRUE(preview.image.hasAlphaChannel());
  EXPECT_LT(preview.image.pixelColor(99, 0).alpha(), preview.image.pixelColor(0, 0).alpha());
}

TEST_F(PreviewDecoderTest, Photo_Should_StandUpright_When_ItsExifDataTurnIt) {
  for (const char* name :
       {"orientation-1.jpg", "orientation-3.jpg", "orientation-6.jpg", "orientation-8.jpg"}) {
    const Preview upright = Decode(Sample("orientation-1.jpg"), 64);
    const Preview preview = Decode(Sample(name), 64);
    ASSERT_EQ(preview.image.size(), upright.image.size()) << name;
    EXPECT_EQ(preview.width, upright.width) << name;
    for (const QPoint place : {QPoint(5, 5), QPoint(30, 10), QPoint(50, 30)}) {
      const QColor expected = upright.image.pixelColor(place);
      const QColor color = preview.image.pixelColor(place);
      EXPECT_NEAR(color.red(), expected.red(), 24) << name << " " << place.x();
      EXPECT_NEAR(color.green(), expected.green(), 24) << name << " " << place.x();
      EXPECT_NEAR(color.blue(), expected.blue(), 24) << name << " " << place.x();
    }
  }
}

TEST_F(PreviewDecoderTest, Text_Should_SayThatItIsTooLarge_When_ThePictureClaimsTooMuch) {
  BmpFile huge{.width = 30000, .height = 30000};
  huge.pixels.assign(90000, 7);
  EXPECT_EQ(Decode(folder_.Write("huge.bmp", huge.Bytes())).problem, rsPreviewTooLarge);
}

TEST_F(PreviewDecoderTest, Text_Should_SayThatItIsBroken_When_NothingCanBeRead) {
  EXPECT_EQ(Decode(folder_.Write("empty.bmp", "")).problem, rsPreviewBroken);
  EXPECT_EQ(Decode(folder_.Write("text.png", "no picture at all")).problem, rsPreviewBroken);
  const std::string photo = test::ReadFile(Sample("gray.jpg"));
  EXPECT_EQ(Decode(folder_.Write("cut.jpg", photo.substr(0, 100))).problem, rsPreviewBroken);
}

TEST_F(PreviewDecoderTest, Text_Should_SayThatThereIsNone_When_FileIsNotToBeRead) {
  EXPECT_EQ(Decode(folder_ / "missing.bmp").problem, rsPreviewNone);
  EXPECT_EQ(Decode(folder_.Path().string()).problem, rsPreviewNone);
  EXPECT_EQ(Decode("").problem, rsPreviewNone);
  EXPECT_EQ(Decode(std::string("a\0b.bmp", 7)).problem, rsPreviewNone);
  EXPECT_EQ(Decode("/dev/zero").problem, rsPreviewNone);
  EXPECT_EQ(Decode(folder_.Write("plan.pdf", "%PDF-1.4\n")).problem, rsPreviewNone);
  const std::string pipe = folder_ / "pipe.bmp";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(Decode(pipe).problem, rsPreviewNone);
}

TEST_F(PreviewDecoderTest, Reading_Should_End_When_Canceled) {
  const std::string file = Save("a.png", test::GradientBitmap(pf24bit, 403, 201));
  const std::atomic<bool> isCanceled = true;
  EXPECT_TRUE(DecodePreview(file, 100, isCanceled).image.isNull());
}

TEST_F(PreviewDecoderTest, EveryDamage_Should_GiveAPictureOrAText) {
  std::random_device device;
  const unsigned seed = device();
  std::mt19937 random(seed);
  for (const char* name : {"gray.jpg", "plan.png", "terrain.tif", "plan-colored.bmp"}) {
    const std::string sound = test::ReadFile(Sample(name));
    ASSERT_FALSE(sound.empty());
    for (int i = 0; i < 40; ++i) {
      std::string bytes = sound;
      for (int k = 0; k < 5; ++k)
        bytes[random() % std::min<size_t>(bytes.size(), 600)] = static_cast<char>(random());
      if (i % 3 == 0) bytes.resize(random() % bytes.size());
      const Preview preview = Decode(folder_.Write(name, bytes));
      EXPECT_NE(preview.image.isNull(), preview.problem.empty()) << name << ", seed " << seed;
    }
  }
}

TEST_F(PreviewDecoderTest, EveryRealFile_Should_GiveAPictureOrAText) {
  const auto corpus = test::CorpusFolder();
  if (corpus.empty()) GTEST_SKIP() << "no corpus";
  int pictures = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(corpus)) {
    const Preview preview = Decode(entry.path().string(), 200);
    EXPECT_NE(preview.image.isNull(), preview.problem.empty()) << entry.path();
    pictures += preview.problem.empty() ? 1 : 0;
  }
  EXPECT_GT(pictures, 100);
}

}  // namespace
}  // namespace rasterkit::detail
