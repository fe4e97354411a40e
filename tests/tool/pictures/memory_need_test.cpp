#include "tool/pictures/memory_need.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/codecs/tiff/tiff_encoder.h>

#include "tests/support/bmp_file.h"
#include "tests/support/gif_file.h"
#include "tests/support/oversized/oversized_files.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using tool::MemoryNeed;

/// Two copies of four bytes per pixel.
constexpr uint64_t Need(uint64_t width, uint64_t height) {
  return width * height * 8;
}

TEST(MemoryNeed, Should_FollowFromTheHeaderOfEachFormat) {
  const TempFolder folder;
  const Raster picture = GrayRaster(20, 30);
  SavePngFile(folder / "a.png", picture);
  EXPECT_EQ(MemoryNeed(folder / "a.png"), Need(20, 30));
  SaveBmpFile(folder / "a.bmp", picture);
  EXPECT_EQ(MemoryNeed(folder / "a.bmp"), Need(20, 30));
  SaveJpegFile(folder / "a.jpg", picture, 6);
  EXPECT_EQ(MemoryNeed(folder / "a.jpg"), Need(20, 30));
  TMemoryStream tiff;
  EncodeTiff(picture, tiff);
  WriteBytes(folder / "a.tif", {tiff.Bytes().begin(), tiff.Bytes().end()});
  EXPECT_EQ(MemoryNeed(folder / "a.tif"), Need(20, 30));
  WriteBytes(folder / "a.gif", PlainGif(21, 31).Bytes());
  EXPECT_EQ(MemoryNeed(folder / "a.gif"), Need(21, 31));
  BmpFile topDown;
  topDown.width = 5;
  topDown.height = -7;
  WriteBytes(folder / "b.bmp", topDown.Bytes());
  EXPECT_EQ(MemoryNeed(folder / "b.bmp"), Need(5, 7));
  BmpFile core;
  core.headerBytes = 12;
  core.width = 5;
  core.height = 7;
  WriteBytes(folder / "c.bmp", core.Bytes());
  EXPECT_EQ(MemoryNeed(folder / "c.bmp"), Need(5, 7));
}

TEST(MemoryNeed, Should_BeNothing_When_TheHeaderStatesNoSize) {
  const TempFolder folder;
  EXPECT_EQ(MemoryNeed(folder / "none"), 0u);
  EXPECT_EQ(MemoryNeed(folder.Path()), 0u);
  WriteText(folder / "text", "not a picture");
  EXPECT_EQ(MemoryNeed(folder / "text"), 0u);
  for (const char* start : {"BM", "\x89PNG\r\n\x1A\n", "GIF89a", "\xFF\xD8\xFF", "II*"}) {
    WriteText(folder / "cut", start);
    EXPECT_EQ(MemoryNeed(folder / "cut"), 0u) << start;
  }
  WriteBytes(folder / "drawing.emf", OversizedEmf(100, 0));
  EXPECT_EQ(MemoryNeed(folder / "drawing.emf"), 0u);
  // Looking into a pipe would take its bytes, or wait for them.
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(MemoryNeed(folder / "pipe"), 0u);
}

TEST(MemoryNeed, Should_NotOverflow_When_SidesAreAbsurd) {
  const TempFolder folder;
  WriteBytes(folder / "a.png", OversizedPng(0x7FFFFFFF, 0x7FFFFFFF, 0));
  EXPECT_EQ(MemoryNeed(folder / "a.png"), uint64_t{1} << 61);
}

}  // namespace
}  // namespace rasterkit::test
