// What is opened: kinds of files, pages, resolutions.

#include <rasterkit/pictures/document/document.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/dialogs/editor/editor_fixture.h"
#include "tests/dialogs/editpdfbitmap/fake_pdf.h"
#include "tests/support/emf_file.h"
#include "tests/support/memory_limit.h"

namespace rasterkit {
namespace {

using enum EditorAnswer;
using test::EditorTest;
using test::ReadFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class EditorOpening : public EditorTest {
 protected:
  EditorOpening() {
    HostPorts().readSetting = [this](const std::string&, const std::string&) { return remembered; };
    HostPorts().writeSetting = [this](const std::string&, const std::string&,
                                      const std::string& value) { remembered = value; };
  }
  ~EditorOpening() override { HostPorts() = {}; }

  std::string WriteScans(const std::string& name, int pages) {
    Document document;
    for (int i = 0; i < pages; ++i) {
      document.Append(Picture::Of(std::make_unique<TBitmap>(
          test::GradientRaster(i % 2 == 0 ? pf24bit : pf1bit, 20 + i, 10))));
    }
    const std::string file = folder / name;
    document.Save(file);
    return file;
  }

  std::optional<std::string> remembered;
  test::PdfScript script;
  test::FakePdfPort port{script};
};

TEST_F(EditorOpening, Should_StandPhotographsUpright) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    for (const TPixelFormat format : {pf24bit, pf8bit}) {
      Renew();
      Open(WritePhoto("photo.jpeg", orientation, format));
      EXPECT_EQ(model->Result().Width(), orientation < 5 ? 32 : 16);
      EXPECT_FALSE(model->CanConfirm());
      EXPECT_EQ(view->shown->PixelFormat(), format);
      ExpectResultShown();
    }
  }
}

TEST_F(EditorOpening, Should_DrawAPdfPageThatCanBeConfirmed) {
  script.pages = {{72, 36}, {36, 72}};
  const std::string file = folder.Write("plan.pdf", "%PDF-1.4 ...");
  Open(file);
  EXPECT_EQ(script.exports.size(), 1u);
  EXPECT_EQ(model->DrawingDpi(), 150);
  EXPECT_EQ(model->Result().Width(), 150);
  EXPECT_EQ(model->Pages(), 2);
  EXPECT_EQ(model->Title(), "plan.pdf, page 1 of 2");
  EXPECT_EQ(model->TargetFile(), folder / "plan.png");
  EXPECT_TRUE(model->CanConfirm());
  EXPECT_FALSE(model->HasUnsavedWork());
  ExpectResultShown();
  model->TurnLeft();
  ExpectResultShown();
  model->Mirror();
  model->Undo();
  ExpectResultShown();
  EXPECT_TRUE(model->HasUnsavedWork());

  Picture page = Picture::Of(std::make_unique<TBitmap>(test::PdfPicture(0, 1.5)));
  ApplyRecipe(page, model->ToRecipe());
  page.Save(folder / "replayed.png");
  model->Confirm();
  EXPECT_THAT(view->closed, ElementsAre(true));
  EXPECT_EQ(ReadFile(folder / "plan.png"), ReadFile(folder / "replayed.png"));
  EXPECT_EQ(ReadFile(file), "%PDF-1.4 ...");
}

TEST_F(EditorOpening, Should_NeverWriteOverThePdfFile) {
  const std::string file = folder.Write("plan.pdf", "%PDF-1.4 ...");
  Open(file);
  RecipeSave save;
  save.type = PictureType::png;
  view->saving = SavingChoice{file, save, true};
  model->SaveAs();
  EXPECT_THAT(view->told, ElementsAre(HasSubstr("plan.pdf")));
  EXPECT_EQ(ReadFile(file), "%PDF-1.4 ...");
  std::filesystem::create_symlink(file, folder / "link.png");
  view->saving = SavingChoice{folder / "link.png", {}, true};
  model->SaveAs();
  EXPECT_EQ(ReadFile(file), "%PDF-1.4 ...");
}

TEST_F(EditorOpening, Should_KnowAPdfFileByItsContent) {
  Open(folder.Write("plan.dat", "%PDF-1.4 ..."));
  EXPECT_EQ(model->TargetFile(), folder / "plan.dat.png");
  EXPECT_EQ(model->DrawingDpi(), 150);
}

TEST_F(EditorOpening, Should_DrawAtAnotherResolutionAndKeepWhatWasCropped) {
  remembered = "100";
  Open(folder.Write("plan.pdf", "%PDF-1.4 ..."));
  EXPECT_EQ(model->Result().Width(), 100);
  model->TurnLeft();
  model->Add(RecipeCrop{LengthUnit::pixels, 10, 20, 30, 60, Outside::refuse});
  model->Gray();
  model->Undo();
  model->SetDrawingDpi(200);
  EXPECT_EQ(model->Source().Width(), 200);
  EXPECT_EQ(model->Result().Width(), 40);
  EXPECT_EQ(model->Result().Height(), 80);
  EXPECT_TRUE(model->CanRedo());
  EXPECT_EQ(remembered, "200");
  ExpectResultShown();
  const int shown = view->pixelsShown;
  model->SetDrawingDpi(200);
  EXPECT_EQ(view->pixelsShown, shown) << "nothing changes";
}

