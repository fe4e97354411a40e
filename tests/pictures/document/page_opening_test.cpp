#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/pictures/document/made_document.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::TempFolder;
using testing::HasSubstr;

struct Sides {
  int width, height;
};
constexpr Sides kSides[] = {{120, 90}, {160, 96}, {200, 100}, {60, 50}, {96, 64}};

OpenOptions At(int page, Isolation isolation = Isolation::none) {
  OpenOptions options;
  options.page = page;
  options.isolation = isolation;
  return options;
}

class PageOpening : public testing::TestWithParam<Isolation> {
 protected:
  const TempFolder folder_;
};

TEST_P(PageOpening, FindsEachPage) {
  for (const char* mode : {"wl", "wb", "wl8", "wb8"}) {
    SCOPED_TRACE(mode);
    const std::string file = folder_ / "in.tif";
    test::WriteMadeDocument(file, mode);
    for (int page = 1; page <= test::kMadePages; ++page) {
      SCOPED_TRACE(page);
      const Picture picture = Picture::Open(file, At(page, GetParam()));
      EXPECT_EQ(picture.Width(), kSides[page - 1].width);
      EXPECT_EQ(picture.Height(), kSides[page - 1].height);
      EXPECT_EQ(picture.Pages(), test::kMadePages);
      EXPECT_EQ(picture.Numbers().Width(), kSides[page - 1].width);
    }
    const Picture fax = Picture::Open(file, At(test::kFaxPage, GetParam()));
    EXPECT_NEAR(fax.GetMetadata().resolution.x, 204, 1e-3);
    EXPECT_NEAR(fax.GetMetadata().resolution.y, 98, 1e-3);
  }
}

TEST_P(PageOpening, RefusesPagesThatAreNotThere) {
  const std::string file = folder_ / "in.tif";
  test::WriteMadeDocument(file, "wl");
  for (const int page : {6, 1000}) {
    try {
      Picture::Open(file, At(page, GetParam()));
      FAIL() << page;
    } catch (const RangeError& error) {
      EXPECT_THAT(error.what(), HasSubstr(file + ": there is no page " + std::to_string(page) +
                                          ": the file has 5 pages"));
    }
  }
  for (const int page : {0, -1}) {
    EXPECT_THROW(Picture::Open(file, At(page, GetParam())), RangeError);
  }
}

TEST_P(PageOpening, RefusesPagesOfOtherFormats) {
  Raster rows(pf24bit, 3, 2);
  const std::string file = folder_ / "in.png";
  Picture::Of(std::make_unique<TBitmap>(std::move(rows))).Save(file);
  EXPECT_EQ(Picture::Open(file, At(1, GetParam())).Width(), 3);
  try {
    Picture::Open(file, At(2, GetParam()));
    FAIL();
  } catch (const RangeError& error) {
    EXPECT_THAT(error.what(), HasSubstr("there is no page 2: the file has 1 page"));
  }
}

TEST_P(PageOpening, GivesTheWorldFileToTheFirstPageAlone) {
  const std::string file = folder_ / "in.tif";
  test::WriteMadeDocument(file, "wl");
  folder_.Write("in.tfw", "2\n0\n0\n-2\n1000\n2000\n");
  const Picture first = Picture::Open(file, At(1, GetParam()));
  ASSERT_TRUE(first.GetPlacement().affine);
  EXPECT_EQ(first.GetPlacement().affine->x, 1000);
  EXPECT_FALSE(Picture::Open(file, At(2, GetParam())).GetPlacement().affine);
}

INSTANTIATE_TEST_SUITE_P(Everywhere, PageOpening,
                         testing::Values(Isolation::none, Isolation::process),
                         [](const auto& isolation) {
                           return isolation.param == Isolation::none ? "Here" : "InAWorker";
                         });

}  // namespace
}  // namespace rasterkit
