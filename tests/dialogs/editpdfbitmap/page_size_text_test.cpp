#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editpdfbitmap/page_size_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::test {
namespace {

TEST(PageSizeText, Should_TellPixelsMillimetersAndMemory) {
  EXPECT_EQ(PageSizeText({595.276, 841.89}, 150), "1240 * 1754 px, 210 * 297 mm (6.52 [MB])");
  EXPECT_EQ(PageSizeText({72, 36}, 100), "100 * 50 px, 25 * 13 mm (15 [kB])");
  EXPECT_EQ(PageSizeText({72, 36}, 50), "50 * 25 px, 25 * 13 mm (3750 [byte])");
}

TEST(PageSizeText, Should_BeTranslated) {
  SetTranslator([](std::string_view key) {
    return key == rsEditPageSize ? std::string("%d x %d Punkte") : std::string();
  });
  EXPECT_EQ(PageSizeText({72, 36}, 100), "100 x 50 Punkte");
  SetTranslator({});
}

TEST(PageSizeText, Should_TellAnySize) {
  const double infinite = std::numeric_limits<double>::infinity();
  EXPECT_EQ(PageSizeText({1e12, 36}, 150).substr(0, 15), "2147483647 * 75");
  EXPECT_EQ(PageSizeText({infinite, 0}, 150).substr(0, 14), "2147483647 * 1");
  EXPECT_EQ(PageSizeText({std::nan(""), -5}, 150).substr(0, 20), "1 * 1 px, 0 * 0 mm (");
}

}  // namespace
}  // namespace rasterkit::test
