// Real files of other people: sizes as measured by other programs, refusals where all of them
// refuse.

#include <map>

#include <gtest/gtest.h>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/bmp/bmp_test_support.h"
#include "tests/support/corpus.h"

namespace rasterkit::test {
namespace {

/// Files that are read otherwise than the index says, each with the reason; none at present.
const std::map<std::string, std::string> kExceptions = {};

void ExpectSizeAndRoundTrip(CorpusEntry entry) {
  TFileStream stream((CorpusFolder() / entry["path"]).string());
  const Raster raster = DecodeBmp(stream);
  if (!entry["width"].empty() && entry["height"] != "0") {
    EXPECT_EQ(raster.Width(), std::stoi(entry["width"]));
    EXPECT_EQ(raster.Height(), std::abs(std::stoi(entry["height"])));
  }
  EXPECT_TRUE(PaddingIsZero(raster));
  EXPECT_TRUE(SamePicture(raster, DecodeBytes(EncodeToBytes(raster))));
}

void ExpectRefusal(CorpusEntry entry) {
  TFileStream stream((CorpusFolder() / entry["path"]).string());
  EXPECT_THROW(DecodeBmp(stream), Error);
}

TEST(BmpCorpus, Should_DoAsTheIndexSays_When_FilesAreReal) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no corpus";
  int files = 0;
  for (CorpusEntry entry : CorpusEntries("bmp")) {
    if (kExceptions.count(entry["path"]) > 0) continue;
    SCOPED_TRACE(entry["path"] + ": " + entry["expected"]);
    ++files;
    if (entry["expected"] == "must-be-refused") {
      ExpectRefusal(entry);
    } else if (entry["expected"] == "loads") {
      ASSERT_NO_THROW(ExpectSizeAndRoundTrip(entry));
    } else {
      try {
        ExpectSizeAndRoundTrip(entry);
      } catch (const Error& error) {
        RecordProperty(entry["path"], error.what());
        std::printf("refused: %s: %s\n", entry["path"].c_str(), error.what());
      }
    }
  }
  EXPECT_GT(files, 0);
}

}  // namespace
}  // namespace rasterkit::test
