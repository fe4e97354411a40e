#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_share.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

/// What a plan says about memory is enough for the save.
namespace rasterkit {
namespace {

using test::GradientRaster;
using test::TempFolder;

/// Nearly the most that a PNG file packs and unpacks in one call.
constexpr int kWidth = 4600, kHeight = 4700;

struct Work {
  std::string name, source, target;
  std::function<void(Picture&)> change;
};

const std::vector<Work>& Works() {
  static const std::vector<Work> works = {
      {"png from bitmap", "a.bmp", "b.png", [](Picture&) {}},
      {"png from tiff", "a.tif", "b.png", [](Picture&) {}},
      {"turned to png", "a.png", "b.png", [](Picture& picture) { picture.Turn(1); }},
      {"turned to tiff", "a.png", "b.tif", [](Picture& picture) { picture.Turn(1); }},
      {"turned tiff", "a.tif", "b.tif", [](Picture& picture) { picture.Turn(3); }},
      {"turned bitmap", "a.bmp", "b.png", [](Picture& picture) { picture.Turn(2); }},
      {"gray", "a.png", "b.png", [](Picture& picture) { picture.Change(MakeGray{}); }},
      {"tilted", "a.tif", "b.png", [](Picture& picture) { picture.Rotate(2); }},
      {"tilted far", "a.png", "b.tif", [](Picture& picture) { picture.Rotate(30); }},
      {"smaller", "a.png", "b.png", [](Picture& picture) { picture.Resize(900, 700); }},
      {"cropped", "a.tif", "b.png",
       [](Picture& picture) {
         picture.Crop({10, 20, 4000, 3000});
       }},
      {"mirrored", "a.png", "b.bmp",
       [](Picture& picture) { picture.Mirror(MirrorAxis::topBottom); }},
      {"turned twice", "a.jpg", "b.tif",
       [](Picture& picture) { picture.Turn(1).Change(MakeGray{}).Turn(1); }},
  };
  return works;
}

/// Empty, or why the picture was not saved.
std::string ErrorOf(const Picture& picture, const std::string& file, uint64_t memory, int threads) {
  Limits limits;
  limits.processBytes = memory;
  Run run;
  run.threads = threads;
  run.limits = limits;
  try {
    picture.Save(file, {}, run);
    return {};
  } catch (const Error& error) {
    return error.what();
  }
}

class StatedNeeds : public ::testing::Test {
 protected:
  void SetUp() override {
    const Picture picture =
        Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, kWidth, kHeight)));
    for (const char* name : {"a.bmp", "a.tif", "a.png", "a.jpg"}) picture.Save(folder_ / name);
  }
  const TempFolder folder_;
};

TEST_F(StatedNeeds, AreEnough) {
  for (const Work& work : Works()) {
    Picture picture = Picture::Open(folder_ / work.source);
    work.change(picture);
    const uint64_t before = ProcessPictureBytes();
    const uint64_t memory = picture.Plan(folder_ / work.target).memory;
    for (const int threads : {1, 2}) {
      EXPECT_EQ(ErrorOf(picture, folder_ / work.target, before + memory, threads), "")
          << work.name << ", threads " << threads << ", " << memory << " bytes";
    }
  }
}

// Rows in a scratch file and a reader that goes row by row take less than one picture.
TEST_F(StatedNeeds, GoOnBelowOnePicture) {
  Picture picture = Picture::Open(folder_ / "a.png");
  picture.Turn(1);
  constexpr uint64_t kPicture = uint64_t{kWidth} * kHeight * 3;
  for (const int threads : {1, 2}) {
    const uint64_t limit = ProcessPictureBytes() + kPicture * 3 / 4;
    EXPECT_EQ(ErrorOf(picture, folder_ / "b.tif", limit, threads), "") << "threads " << threads;
  }
}

}  // namespace
}  // namespace rasterkit
