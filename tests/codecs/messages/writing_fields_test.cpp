#include <climits>

#include <gtest/gtest.h>

#include <rasterkit/codecs/messages/writing_fields.h>
#include <rasterkit/runtime/errors.h>

/// How a picture is to be written reaches the worker as it was given; what cannot be is refused.
namespace rasterkit::detail {
namespace {

std::vector<uint8_t> FieldsOf(const PictureWriting& writing) {
  FieldWriter fields;
  WriteWriting(fields, writing);
  return fields.Take();
}

PictureWriting WritingOf(const std::vector<uint8_t>& bytes) {
  FieldReader fields(bytes);
  PictureWriting writing = ReadWriting(fields);
  fields.RequireEnd();
  return writing;
}

PictureWriting FullWriting() {
  PictureWriting writing;
  writing.form = PngForm{16, 6, true};
  writing.metadata.xmp = "<x/>";
  writing.positionTags = {{33550, 12, 3, std::vector<uint8_t>(24, 1)}};
  writing.quality = 77;
  writing.chromaX = 2;
  writing.chromaY = 1;
  writing.dropsHidden = true;
  writing.move = PictureMove{16, 8, 300, 200, true, false, true};
  writing.makesThumbnail = true;
  writing.threads = 3;
  writing.pngLevel = 12;
  return writing;
}

TEST(WritingFields, Writing_Should_ComeBack_WithEveryMember) {
  const PictureWriting full = FullWriting();
  for (const PictureWriting& sent : {full, PictureWriting()}) {
    // A member that is added does not compile here before it is compared.
    const auto& [form, metadata, positionTags, quality, chromaX, chromaY, dropsHidden, move,
                 makesThumbnail, threads, pngLevel] = sent;
    const PictureWriting back = WritingOf(FieldsOf(sent));
    EXPECT_EQ(back.form, form);
    EXPECT_EQ(back.metadata, metadata);
    EXPECT_EQ(back.positionTags, positionTags);
    EXPECT_EQ(back.quality, quality);
    EXPECT_EQ(back.chromaX, chromaX);
    EXPECT_EQ(back.chromaY, chromaY);
    EXPECT_EQ(back.dropsHidden, dropsHidden);
    EXPECT_EQ(back.move, move);
    EXPECT_EQ(back.makesThumbnail, makesThumbnail);
    EXPECT_EQ(back.threads, threads);
    EXPECT_EQ(back.pngLevel, pngLevel);
  }
}

TEST(WritingFields, Move_Should_ComeBack_InEachOrientation) {
  for (int bits = 0; bits < 8; bits++) {
    PictureWriting writing;
    writing.move =
        PictureMove{0, INT_MAX, 1, INT_MAX, (bits & 4) != 0, (bits & 2) != 0, (bits & 1) != 0};
    EXPECT_EQ(WritingOf(FieldsOf(writing)).move, writing.move);
  }
}

TEST(WritingFields, Move_Should_BeRefused_WhenImpossible) {
  for (const PictureMove& move :
       {PictureMove{-1, 0, 1, 1}, PictureMove{0, -1, 1, 1}, PictureMove{0, 0, 0, 1},
        PictureMove{0, 0, 1, 0}, PictureMove{0, 0, -5, 1}, PictureMove{0, 0, 1, INT_MIN}}) {
    PictureWriting writing;
    writing.move = move;
    EXPECT_THROW(WritingOf(FieldsOf(writing)), FormatError)
        << move.left << " " << move.top << " " << move.width << " " << move.height;
  }
}

TEST(WritingFields, Writing_Should_BeRefused_WhenCutOff) {
  const std::vector<uint8_t> bytes = FieldsOf(FullWriting());
  for (size_t size = 0; size < bytes.size(); size++) {
    EXPECT_THROW(WritingOf({bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)}),
                 FormatError)
        << size;
  }
}

}  // namespace
}  // namespace rasterkit::detail
