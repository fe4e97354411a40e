#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jpeg/jpeg_segments_of_tests.h"
#include "tests/codecs/jpeg/lossless/moved_file.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

/// The program that comes with the JPEG library.
constexpr const char* kPeer = "/usr/bin/jpegtran";

/// What the peer makes of a file.
std::vector<uint8_t> PeerMoved(const TempFolder& folder, const std::vector<uint8_t>& file,
                               const std::string& options) {
  const std::string in =
      folder.Write("in.jpg", {reinterpret_cast<const char*>(file.data()), file.size()});
  const std::string out = folder / "out.jpg";
  const std::string command =
      std::string(kPeer) + " -copy none " + options + " -outfile " + out + " " + in;
  if (std::system(command.c_str()) != 0) ADD_FAILURE() << command;
  return BytesOfFile(out);
}

struct PeerTurn {
  int bits;
  const char* option;
};
constexpr PeerTurn kPeerTurns[] = {{0, ""},
                                   {1, "-flip vertical -trim"},
                                   {2, "-flip horizontal -trim"},
                                   {3, "-rotate 180 -trim"},
                                   {4, "-transpose"},
                                   {5, "-rotate 270 -trim"},
                                   {6, "-rotate 90 -trim"},
                                   {7, "-transverse -trim"}};

/// The peer writes gray as 1 x 1, no restart intervals and usual scans.
std::string PeerDifference(const MovedFile& ours, const std::vector<uint8_t>& theirs) {
  BareJpeg expected = ReadBare(theirs), actual = ReadBare(ours.bytes);
  expected.restartInterval = actual.restartInterval;
  expected.progressive = actual.progressive;
  if (actual.components.size() == 1) {
    expected.components[0].h = actual.components[0].h;
    expected.components[0].v = actual.components[0].v;
  }
  return DifferenceOf(actual, expected);
}

TEST(MoveJpegPeer, Coefficients_Should_BeThoseOfThePeer) {
  if (!std::filesystem::exists(kPeer)) GTEST_SKIP() << "jpegtran is not installed";
  const TempFolder folder;
  struct Kind {
    J_COLOR_SPACE space;
    std::vector<BareSampling> samplings;
  };
  unsigned seed = 40;
  for (const Kind& kind :
       {Kind{JCS_GRAYSCALE, {{1, 1}}}, Kind{JCS_YCbCr, kHalvedChroma},
        Kind{JCS_YCbCr, {{2, 1}, {1, 1}, {1, 1}}}, Kind{JCS_YCbCr, {{1, 2}, {1, 1}, {1, 1}}},
        Kind{JCS_YCbCr, {{4, 1}, {1, 1}, {1, 1}}}, Kind{JCS_YCbCr, {{1, 1}, {2, 2}, {1, 2}}},
        Kind{JCS_YCbCr, {{3, 2}, {1, 1}, {1, 1}}}, Kind{JCS_YCCK, {{2, 2}, {1, 1}, {1, 1}, {2, 2}}},
        Kind{JCS_CMYK, {{1, 1}, {1, 1}, {1, 1}, {1, 1}}}}) {
    for (const auto& [width, height] : {std::pair{97, 71}, {64, 96}, {33, 40}}) {
      const BareJpeg source = RandomBare(width, height, kind.space, kind.samplings, seed++);
      const auto file = WriteBare(source);
      const auto form = std::get<JpegForm>(ReadJpegHeader(file).form);
      for (const PeerTurn& turn : kPeerTurns) {
        SCOPED_TRACE(testing::Message()
                     << width << " x " << height << " " << turn.option << ", seed " << seed - 1);
        const auto part = MovableJpegPart(form, width, height, TurnOf(turn.bits, source));
        ASSERT_TRUE(part);
        EXPECT_EQ(PeerDifference(Moved(file, *part), PeerMoved(folder, file, turn.option)), "");
      }
      const PictureMove crop = {form.components.size() == 1 ? 8 : 0, 0, width / 2, height - 5};
      EXPECT_EQ(PeerDifference(Moved(file, crop), PeerMoved(folder, file, "-crop " + TextOf(crop))),
                "");
    }
  }
}

/// The place behind the segments in front of the pixels; metadata is none of the codec's business.
size_t CodedSize(std::span<const uint8_t> file) {
  size_t at = 2, metadata = 0;
  while (at + 4 <= file.size() && file[at] == 0xFF && file[at + 1] != 0xDA) {
    const size_t bytes = 2 + static_cast<size_t>(file[at + 2] << 8 | file[at + 3]);
    const bool isMetadata = (file[at + 1] >= 0xE0 && file[at + 1] <= 0xEF) || file[at + 1] == 0xFE;
    if (isMetadata) metadata += bytes;
    at += bytes;
  }
  return file.size() - metadata;
}

TEST(MoveJpegCorpus, EachFile_Should_BeMovedExactlyOrRefusedInWords) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  const TempFolder folder;
  int exact = 0, refused = 0;
  std::vector<std::string> larger;
  for (const auto& path : CorpusJpegs()) {
    SCOPED_TRACE(path);
    const auto file = BytesOfFile(path);
    PictureHeader header;
    try {
      header = ReadJpegHeader(file);
    } catch (const FormatError&) {
      continue;
    }
    constexpr size_t kLargeFile = 200000;
    for (const int bits : {kQuarterTurn, 0, 1, 7}) {
      if (bits != kQuarterTurn && file.size() > kLargeFile) break;
      const auto part =
          MovableJpegPart(std::get<JpegForm>(header.form), header.width, header.height,
                          TurnOf(bits, 0, 0, header.width, header.height));
      if (!part) {
        EXPECT_TRUE(std::get<JpegForm>(header.form).arithmetic || header.width < 32 ||
                    header.height < 32);
        continue;
      }
      try {
        const MovedFile moved = Moved(file, *part);
        exact++;
        const BareJpeg source = ReadBare(file);
        EXPECT_EQ(DifferenceOf(ReadBare(moved.bytes), MovedBare(source, *part)), "");
        const auto before = static_cast<double>(CodedSize(file));
        if (static_cast<double>(CodedSize(moved.bytes)) <= 1.01 * before) continue;
        larger.push_back(path);
        if (source.progressive || !std::filesystem::exists(kPeer)) continue;
        const auto theirs =
            PeerMoved(folder, file,
                      std::string("-optimize ") + kPeerTurns[bits].option + " -restart " +
                          std::to_string(source.restartInterval) + "B");
        EXPECT_LE(CodedSize(moved.bytes), CodedSize(theirs));
      } catch (const Error& error) {
        EXPECT_STRNE(error.what(), "");
        refused++;
      }
    }
  }
  // Where the codes of the source are optimal already, turned blocks can take more.
  EXPECT_LE(larger.size(), static_cast<size_t>(exact) / 20) << testing::PrintToString(larger);
  RecordProperty("exact", exact);
  RecordProperty("refused", refused);
  EXPECT_GT(exact, 300);
}

}  // namespace
}  // namespace rasterkit::test
