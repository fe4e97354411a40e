// What the window says before saving, compared with what the save does.

#include <algorithm>

#include <rasterkit/dialogs/saving/result_words.h>
#include <rasterkit/pictures/document/document.h>
#include <rasterkit/pictures/recipes/recipe_output.h>

#include "tests/dialogs/saving/saving_fixture.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SavingResult : public SavingTest {
 protected:
  /// Writes what the window would write; the report of the save.
  Report Write(const Picture& picture) const {
    const SavingChoice choice = model->Choice();
    Picture prepared = picture;
    ApplySaving(prepared, choice.save);
    return prepared.Save(choice.file, SaveOptionsOf(choice.save));
  }
  /// The text for a file that the window writes.
  std::string SizeSaid() {
    model->Begin();
    view.Run(SavingWork::size);
    return model->SizeText();
  }
};

TEST_F(SavingResult, AFileAsItIs_Should_BeCopied) {
  OpenFile(Make("a.jpg"));
  EXPECT_EQ(model->LosslessText(), "Lossless: the compressed pixels are copied");
  EXPECT_TRUE(model->IsLossless());
  EXPECT_EQ(model->LossText(), "Nothing is lost");
  EXPECT_TRUE(Write(Picture::Open(In("a.jpg"))).isCopied);
}

TEST_F(SavingResult, AMirroredJpeg_Should_BeMovedAndStaySmall) {
  Make("a.jpg", 640, 480, pf24bit, OfQuality(80));
  Picture picture = Picture::Open(In("a.jpg"));
  picture.Mirror(MirrorAxis::leftRight);
  Open(picture, {In("b.jpg"), {}, false});
  EXPECT_EQ(model->LosslessText(), "Lossless: the compressed pixels are moved");
  EXPECT_TRUE(Write(picture).isMoved);
  const auto before = std::filesystem::file_size(In("a.jpg"));
  const auto after = std::filesystem::file_size(In("b.jpg"));
  EXPECT_LT(after, before + before / 10);
}

TEST_F(SavingResult, ACropBetweenBlocks_Should_SayWhyItIsCompressedAgain) {
  Make("a.jpg", 64, 48);
  Picture picture = Picture::Open(In("a.jpg"));
  picture.Crop({3, 5, 40, 30});
  Open(picture, {In("b.jpg"), {}, false});
  EXPECT_EQ(model->LosslessText(),
            "Compressed again: the new edges are not on the borders of its blocks");
  EXPECT_FALSE(model->IsLossless());
  EXPECT_FALSE(Write(picture).isMoved);
  model->ChooseMove(1);
  EXPECT_THAT(model->LosslessText(), StartsWith("Lossless: the compressed pixels are moved, "));
  EXPECT_TRUE(Write(picture).isMoved);
  EXPECT_TRUE(model->HasMoves());
  model->ChooseMove(2);
  EXPECT_EQ(model->LosslessText(), "Compressed again: it was chosen so");
  EXPECT_TRUE(model->HasMoves());
}

TEST_F(SavingResult, AnotherQuality_Should_SayWhyItIsCompressedAgain) {
  OpenFile(Make("a.jpg"));
  model->SetQuality(50);
  EXPECT_EQ(model->LosslessText(), "Compressed again: the settings differ from the source");
}

TEST_F(SavingResult, ChangedColors_Should_SayWhyTheyAreCompressedAgain) {
  Picture picture = Picture::Open(Make("a.jpg"));
  picture.Change(AdjustColors{20});
  Open(picture, {In("b.jpg"), {}, false});
  EXPECT_EQ(model->LosslessText(), "Compressed again: the pixels were changed");
}

TEST_F(SavingResult, AJpegFromAnotherKind_Should_SaySo) {
  OpenFile(Make("a.png"));
  model->TypeName("a.jpg");
  EXPECT_THAT(model->LosslessText(), StartsWith("Compressed again: "));
  EXPECT_FALSE(model->IsLossless());
}