TEST_F(EditorOpening, Should_RefuseAResolutionBeforeThePageIsGivenUp) {
  Open(folder.Write("plan.pdf", "%PDF-1.4 ..."));
  model->TurnLeft();
  const TBitmap* const before = view->shown;
  const test::MemoryLimit limit(1 << 20);
  model->SetDrawingDpi(1000);
  ASSERT_EQ(view->told.size(), 1u);
  EXPECT_THAT(view->told[0], HasSubstr("takes 2 MiB"));
  EXPECT_THAT(view->told[0], HasSubstr("and 1 MiB"));
  EXPECT_EQ(script.exports.size(), 1u);
  EXPECT_EQ(view->shown, before);
  EXPECT_EQ(model->DrawingDpi(), 150);
  model->SetDrawingDpi(-1);
  EXPECT_EQ(view->told.size(), 2u);
  EXPECT_EQ(model->Place(), 1u);
}

TEST_F(EditorOpening, Should_OpenALargePageAtAResolutionThatFits) {
  remembered = "1000";
  const test::MemoryLimit limit(1 << 20);
  Open(folder.Write("plan.pdf", "%PDF-1.4 ..."));
  EXPECT_EQ(model->DrawingDpi(), 150);
  options.dpi = 1000;
  Renew();
  EXPECT_THROW(Open(folder / "plan.pdf"), LimitError) << "what was requested is refused";
}

TEST_F(EditorOpening, Should_KeepThePageWhenDrawingIsCanceledOrFails) {
  Open(folder.Write("plan.pdf", "%PDF-1.4 ..."));
  model->TurnLeft();
  script.onExport = [](const PdfDocument::PdfKeepGoing&) { return false; };
  model->SetDrawingDpi(75);
  EXPECT_THAT(view->told, IsEmpty());
  EXPECT_EQ(model->DrawingDpi(), 150);
  script.onExport = [](const PdfDocument::PdfKeepGoing&) -> bool { throw FormatError("damaged"); };
  model->SetDrawingDpi(75);
  EXPECT_THAT(view->told, ElementsAre(HasSubstr("damaged")));
  EXPECT_EQ(model->DrawingDpi(), 150);
  EXPECT_EQ(model->Place(), 1u);
  ExpectResultShown();
}

TEST_F(EditorOpening, Should_DrawAMetafileAtAResolution) {
  const std::vector<uint8_t> emf = test::EmfFile().Bytes();
  const std::string file = folder.Write("plan.emf", emf);
  options.dpi = 254;
  Renew();
  Open(file);
  EXPECT_EQ(model->DrawingDpi(), 254);
  EXPECT_EQ(model->Result().Width(), 250);
  EXPECT_EQ(model->TargetFile(), folder / "plan.png");
  EXPECT_TRUE(model->CanConfirm());
  model->TurnLeft();
  model->SetDrawingDpi(508);
  EXPECT_EQ(model->Result().Height(), 500);
  ExpectResultShown();
  model->SetDrawingDpi(1e6);
  EXPECT_EQ(view->told.size(), 1u);
  EXPECT_EQ(model->DrawingDpi(), 508);
  {
    const test::MemoryLimit limit(100000);
    model->SetDrawingDpi(1000);
    EXPECT_THAT(view->told.back(), HasSubstr("100000"));
  }
  OpenOptions opening;
  opening.drawing.dpi = 508;
  const std::string replayed = Replayed(file, model->ToRecipe(), folder / "replayed.png", opening);
  model->Confirm();
  EXPECT_EQ(ReadFile(folder / "plan.png"), replayed);
}

TEST_F(EditorOpening, Should_ReadInAWorkerProcess) {
  detail::SetWorkerProgram(RASTERKIT_WORKER_FILE);
  options.isolation = Isolation::process;
  Renew();
  const std::string file = WritePhoto("photo.jpg", 6);
  const std::string source = folder / "source.jpg";
  std::filesystem::copy_file(file, source);
  Open(file);
  model->Add(RecipeCrop{LengthUnit::pixels, 0, 0, 8, 8});
  ExpectResultShown();
  view->answers = {yes};
  model->Confirm();
  EXPECT_EQ(ReadFile(file), Replayed(source, model->ToRecipe(), folder / "replayed.jpg"));
}

// Pages.

