#include <QAbstractItemView>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QSettings>
#include <QTimer>
#include <filesystem>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/dialogs/bitmapframe/cut_bitmap.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_graphic.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/qt/files/file_dialogs.h>
#include <rasterkit/qt/preview/preview_loader.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/dialogs/editpdfbitmap/editor_test.h"
#include "tests/support/corpus.h"
#include "tests/support/pdf_file.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Both entries from opening to the written file, with the events of a user.
class EntryTest : public EditorTest {
 protected:
  EntryTest() {
    // Qt's file dialog remembers folders there.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, ToQt(qtSettings / ""));
    page = folder.Write("plan.pdf", "%PDF-1.4 of a test");
  }
  ~EntryTest() override { detail::JoinLateTasks(); }

  /// Runs `action` on the editor's window, which the caller is about to open, once there is
  /// nothing left to be rendered.
  void InEditor(std::function<void()> action) {
    QTimer::singleShot(5, &waiting, [this, action = std::move(action)] {
      editor = qobject_cast<TFormEditPdfBmp*>(QApplication::activeModalWidget());
      if (editor == nullptr || editor->Model().WorkBitmap() == nullptr) return InEditor(action);
      // The events of `form` are those of the window now.
      form.reset(editor);
      action();
      form.release();
      // So that no test can hang.
      if (editor && editor->isVisible()) editor->close();
    });
  }
  /// Types a name into the save dialog that comes up over the editor, and presses its button.
  void InSaveDialog(std::string name, bool confirms = true) {
    QTimer::singleShot(5, &waiting, [this, name, confirms] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr) return InSaveDialog(name, confirms);
      saveDialogs.push_back(dialog->directory().path().toStdString());
      if (!confirms) return dialog->reject();
      auto* edit = dialog->findChild<QLineEdit*>("fileNameEdit");
      edit->selectAll();
      QTest::keyClicks(edit, ToQt(name));
      // The list of names that begin like this would take the next click.
      if (edit->completer() != nullptr) edit->completer()->popup()->hide();
      auto* box = dialog->findChild<QDialogButtonBox*>("buttonBox");
      for (QAbstractButton* button : box->buttons())
        if (box->buttonRole(button) == QDialogButtonBox::AcceptRole)
          QTest::mouseClick(button, Qt::LeftButton);
    });
  }
  bool Edit(const std::string& dir, std::string& fileName, std::unique_ptr<TGraphic>& graphic) {
    int32_t a = 1, b = 2, c = 3, d = 4;
    const bool answer = EditGraphic(dir, fileName, graphic, a, b, c, d);
    EXPECT_TRUE(a == 1 && b == 2 && c == 3 && d == 4);
    return answer;
  }
  std::string Dir() const { return folder / ""; }

  TempFolder qtSettings;
  QObject waiting;
  QPointer<TFormEditPdfBmp> editor;
  std::string page;
  std::vector<std::string> saveDialogs;
};

using EditGraphicTest = EntryTest;
using ConvertPdfPageToBmpDialogTest = EntryTest;

TEST_F(EditGraphicTest, TurnedGrayAndCut_Should_BeInTheFile) {
  const TBitmap picture = GradientBitmap(pf24bit, 410, 300);
  std::unique_ptr<TGraphic> graphic = picture.Clone();
  std::string fileName;
  TRect cut;
  std::string title;
  InEditor([&] {
    title = form->windowTitle().toStdString();
    Type("CoBoRotation", "90");
    Key("CoBoRotation", Qt::Key_Return);
    Click("SpeedButtonGrayScale");
    DrawCut(20, 30, 220, 330);
    cut = form->Tool().CutPixels();
    InSaveDialog("turned");
    QTest::keyClick(&Box(), Qt::Key_Return);
  });
  ASSERT_TRUE(Edit(Dir(), fileName, graphic));
  EXPECT_EQ(title, "Edit bitmap");
  EXPECT_EQ(fileName, folder / "turned.bmp");
  EXPECT_THAT(saveDialogs, ElementsAre(folder.Path().string()));

  std::unique_ptr<TBitmap> expected = picture.Clone();
  ASSERT_TRUE(RotateBitmap(-90, expected, 0xFFFFFF, 4, {}));
  BitmapToGray(expected.get(), false);
  expected = CutBitmapTo(*expected, cut);
  TBitmap written;
  written.LoadFromFile(fileName);
  EXPECT_GT(written.Width(), 150);
  EXPECT_TRUE(SamePixels(*expected, written));
  auto* edited = dynamic_cast<TBitmap*>(graphic.get());
  ASSERT_NE(edited, nullptr);
  EXPECT_TRUE(SamePixels(*expected, *edited));
  EXPECT_TRUE(edited->Modified());
}