TEST_F(SavingResult, KindsThatKeepPixels_Should_SaySo) {
  for (const char* name : {"b.png", "b.tif", "b.bmp"}) {
    OpenFile(Make("a.jpg"));
    model->TypeName(name);
    EXPECT_EQ(model->LosslessText(), "Lossless: every pixel is kept") << name;
    const Picture picture = Picture::Open(In("a.jpg"));
    Write(picture);
    EXPECT_TRUE(SamePixels(*picture.Bitmap(), *Picture::Open(In(name)).Bitmap()));
  }
}

TEST_F(SavingResult, LessDepth_Should_NotBeCalledLossless) {
  OpenFile(Make("a.png"));
  model->ChooseDepth(PositionOf(model->Depths(), "8 bits"));
  EXPECT_EQ(model->LosslessText(), "Not lossless: the file has another depth");
  EXPECT_FALSE(model->IsLossless());
}

TEST_F(SavingResult, Losses_Should_BeNamedBeforeAndHappenAfter) {
  Picture picture = Picture::Open(Make("a.tif"));
  MetadataEdit edit;
  edit.resolution = Resolution{300, 300};
  edit.set.push_back({"Artist", "Anna"});
  picture.Edit(edit);
  picture.Apply(PlaceStep{Affine{}});
  Open(picture, {In("b.bmp"), {}, false});
  EXPECT_TRUE(model->HasLosses());
  EXPECT_THAT(model->LossText(), StartsWith("Lost: "));
  const Report report = Write(picture);
  ASSERT_FALSE(report.losses.empty());
  EXPECT_EQ(model->LossText(), detail::LossWords(report));
  for (const Loss& loss : report.losses) {
    EXPECT_THAT(model->LossDetails(), HasSubstr(loss.what + ": " + loss.why));
  }
}

TEST_F(SavingResult, WhatIsLeftOutOnPurpose_Should_BeNoLoss) {
  Picture picture = Picture::Open(Make("a.jpg"));
  MetadataEdit edit;
  edit.set.push_back({"Artist", "Anna"});
  picture.Edit(edit);
  Open(picture, {In("b.bmp"), {}, false});
  EXPECT_THAT(model->LossText(), HasSubstr("photograph's data"));
  model->ChooseKeep(2);
  EXPECT_EQ(model->LossText(), "Nothing is lost");
}

TEST_F(SavingResult, EveryKindOfLoss_Should_HaveAWord) {
  Report report;
  for (int kind = 0; kind <= static_cast<int>(LossKind::records); ++kind) {
    report.losses.push_back({static_cast<LossKind>(kind), "what", "why"});
  }
  const std::string words = detail::LossWords(report);
  EXPECT_EQ(std::count(words.begin(), words.end(), ','), static_cast<int>(LossKind::records));
}

struct SizedFile {
  std::string name;
  TPixelFormat format;
};
class SizesOfFiles : public SavingResult {};

TEST_F(SizesOfFiles, TheCountedSize_Should_BeThatOfTheWrittenFile) {
  for (const TPixelFormat format : {pf1bit, pf8bit, pf24bit, pf32bit}) {
    const Picture picture = Picture::Open(Make("a.png", 300, 200, format));
    for (const char* name : {"b.bmp", "b.jpg", "b.png", "b.tif"}) {
      Open(picture, {In(name), {}, false});
      model->Begin();
      EXPECT_THAT(model->SizeText(), HasSubstr("at most"));
      view.Run(SavingWork::size);
      EXPECT_THAT(model->SizeText(), testing::Not(HasSubstr("at most"))) << name;
      Write(picture);
      EXPECT_THAT(model->SizeText(),
                  StartsWith("Size of the file: " +
                             detail::SizeWords(std::filesystem::file_size(In(name)))));
      EXPECT_EQ(
          detail::CountBytesOfSave(picture, model->Choice().save, model->Type(), {}, [](double) {}),
          std::filesystem::file_size(In(name)))
          << name << " of " << format;
    }
  }
}