TEST_F(EditorOpening, Should_EditAPageAndKeepTheOthers) {
  const std::string file = WriteScans("scans.tif", 3);
  const std::string source = folder / "source.tif";
  std::filesystem::copy_file(file, source);
  Open(file, 2);
  EXPECT_EQ(model->Pages(), 3);
  EXPECT_EQ(model->Page(), 2);
  EXPECT_EQ(model->Result().Width(), 21);
  model->TurnLeft();
  OpenOptions opening;
  opening.page = 2;
  Replayed(source, model->ToRecipe(), folder / "replayed.tif", opening);
  view->answers = {yes};
  model->Confirm();
  ASSERT_EQ(Document::Open(file).Pages(), 3);
  for (int number = 1; number <= 3; ++number) {
    OpenOptions one;
    one.page = number;
    // A page that is saved under another name brings the others along.
    const Picture expected = Picture::Open(folder / "replayed.tif", one);
    EXPECT_TRUE(test::SamePixels(*expected.Bitmap(), *Picture::Open(file, one).Bitmap())) << number;
  }
  // Replaced in its own file, which is what Save does with the same name.
  Picture page = Picture::Open(source, opening);
  ApplyRecipe(page, model->ToRecipe());
  page.Save(source);
  EXPECT_EQ(ReadFile(file), ReadFile(source));
}

TEST_F(EditorOpening, Should_AskBeforeAPageWithStepsIsLeft) {
  const std::string file = WriteScans("scans.tif", 3);
  Open(file);
  model->ShowPage(3);
  EXPECT_EQ(model->Page(), 3);
  EXPECT_EQ(model->Result().Width(), 22);
  EXPECT_THAT(view->questions, IsEmpty());
  model->TurnLeft();
  view->answers = {cancel};
  model->ShowPage(1);
  EXPECT_EQ(model->Page(), 3);
  EXPECT_EQ(model->Place(), 1u);
  view->answers = {yes, yes};
  model->ShowPage(1);
  EXPECT_EQ(model->Page(), 1);
  EXPECT_THAT(model->Steps(), IsEmpty());
  EXPECT_EQ(Document::Open(file).Page(3).Width(), 10);
  model->TurnLeft();
  view->answers = {no};
  model->ShowPage(2);
  EXPECT_EQ(model->Page(), 2);
  model->ShowPage(0);
  model->ShowPage(4);
  model->ShowPage(2);
  EXPECT_EQ(model->Page(), 2);
  EXPECT_EQ(Document::Open(file).Page(1).Width(), 20);
  model->TurnLeft();
  model->Confirm();
  EXPECT_EQ(Document::Open(file).Page(2).Width(), 10) << "agreed already";
  EXPECT_EQ(Document::Open(file).Page(3).Width(), 10) << "the page that was saved before stays";
}

TEST_F(EditorOpening, Should_GoOnInTheFileThatWasWritten) {
  const std::string file = WriteScans("scans.tif", 2);
  const std::string before = ReadFile(file);
  Open(file);
  model->TurnLeft();
  view->saving = SavingChoice{folder / "new.tif", {}, false};
  model->SaveAs();
  EXPECT_EQ(Document::Open(folder / "new.tif").Pages(), 2);
  model->ShowPage(2);
  EXPECT_EQ(model->TargetFile(), folder / "new.tif");
  model->TurnLeft();
  model->Confirm();
  EXPECT_EQ(Document::Open(folder / "new.tif").Page(1).Width(), 10);
  EXPECT_EQ(Document::Open(folder / "new.tif").Page(2).Width(), 10);
  EXPECT_EQ(ReadFile(file), before);
}

// Other files.

TEST_F(EditorOpening, Should_AskBeforeAnotherFileIsOpened) {
  Open(WritePicture("plan.png"));
  model->TurnLeft();
  view->fileToOpen = WritePicture("other.png", 9, 8);
  view->answers = {cancel};
  model->OpenOther();
  EXPECT_THAT(view->openedFolders, IsEmpty());
  view->answers = {no};
  model->OpenOther();
  EXPECT_THAT(view->openedFolders, ElementsAre(folder.Path().string() + "/"));
  EXPECT_EQ(model->Title(), "other.png");
  EXPECT_THAT(model->Steps(), IsEmpty());
  EXPECT_FALSE(model->CanConfirm());
  view->fileToOpen = "";
  model->OpenOther();
  EXPECT_EQ(model->Title(), "other.png");
  EXPECT_EQ(Picture::Open(folder / "plan.png").Width(), 23);
}

TEST_F(EditorOpening, Should_OpenNoOtherFileWhereTheHostForbidsIt) {
  options.mayOpenOtherFiles = false;
  Renew();
  Open(WritePicture("plan.png"));
  const std::string other = WritePicture("other.png", 9, 8);
  view->fileToOpen = other;
  model->OpenOther();
  model->OpenDropped(other);
  EXPECT_EQ(model->Title(), "plan.png");
}

}  // namespace
}  // namespace rasterkit