TEST_F(EditGraphicTest, Nothing_Should_BeWritten_When_NothingWasChanged) {
  const TBitmap picture = GradientBitmap(pf24bit, 41, 30);
  std::unique_ptr<TGraphic> graphic = picture.Clone();
  std::string fileName = "/elsewhere/new.bmp";
  const std::vector<std::string> before = folder.Names();
  InEditor([&] { QTest::mouseClick(&Navigator(nbPost), Qt::LeftButton); });
  EXPECT_TRUE(Edit(Dir(), fileName, graphic));
  EXPECT_EQ(fileName, folder / "new.bmp");
  EXPECT_EQ(folder.Names(), before);
  EXPECT_TRUE(SamePixels(picture, dynamic_cast<TBitmap&>(*graphic)));
}

TEST_F(EditGraphicTest, Graphic_Should_KeepItsClass) {
  std::unique_ptr<TGraphic> graphic = std::make_unique<TJPEGImage>();
  const TBitmap picture = GradientBitmap(pf24bit, 64, 48);
  graphic->Assign(&picture);
  std::string fileName = "photo.jpg";
  InEditor([&] {
    Click("SpeedButtonMirror");
    InSaveDialog("mirrored");
    QTest::mouseClick(&Navigator(nbPost), Qt::LeftButton);
  });
  ASSERT_TRUE(Edit(Dir(), fileName, graphic));
  EXPECT_EQ(fileName, folder / "mirrored.jpg");
  EXPECT_TRUE(std::filesystem::exists(fileName));
  EXPECT_NE(dynamic_cast<TJPEGImage*>(graphic.get()), nullptr);
}

TEST_F(EditGraphicTest, Turns_Should_AddUp_UnlessTheTargetExists) {
  const TBitmap picture = GradientBitmap(pf24bit, 41, 30);
  picture.Clone()->SaveToFile(folder / "there.bmp");
  for (const bool isThere : {false, true}) {
    std::unique_ptr<TGraphic> graphic = picture.Clone();
    std::string fileName = isThere ? "there.bmp" : "new.bmp";
    int width = 0;
    InEditor([&] {
      for (const char* angle : {"90", "180"}) {
        Type("CoBoRotation", angle);
        Key("CoBoRotation", Qt::Key_Return);
      }
      width = Picture().Width();
    });
    EXPECT_FALSE(Edit(Dir(), fileName, graphic));
    EXPECT_EQ(width, isThere ? 41 : 30);
  }
}

TEST_F(EditGraphicTest, Everything_Should_StayAsItWas_When_Canceled) {
  const TBitmap picture = GradientBitmap(pf24bit, 41, 30);
  std::unique_ptr<TGraphic> graphic = picture.Clone();
  const TGraphic* before = graphic.get();
  std::string fileName = "new.bmp";
  InEditor([&] {
    Click("SpeedButtonGrayScale");
    InSaveDialog("", false);
    QTest::keyClick(&Box(), Qt::Key_Return);
    // The save dialog was canceled: the window stays open.
    EXPECT_TRUE(form->isVisible());
    QTest::mouseClick(&Navigator(nbCancel), Qt::LeftButton);
  });
  EXPECT_FALSE(Edit(Dir(), fileName, graphic));
  EXPECT_EQ(fileName, "new.bmp");
  EXPECT_EQ(graphic.get(), before);
  EXPECT_TRUE(SamePixels(picture, dynamic_cast<TBitmap&>(*graphic)));
  EXPECT_THAT(folder.Names(), ElementsAre("plan.pdf"));
}

TEST_F(EditGraphicTest, BlankPicture_Should_BeShown_When_ThereIsNoGraphic) {
  std::unique_ptr<TGraphic> graphic;
  std::string fileName;
  int width = 0;
  InEditor([&] { width = Picture().Width(); });
  EXPECT_FALSE(Edit(Dir(), fileName, graphic));
  EXPECT_EQ(width, 10);
}

TEST_F(ConvertPdfPageToBmpDialogTest, Page_Should_BeInTheFile_AsItWasChosen) {
  std::string fileName = folder / "plan.png";
  InEditor([&] {
    auto& pages = Find<TSpinEditInt>("SpinEditPage");
    pages.setFocus();
    QTest::keyClick(&pages, Qt::Key_Up);
    Type("CoBoResolution", "300");
    Key("CoBoResolution", Qt::Key_Return);
    Click("SpeedButtonMirror");
    InSaveDialog("page2");
    QTest::keyClick(&Box(), Qt::Key_Return);
  });
  ASSERT_EQ(ConvertPdfPageToBmpDialog(page, fileName), 1);
  EXPECT_EQ(fileName, folder / "page2.png");
  TBitmap expected = PdfPicture(1, 3, kPage);
  SwapBitmap(true, &expected);
  TPngImage file;
  file.LoadFromFile(fileName);
  TBitmap written;
  written.Assign(&file);
  EXPECT_TRUE(SamePixels(expected, written));
}

