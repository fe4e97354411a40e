// Kinds of files, names and their endings.

#include <rasterkit/codecs/codec_table.h>

#include "tests/dialogs/saving/saving_fixture.h"
#include "tests/support/gif_file.h"
#include "tests/support/webp_file.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using SavingKinds = SavingTest;

TEST_F(SavingKinds, EveryKindThatIsWritten_Should_BeOffered) {
  size_t writable = 0;
  for (const Codec& codec : CodecTable()) writable += codec.write != nullptr ? 1 : 0;
  const SavingModel& model = OpenFile(Make("a.png"));
  EXPECT_EQ(model.Types().texts.size(), writable);
  for (const char* start : {"BMP", "JPEG", "PNG", "TIFF"}) {
    EXPECT_GE(PositionOf(model.Types(), start), 0) << start;
  }
}

TEST_F(SavingKinds, TheKindOfTheSource_Should_ComeFirst) {
  for (const auto& [name, start] : std::map<std::string, std::string>{
           {"a.bmp", "BMP"}, {"a.jpg", "JPEG"}, {"a.png", "PNG"}, {"a.tif", "TIFF"}}) {
    const SavingModel& model = OpenFile(Make(name));
    EXPECT_THAT(model.Types().texts.front(), StartsWith(start));
    EXPECT_EQ(model.Types().position, 0) << name;
  }
}

TEST_F(SavingKinds, AnEndingThatFits_Should_StayAsItIs) {
  for (const char* name : {"a.jpeg", "a.jpg", "b.JPG", "a.tif", "a.tiff", "b.TIFF", "a.bmp"}) {
    const SavingModel& model = OpenFile(Make(name));
    EXPECT_EQ(model.Name(), name);
    EXPECT_EQ(model.File(), In(name));
    EXPECT_EQ(model.Fault(), "");
    EXPECT_EQ(model.Note(), "");
  }
}

TEST_F(SavingKinds, AKindThatIsNotWritten_Should_LeadToPng) {
  const std::string file = In("anim.gif");
  folder.Write("anim.gif", PlainGif(8, 6).Bytes());
  const SavingModel& model = OpenFile(file);
  EXPECT_EQ(model.Type(), PictureType::png);
  EXPECT_EQ(model.File(), In("anim.png"));
  EXPECT_THAT(model.Note(), HasSubstr("GIF files cannot be written"));
  EXPECT_THAT(model.Note(), HasSubstr("PNG"));
}

TEST_F(SavingKinds, PicturesWithAPosition_Should_LeadToTiff) {
  Picture picture = Picture::Open(Make("a.png"));
  picture.Apply(PlaceStep{Affine{}});
  const SavingModel& model = Open(picture, {In("map.webp"), {}, false});
  EXPECT_EQ(model.File(), In("map.tif"));
  EXPECT_THAT(model.Note(), HasSubstr("WEBP files cannot be written"));
  EXPECT_THAT(model.Note(), HasSubstr("position"));
}

TEST_F(SavingKinds, DeepPictures_Should_LeadToTiff) {
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples samples(layout, 8, 8);
  const SavingModel& model = Open(Picture::Of(std::move(samples)), {In("a.jp2"), {}, false});
  EXPECT_EQ(model.File(), In("a.tif"));
  EXPECT_THAT(model.Note(), HasSubstr("8 bits per color"));
}

TEST_F(SavingKinds, PagesOfPdfFiles_Should_LeadToPng) {
  const Picture drawn = Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, 10, 10)));
  const SavingModel& model = Open(drawn, {In("plan.pdf"), {}, false});
  EXPECT_EQ(model.File(), In("plan.png"));
  EXPECT_THAT(model.Note(), HasSubstr("PDF"));
}

TEST_F(SavingKinds, ASuggestedName_Should_BeAFreeOne) {
  Make("a.png");
  Make("a-2.png");
  const Picture drawn = Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, 10, 10)));
  EXPECT_EQ(Open(drawn, {In("a.webp"), {}, false}).File(), In("a-3.png"));
}

