#include <random>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/lossless/dc_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/codecs/jpeg/lossless/moved_file.h"

namespace rasterkit::test {
namespace {

BareJpeg Picture(bool progressive, int restarts = 0) {
  BareJpeg picture = RandomBare(80, 64, JCS_YCbCr, kHalvedChroma, 9);
  picture.progressive = progressive;
  picture.restartInterval = restarts;
  return picture;
}

/// The place of the first marker with this code.
size_t PlaceOf(std::span<const uint8_t> file, uint8_t marker, size_t from = 0) {
  for (size_t at = from; at + 1 < file.size(); at++) {
    if (file[at] == 0xFF && file[at + 1] == marker) return at;
  }
  ADD_FAILURE() << "no marker " << int{marker};
  return 0;
}

TEST(MoveJpegRefusal, CutFile_Should_BeRefused) {
  for (const bool progressive : {false, true}) {
    for (const int restarts : {0, 2}) {
      const BareJpeg source = Picture(progressive, restarts);
      const auto file = WriteBare(source);
      const PictureMove turn = TurnOf(kQuarterTurn, source);
      const PictureWriting writing = [&] {
        PictureWriting result;
        result.metadata = ReadJpegHeader(file).metadata;
        result.move = turn;
        return result;
      }();
      int refused = 0;
      for (size_t bytes = 2; bytes < file.size(); bytes++) {
        SCOPED_TRACE(bytes);
        try {
          const MovedFile moved = MovedWith(std::span(file).first(bytes), writing);
          // Only the end marker may be missing, where it says nothing.
          EXPECT_GE(bytes, file.size() - 3);
          EXPECT_EQ(DifferenceOf(ReadBare(moved.bytes), MovedBare(source, turn)), "");
        } catch (const FormatError&) {
          refused++;
        }
      }
      EXPECT_GE(refused, static_cast<int>(file.size()) - 5);
    }
  }
}

/// Bytes that still decode to something are moved as decoders see them; others are refused.
TEST(MoveJpegRefusal, ChangedFile_Should_BeRefusedOrExact) {
  constexpr unsigned kSeed = 77;
  std::mt19937 random(kSeed);
  for (const bool progressive : {false, true}) {
    const BareJpeg source = Picture(progressive, 3);
    const auto file = WriteBare(source);
    const PictureMove turn = TurnOf(kQuarterTurn, source);
    int refused = 0, exact = 0;
    for (int i = 0; i < 1500; i++) {
      SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", file " << i);
      auto changed = file;
      for (int k = 0; k < 2; k++) {
        changed[2 + random() % (file.size() - 2)] = static_cast<uint8_t>(random());
      }
      try {
        const MovedFile moved = Moved(changed, turn);
        // A missing end marker behind whole data is no damage.
        changed.insert(changed.end(), {0xFF, 0xD9});
        const BareJpeg read = ReadBare(changed);
        EXPECT_EQ(read.warnings, 0);
        EXPECT_EQ(DifferenceOf(ReadBare(moved.bytes), MovedBare(read, turn)), "");
        exact++;
      } catch (const Error& error) {
        EXPECT_STRNE(error.what(), "");
        refused++;
      }
    }
    EXPECT_GT(refused, 300);
    EXPECT_GT(exact, 100);
  }
}

TEST(MoveJpegRefusal, MissingScans_Should_BeRefused) {
  // Without the scans from the last one on, but with an end marker.
  BareJpeg source = Picture(true);
  for (const bool progressive : {false, true}) {
    source.progressive = progressive;
    auto file = WriteBare(source, {.separatesComponents = true});
    size_t last = 0;
    for (size_t at = 0; at + 1 < file.size(); at++) {
      if (file[at] == 0xFF && file[at + 1] == 0xC4) last = at;
    }
    file.resize(last);
    file.insert(file.end(), {0xFF, 0xD9});
    EXPECT_THROW(Moved(file, TurnOf(kQuarterTurn, source)), FormatError);
    EXPECT_THROW(DecodeJpegEighth(file), FormatError);
  }
}

TEST(MoveJpegRefusal, LargeCoefficients_Should_BeRefused) {
  // Values that a decoder reads and no encoder may write.
  BareJpeg source = RandomBare(8, 8, JCS_GRAYSCALE, {{1, 1}}, 4);
  source.components[0].blocks[0].fill(0);
  source.components[0].blocks[0][0] = 1;
  source.components[0].blocks[0][1] = 1;
  auto file = WriteBare(source);
  // The only code of the AC table gets 15 bits instead of 1.
  const size_t table = PlaceOf(file, 0xC4, PlaceOf(file, 0xC4) + 2);
  bool isChanged = false;
  for (size_t i = table + 21; i < table + 24; i++) {
    if (file[i] != 1) continue;
    file[i] = 15;
    isChanged = true;
  }
  ASSERT_TRUE(isChanged);
  EXPECT_THROW(Moved(file, TurnOf(kQuarterTurn, source)), FormatError);
}

TEST(MoveJpegRefusal, OtherCoding_Should_BeRefusedInWords) {
  BareJpeg source = Picture(false);
  auto file = WriteBare(source);
  const PictureMove turn = TurnOf(kQuarterTurn, source);
  file[PlaceOf(file, 0xC0) + 4] = 12;
  EXPECT_THROW(Moved(file, turn), UnsupportedError);
  file[PlaceOf(file, 0xC0) + 4] = 8;
  file[PlaceOf(file, 0xC0) + 1] = 0xC3;
  EXPECT_THROW(Moved(file, turn), UnsupportedError);
  source.arithmetic = true;
  try {
    Moved(WriteBare(source), turn);
    ADD_FAILURE() << "arithmetic coding was moved";
  } catch (const UnsupportedError& error) {
    EXPECT_STREQ(error.what(), "JPEG: arithmetic coding is not moved without recompression");
  }
}

TEST(MoveJpegRefusal, TableThatChanges_Should_BeRefused) {
  BareJpeg source = Picture(false);
  for (BareComponent& component : source.components) {
    component.table = 0;
    component.steps = source.components[0].steps;
  }
  auto file = WriteBare(source, {.separatesComponents = true});
  // Another table 0 in front of the second scan.
  const size_t first = PlaceOf(file, 0xDB);
  std::vector<uint8_t> table(file.begin() + static_cast<ptrdiff_t>(first),
                             file.begin() + static_cast<ptrdiff_t>(first) + 69);
  table[5]++;
  const size_t second = PlaceOf(file, 0xC4, PlaceOf(file, 0xDA));
  file.insert(file.begin() + static_cast<ptrdiff_t>(second), table.begin(), table.end());
  EXPECT_THROW(Moved(file, TurnOf(kQuarterTurn, source)), UnsupportedError);
}

TEST(MoveJpegRefusal, ClaimedSize_Should_NotTakeMemory) {
  const BareJpeg source = Picture(false);
  const auto claiming = [&](int side) {
    auto file = WriteBare(source);
    const size_t frame = PlaceOf(file, 0xC0);
    for (const size_t at : {frame + 5, frame + 7}) {
      file[at] = static_cast<uint8_t>(side >> 8);
      file[at + 1] = static_cast<uint8_t>(side);
    }
    return file;
  };
  EXPECT_THROW(Moved(claiming(65500), {0, 0, 65500, 65500}), LimitError);
  // Within the limit, but the file cannot hold so much.
  EXPECT_THROW(Moved(claiming(12000), {0, 0, 16, 16}), FormatError);
  EXPECT_THROW(DecodeJpegEighth(claiming(12000)), FormatError);
}

TEST(MoveJpegRefusal, Limits_Should_Hold) {
  const BareJpeg source = Picture(true);
  const auto file = WriteBare(source);
  const PictureMove turn = TurnOf(kQuarterTurn, source);
  Limits limits = DefaultLimits();
  limits.pictureBytes = 80 * 64 * 3;
  {
    const LimitsScope scope(limits);
    EXPECT_THROW(Moved(file, turn), LimitError);
  }
  limits = DefaultLimits();
  limits.seconds = 1e-9;
  {
    const LimitsScope scope(limits);
    EXPECT_THROW(Moved(file, turn), TimeLimitError);
  }
}

/// As many scans of a large picture as a file of half a megabyte holds would take minutes.
TEST(MoveJpegRefusal, TooManyScans_Should_BeRefused) {
  const auto blank = [](int blocks) {
    BareJpeg picture = RandomBare(8, 8, JCS_GRAYSCALE, {{1, 1}}, 1);
    picture.progressive = true;
    picture.width = picture.height = 8 * blocks;
    BareComponent& component = picture.components[0];
    component.columns = component.rows = blocks;
    component.blocks.assign(static_cast<size_t>(blocks * blocks), {});
    return picture;
  };
  const BareJpeg source = blank(1000);
  BareWriting writing;
  writing.scans.push_back({1, {0}, 0, 0, 0, 0});
  for (int i = 1; i < 64; i++) writing.scans.push_back({1, {0}, i, i, 0, 8});
  for (int bit = 8; bit > 0; bit--) {
    for (int i = 1; i < 64; i++) writing.scans.push_back({1, {0}, i, i, bit, bit - 1});
  }
  // The scans of a small picture, with the sides of the large one and its first scan.
  BareWriting first;
  first.scans = {writing.scans[0], {1, {0}, 1, 63, 0, 0}};
  auto file = WriteBare(source, first);
  file.resize(PlaceOf(file, 0xC4, PlaceOf(file, 0xDA)));
  auto rest = WriteBare(blank(1), writing);
  const size_t second = PlaceOf(rest, 0xC4, PlaceOf(rest, 0xDA));
  file.insert(file.end(), rest.begin() + static_cast<ptrdiff_t>(second), rest.end());
  try {
    Moved(file, TurnOf(kQuarterTurn, source));
    ADD_FAILURE() << "all scans were read";
  } catch (const LimitError& error) {
    EXPECT_STREQ(error.what(), "JPEG: too many scans for a picture of this size");
  }
}

/// A stop at any check ends the call; only after the last one it is too late.
TEST(MoveJpegCancel, Stop_Should_LeaveNothingWritten) {
  for (const bool progressive : {false, true}) {
    const BareJpeg source = Picture(progressive);
    const auto file = WriteBare(source);
    const PictureMove turn = TurnOf(kQuarterTurn, source);
    int checks = 0;
    {
      const LimitsScope scope(DefaultLimits(), {}, [&] { checks++; });
      Moved(file, turn);
    }
    // Each row of units is read, moved and written.
    EXPECT_GE(checks, 12);
    for (int last = 0; last < checks; last++) {
      std::stop_source stop;
      int seen = 0;
      const auto count = [&] {
        if (++seen == last) stop.request_stop();
      };
      if (last == 0) stop.request_stop();
      const LimitsScope scope(DefaultLimits(), stop.get_token(), count);
      EXPECT_THROW(Moved(file, turn), CanceledError) << last << " of " << checks;
    }
  }
}

TEST(MoveJpegCancel, ErrorOfACheck_Should_ComeOutAsItIs) {
  const BareJpeg source = Picture(true);
  const auto file = WriteBare(source);
  struct Stopped {};
  for (const int last : {1, 3, 8}) {
    int seen = 0;
    const LimitsScope scope(DefaultLimits(), {}, [&] {
      if (++seen == last) throw Stopped();
    });
    EXPECT_THROW(Moved(file, TurnOf(kQuarterTurn, source)), Stopped);
  }
}

}  // namespace
}  // namespace rasterkit::test