TEST_F(ConvertPdfPageToBmpDialogTest, Resolution_Should_BeThatOfTheLastTime) {
  std::string fileName = folder / "plan.png";
  InEditor([&] {
    Type("CoBoResolution", "200");
    Key("CoBoResolution", Qt::Key_Return);
  });
  EXPECT_EQ(ConvertPdfPageToBmpDialog(page, fileName), 0);
  int width = 0;
  InEditor([&] { width = Picture().Width(); });
  EXPECT_EQ(ConvertPdfPageToBmpDialog(page, fileName), 0);
  EXPECT_EQ(width, 400);
}

TEST_F(ConvertPdfPageToBmpDialogTest, Target_Should_NotBeAskedFor_When_ThePdfIsTheSource) {
  std::string fileName = folder.Write("plan.png", "an old picture");
  InEditor([&] { EXPECT_FALSE(Model().BmpFileExisted()); });
  EXPECT_EQ(ConvertPdfPageToBmpDialog(page, fileName), 0);
}

TEST_F(ConvertPdfPageToBmpDialogTest, Should_AnswerMinusOne_WithoutAWindow_When_ThereIsNoFile) {
  std::string fileName = "unchanged";
  EXPECT_EQ(ConvertPdfPageToBmpDialog(folder / "missing.pdf", fileName), -1);
  EXPECT_EQ(fileName, "unchanged");
  EXPECT_THAT(pdf.exports, IsEmpty());
}

TEST_F(ConvertPdfPageToBmpDialogTest, Should_SayWhy_When_TheFileCannotBeOpened) {
  const std::string damaged = folder.Write("damaged.pdf", "no pages");
  std::string fileName = "unchanged";
  EXPECT_EQ(ConvertPdfPageToBmpDialog(damaged, fileName), 0);
  EXPECT_EQ(fileName, "unchanged");
  ASSERT_THAT(messages, SizeIs(1));
  EXPECT_THAT(messages[0], HasSubstr("damaged"));
}

/// The same with real files and the real engine.
class RealPdfTest : public EntryTest {
 protected:
  RealPdfTest() {
    PdfDocumentFactory() = nullptr;
    rasterkit::detail::SetWorkerProgram(RASTERKIT_WORKER_FILE);
    const PdfPageText plain{"0 0 144 216", PdfRectangle("0.8 0.1 0.2", 10, 20, 60, 40)};
    const PdfPageText onItsSide{"0 0 144 216", PdfRectangle("0 0.2 0.9", 30, 5, 20, 90), "",
                                "/Rotate 90"};
    page = folder.Write("real.pdf", PdfText({plain, onItsSide}));
  }
};

TEST_F(RealPdfTest, Page_Should_BeInTheFile_AsTheComponentDrawsIt) {
  std::string fileName = folder / "real.png";
  InEditor([&] {
    EXPECT_EQ(Find<QLabel>("LabelPage").text(), "&Page (total No. of pages 2)");
    auto& pages = Find<TSpinEditInt>("SpinEditPage");
    pages.setFocus();
    QTest::keyClick(&pages, Qt::Key_Up);
    Type("CoBoResolution", "200");
    Key("CoBoResolution", Qt::Key_Return);
    Type("CoBoRotation", "90");
    Key("CoBoRotation", Qt::Key_Return);
    InSaveDialog("turned");
    QTest::mouseClick(&Navigator(nbPost), Qt::LeftButton);
  });
  ASSERT_EQ(ConvertPdfPageToBmpDialog(page, fileName), 1);
  EXPECT_THAT(messages, IsEmpty());
  const std::unique_ptr<PdfDocument> document = CreatePdfDocument();
  document->LoadFromFile(page);
  auto expected = std::make_unique<TBitmap>();
  document->ExportPage(1, 2, PdfRotation::none, *expected);
  EXPECT_EQ(expected->Width(), 600);
  ASSERT_TRUE(RotateBitmap(-90, expected, 0xFFFFFF, 4, {}));
  TPngImage file;
  file.LoadFromFile(fileName);
  TBitmap written;
  written.Assign(&file);
  EXPECT_EQ(written.Width(), 400);
  EXPECT_TRUE(SamePixels(*expected, written));
}