TEST_F(SavingKinds, WithoutAFreeName_Save_Should_BePaleWithTheReason) {
  Make("a.png");
  for (int i = 2; i <= 999; ++i) folder.Write("a-" + std::to_string(i) + ".png", "x");
  const Picture drawn = Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, 10, 10)));
  SavingModel& model = Open(drawn, {In("a.webp"), {}, false});
  EXPECT_EQ(model.Name(), "");
  EXPECT_FALSE(model.CanSave());
  EXPECT_THAT(model.Fault(), HasSubstr("no free name"));
  model.TypeName("b");
  EXPECT_TRUE(model.CanSave());
}

TEST_F(SavingKinds, AnotherKind_Should_ChangeTheEnding) {
  SavingModel& model = OpenFile(Make("a.jpeg"));
  ChooseType("PNG");
  EXPECT_EQ(model.File(), In("a.png"));
  ChooseType("TIFF");
  EXPECT_EQ(model.File(), In("a.tif"));
  ChooseType("JPEG");
  EXPECT_EQ(model.File(), In("a.jpeg")) << "the ending that was there comes back";
}

TEST_F(SavingKinds, AnotherEnding_Should_ChangeTheKind) {
  SavingModel& model = OpenFile(Make("a.jpeg"));
  model.TypeName("b.TIFF");
  EXPECT_EQ(model.Type(), PictureType::tiff);
  EXPECT_EQ(model.File(), In("b.TIFF"));
  EXPECT_EQ(model.Choice().save.type, PictureType::tiff);
  EXPECT_THAT(model.Types().texts[static_cast<size_t>(model.Types().position)], StartsWith("TIFF"));
}

TEST_F(SavingKinds, AnEndingThatIsNotWritten_Should_BeRefusedWithTheReason) {
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("a.webp");
  EXPECT_FALSE(model.CanSave());
  EXPECT_THAT(model.Fault(), HasSubstr("WEBP files cannot be written"));
  ChooseType("BMP");
  EXPECT_EQ(model.File(), In("a.bmp"));
  EXPECT_TRUE(model.CanSave()) << model.Fault();
}

struct TypedName {
  std::string typed, written;
};
class TypedNames : public SavingTest, public testing::WithParamInterface<TypedName> {};

TEST_P(TypedNames, Each_Should_GetTheEndingOfTheKind) {
  SavingModel& model = OpenFile(Make("start.png"));
  model.TypeName(GetParam().typed);
  EXPECT_EQ(model.File(), In(GetParam().written));
  EXPECT_EQ(model.Fault(), "");
  const SavingChoice choice = model.Choice();
  Picture::Open(In("start.png")).Save(choice.file, OfType(model.Type()));
  EXPECT_TRUE(std::filesystem::is_regular_file(In(GetParam().written)));
}

INSTANTIATE_TEST_SUITE_P(
    Names, TypedNames,
    testing::Values(TypedName{"plan", "plan.png"}, TypedName{"plan v1.2", "plan v1.2.png"},
                    TypedName{"plan.", "plan..png"}, TypedName{"a.b.png", "a.b.png"},
                    TypedName{"-rf", "-rf.png"},
                    TypedName{"Плань 地図 🗺", "Плань 地図 🗺.png"},
                    TypedName{"e\u0301.png", "e\u0301.png"}, TypedName{"a b .png", "a b .png"},
                    TypedName{"a.png ", "a.png "}, TypedName{"plan ", "plan .png"},
                    TypedName{"back\\slash", "back\\slash.png"}, TypedName{"100%s", "100%s.png"},
                    TypedName{".hidden", ".hidden.png"}, TypedName{"a.tar.gz", "a.tar.gz.png"},
                    TypedName{std::string(251, 'x'), std::string(251, 'x') + ".png"}));

TEST_F(SavingKinds, ASpaceAtTheEnd_Should_BeSaid) {
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("a.png ");
  EXPECT_THAT(model.Note(), HasSubstr("space"));
}

}  // namespace
}  // namespace rasterkit::test
