#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using testing::ElementsAre;

constexpr uint64_t kDiskBytes = 4096;

template <class Graphic>
class FailedSave : public testing::Test {};

using Graphics = testing::Types<TBitmap, TJPEGImage, TPngImage>;
TYPED_TEST_SUITE(FailedSave, Graphics);

TYPED_TEST(FailedSave, Should_LeaveTheOldFileWhole_When_TheDiskIsFull) {
  const test::TempFolder folder;
  const std::string name = folder / "a.picture";
  const TBitmap small = test::GradientBitmap(pf24bit, 13, 7);
  TypeParam old;
  old.Assign(&small);
  old.SaveToFile(name);
  const std::string oldBytes = test::ReadFile(name);
  ASSERT_FALSE(oldBytes.empty());
  ASSERT_LT(oldBytes.size(), kDiskBytes);

  const int exitCode = test::RunInChild([&] {
    std::mt19937 random(4);
    const TBitmap noise = test::RandomBitmap(pf24bit, 301, 203, random);
    TypeParam graphic;
    graphic.Assign(&noise);
    test::LimitFileSize(kDiskBytes);
    try {
      graphic.SaveToFile(name);
    } catch (const FileError& error) {
      if (error.File() != name) return 4;
      return graphic.Modified() ? 3 : 5;
    }
    return 0;
  });
  EXPECT_EQ(exitCode, 3) << "0: no error, 4: it names another file, 5: the picture counts as saved";
  EXPECT_EQ(test::ReadFile(name), oldBytes);
  EXPECT_THAT(folder.Names(), ElementsAre("a.picture"));
}

TYPED_TEST(FailedSave, Should_LeaveTheOldFileWhole_When_ThereIsNoPicture) {
  const test::TempFolder folder;
  const std::string name = folder.Write("a.picture", "old");
  TypeParam empty;
  EXPECT_THROW(empty.SaveToFile(name), Error);
  EXPECT_EQ(test::ReadFile(name), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("a.picture"));
}

}  // namespace
}  // namespace rasterkit