TEST_F(RealPdfTest, Should_SayWhy_When_TheFileIsLockedOrNoPdf) {
  std::string fileName = "unchanged";
  const std::string locked = folder.Write("locked.pdf", EncryptedPdf(PdfReader::withPassword));
  EXPECT_EQ(ConvertPdfPageToBmpDialog(locked, fileName), 0);
  const std::string noPdf = folder.Write("text.pdf", "Dear reader, this is no PDF.");
  EXPECT_EQ(ConvertPdfPageToBmpDialog(noPdf, fileName), 0);
  const std::string empty = folder.Write("empty.pdf", "");
  EXPECT_EQ(ConvertPdfPageToBmpDialog(empty, fileName), 0);
  EXPECT_EQ(fileName, "unchanged");
  ASSERT_THAT(messages, SizeIs(3));
  EXPECT_THAT(messages[0], HasSubstr("password"));
  EXPECT_NE(messages[1], messages[2]);
  for (const std::string& message : messages) EXPECT_THAT(message, HasSubstr(".pdf"));
}

TEST_F(RealPdfTest, Should_SayThatThereIsNoMemory_When_ThePageIsAbsurd) {
  page = folder.Write("absurd.pdf", PdfText({{"0 0 14400000 14400000", ""}}));
  std::string fileName = "unchanged";
  const std::function<void()> leave = [&] {
    auto* window = qobject_cast<TFormEditPdfBmp*>(QApplication::activeModalWidget());
    if (window == nullptr || messages.empty()) return QTimer::singleShot(5, &waiting, leave);
    EXPECT_EQ(window->Model().WorkBitmap(), nullptr);
    window->close();
  };
  QTimer::singleShot(5, &waiting, leave);
  EXPECT_EQ(ConvertPdfPageToBmpDialog(page, fileName), 0);
  EXPECT_THAT(messages[0], HasSubstr("Not enough RAM"));
}

/// Including damaged, encrypted and absurd files: only a message or a window may appear.
TEST_F(RealPdfTest, EveryFileOfTheCorpus_Should_BeSurvived) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  for (const auto& file : std::filesystem::directory_iterator(CorpusFolder() / "pdf")) {
    if (file.path().extension() != ".pdf") continue;
    SCOPED_TRACE(file.path().string());
    bool isOver = false;
    const std::function<void()> leave = [&] {
      if (isOver) return;
      auto* window = qobject_cast<TFormEditPdfBmp*>(QApplication::activeModalWidget());
      const bool isAtRest = window != nullptr && !window->Model().IsRendering() &&
                            (window->Model().WorkBitmap() != nullptr || !messages.empty());
      if (!isAtRest) return QTimer::singleShot(5, &waiting, leave);
      window->close();
    };
    messages.clear();
    QTimer::singleShot(5, &waiting, leave);
    std::string fileName = "unchanged";
    EXPECT_EQ(ConvertPdfPageToBmpDialog(file.path().string(), fileName), 0);
    EXPECT_EQ(fileName, "unchanged");
    isOver = true;
    QApplication::processEvents();
  }
}

TEST_F(ConvertPdfPageToBmpDialogTest, FirstPage_Should_BeCanceled_InTheOpenWindow) {
  pdf.patience = 100'000;
  std::string fileName = "unchanged";
  bool wasVisible = false;
  const std::function<void()> cancel = [&] {
    editor = qobject_cast<TFormEditPdfBmp*>(QApplication::activeModalWidget());
    if (editor == nullptr || !editor->Model().IsRendering())
      return QTimer::singleShot(5, &waiting, cancel);
    wasVisible = editor->isVisible();
    // Once for the page, and once more for the window.
    auto& button = editor->findChild<TNavigator*>("NaviResult")->Button(nbCancel);
    QTest::mouseClick(&button, Qt::LeftButton);
    QTimer::singleShot(50, &button, [&button] { QTest::mouseClick(&button, Qt::LeftButton); });
  };
  QTimer::singleShot(5, &waiting, cancel);
  EXPECT_EQ(ConvertPdfPageToBmpDialog(page, fileName), 0);
  EXPECT_TRUE(wasVisible);
  EXPECT_EQ(fileName, "unchanged");
}

TEST_F(ConvertPdfPageToBmpDialogTest, OpenDialog_Should_MakeAPictureOfAPdf) {
  Ports& ports = HostPorts();
  int dialogs = 0;
  ports.pictureFileDialog = [&](PictureFileDialog& dialog) {
    if (++dialogs > 1) return RunPictureFileDialog(dialog);
    dialog.FileName = page;
    return true;
  };
  InEditor([&] {
    InSaveDialog("chosen");
    QTest::keyClick(&Box(), Qt::Key_Return);
  });
  std::string fileName;
  EXPECT_TRUE(BitmapOpenDialog(Dir(), ".pdf", bfAll, fileName, false));
  EXPECT_EQ(fileName, folder / "chosen.png");
  EXPECT_TRUE(std::filesystem::exists(fileName));
}

}  // namespace
}  // namespace rasterkit::test