TEST_F(SizesOfFiles, MovedAndCopiedFiles_Should_BeCountedToo) {
  Make("a.jpg", 640, 480);
  Picture picture = Picture::Open(In("a.jpg"));
  const RecipeSave save;
  EXPECT_EQ(detail::CountBytesOfSave(picture, save, PictureType::jpeg, {}, [](double) {}),
            picture.Save(In("b.jpg")).bytes);
  picture.Turn(1);
  EXPECT_EQ(detail::CountBytesOfSave(picture, save, PictureType::jpeg, {}, [](double) {}),
            picture.Save(In("c.jpg")).bytes);
}

TEST_F(SizesOfFiles, WhatIsStrippedFromOtherPages_Should_NotBeCounted) {
  MetadataEdit edit;
  edit.set = {{"Artist", std::string(5000, 'a')}};
  const Picture page = Picture::Open(Make("a.png", 30, 20)).Edit(edit);
  Document().Append(page).Append(page).Append(page).Save(In("pages.tif"));
  const Picture picture = Document::Open(In("pages.tif")).Page(2);
  RecipeSave save;
  save.metadata = RecipeSave::Keep::nothing;
  const uint64_t counted =
      detail::CountBytesOfSave(picture, save, PictureType::tiff, {}, [](double) {});
  EXPECT_LT(counted, 10'000U);
  RecipeOutput(picture, save).Save(In("b.tif"), SaveOptionsOf(save));
  EXPECT_EQ(counted, std::filesystem::file_size(In("b.tif")));
  for (const std::string& file : {In("c.tif"), std::string()}) {
    const detail::PlannedSave plan = detail::PlanOfSave(picture, save, PictureType::tiff, file);
    ASSERT_TRUE(plan.report) << plan.error;
    EXPECT_GE(plan.report->bytes, counted);
    EXPECT_TRUE(std::none_of(plan.report->notes.begin(), plan.report->notes.end(), [](auto& note) {
      return note.find("copied as they are") != std::string::npos;
    })) << "pages are stripped";
  }
}

TEST_F(SavingResult, TheSizeBefore_Should_BeSaidWithTheNewOne) {
  OpenFile(Make("a.jpg"));
  const std::string size = detail::SizeWords(std::filesystem::file_size(In("a.jpg")));
  EXPECT_THAT(SizeSaid(), HasSubstr("(was " + size + ")"));
}

TEST_F(SavingResult, AChange_Should_StartTheSizeAnewAndDropTheOldAnswer) {
  OpenFile(Make("a.jpg"));
  model->Begin();
  const auto old = view.jobs.at(SavingWork::size)({});
  model->SetQuality(10);
  const std::string waiting = model->SizeText();
  old();
  EXPECT_EQ(model->SizeText(), waiting) << "the size of other settings is not shown";
  EXPECT_TRUE(view.HasJob(SavingWork::size));
  view.Run(SavingWork::size);
  EXPECT_THAT(model->SizeText(), testing::Not(HasSubstr("at most")));
}

TEST_F(SavingResult, ANameAlone_Should_NotStartTheSizeAnew) {
  OpenFile(Make("a.jpg"));
  model->Begin();
  view.Run(SavingWork::size);
  model->TypeName("b.jpg");
  EXPECT_FALSE(view.HasJob(SavingWork::size));
}

TEST_F(SavingResult, Sizes_Should_BeReadable) {
  EXPECT_EQ(detail::SizeWords(0), "0 bytes");
  EXPECT_EQ(detail::SizeWords(1023), "1023 bytes");
  EXPECT_EQ(detail::SizeWords(1024), "1 KiB");
  EXPECT_EQ(detail::SizeWords(1536), "1.5 KiB");
  EXPECT_EQ(detail::SizeWords(36000000), "34.3 MiB");
  EXPECT_EQ(detail::SizeWords(uint64_t{5} << 30), "5 GiB");
}

}  // namespace
}  // namespace rasterkit::test
