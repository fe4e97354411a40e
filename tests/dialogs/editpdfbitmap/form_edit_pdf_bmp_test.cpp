#include <QScreen>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/graphics/png_image.h>

#include "tests/dialogs/editpdfbitmap/editor_test.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EditorForm : public EditorTest {};

TEST_F(EditorForm, Buttons_Should_HaveTheirHintsAndSizes) {
  OpenGraphic(GradientBitmap(pf24bit, 40, 30));
  const std::pair<const char*, const char*> hints[] = {
      {"SpeedButtonOpen", "Open file..."},
      {"SpeedButtonViewZoom", "Fit BMP in dialog size"},
      {"SpeedButtonViewOrig", "View BMP in original size"},
      {"SpeedButtonMirror", "Mirror image"},
      {"SpeedButtonGrayScale", "Convert to grayscale"},
      {"SpeedButtonBlackWhite", "Use black/white image"},
      {"SpeedButton256Colors", "Convert to 8-Bit (256 colors)"},
      {"SpeedButtonCut", "Cut bitmap"},
      {"SpeedButtonEdit", "Edit image"},
      {"SpeedButtonSave", "Save bitmap as..."}};
  for (const auto& [name, hint] : hints) {
    const QToolButton& button = Button(name);
    const QString tip = button.toolTip();
    EXPECT_EQ(tip.left(tip.indexOf(" (Ctrl+")).toStdString(), hint);
    EXPECT_TRUE(button.autoRaise());
    EXPECT_FALSE(button.icon().isNull()) << name;
    EXPECT_EQ(button.minimumSize(), QSize(40, 40));
    EXPECT_EQ(button.maximumSize(), QSize(40, 40));
  }
}

TEST_F(EditorForm, Layout_Should_BeThatOfTheWindow) {
  form = std::make_unique<TFormEditPdfBmp>();
  EXPECT_EQ(form->windowTitle(), "Convert pdf to png");
  EXPECT_TRUE(form->isMaximized());
  const QSize screen = form->screen()->availableGeometry().size();
  EXPECT_EQ(form->minimumSize(), QSize(775, 775).boundedTo(screen));
  for (const char* inPanel : {"SpeedButtonOpen", "SpeedButtonSave"})
    EXPECT_EQ(Find(inPanel).parentWidget()->objectName(), "PanelControlButtons");
  for (const char* inPanel : {"CoBoResolution", "LabelRotation", "SpinEditPage"})
    EXPECT_EQ(Find(inPanel).parentWidget()->objectName(), "PanelValues");
  for (const char* inPanel : {"LabelSizeCaption", "LabelSizeValue", "NaviResult"})
    EXPECT_EQ(Find(inPanel).parentWidget()->objectName(), "PanelBottom");
  EXPECT_EQ(Box().parentWidget()->objectName(), "PanelPdf");
  EXPECT_EQ(Find("PanelPdf").palette().color(QPalette::Window), QColor(128, 128, 128));
  EXPECT_EQ(Find<QLabel>("LabelSizeCaption").text(), "Bitmap dimensions: ");
  EXPECT_TRUE(Find<TNavigator>("NaviResult").isHelpVisible());
}

TEST_F(EditorForm, Boxes_Should_OfferTheirNumbers) {
  OpenPdf();
  const auto items = [](const QComboBox& box) {
    std::vector<std::string> texts;
    for (int i = 0; i < box.count(); ++i) texts.push_back(box.itemText(i).toStdString());
    return texts;
  };
  EXPECT_THAT(items(Find<QComboBox>("CoBoResolution")),
              ElementsAre("72", "96", "150", "200", "300"));
  EXPECT_THAT(items(Find<QComboBox>("CoBoRotation")), ElementsAre("-90", "0", "90", "180"));
  EXPECT_EQ(Find<QComboBox>("CoBoResolution").currentText(), "150");
  EXPECT_EQ(Find<QComboBox>("CoBoRotation").currentText(), "0");
  EXPECT_EQ(Find<QLabel>("LabelDpiX").text(), "&Resolution [dpi]");
  EXPECT_EQ(Find<QLabel>("LabelRotation").text(), "R&otation [°]");
}

TEST_F(EditorForm, Graphic_Should_HaveNoPagesAndNoResolution) {
  OpenGraphic(GradientBitmap(pf24bit, 40, 30));
  for (const char* hidden : {"LabelDpiX", "CoBoResolution", "LabelPage", "SpinEditPage",
                             "LabelPageSize", "LabelPageSizeCaption", "SpeedButtonCut"})
    EXPECT_FALSE(Find(hidden).isVisible()) << hidden;
  EXPECT_TRUE(Find("SpeedButtonEdit").isVisible());
  EXPECT_EQ(form->windowTitle(), "new.bmp - Edit bitmap");
  EXPECT_EQ(Find<QLabel>("LabelSizeValue").text().toStdString(), "40 * 30 px (3600 [byte])");
}

TEST_F(EditorForm, Pdf_Should_HavePagesUpToItsLast) {
  OpenPdf();
  for (const char* shown : {"LabelDpiX", "CoBoResolution", "LabelPage", "SpinEditPage",
                            "LabelPageSize", "LabelPageSizeCaption"})
    EXPECT_TRUE(Find(shown).isVisible()) << shown;
  for (const char* hidden : {"SpeedButtonEdit", "SpeedButtonCut"})
    EXPECT_FALSE(Find(hidden).isVisible()) << hidden;
  EXPECT_EQ(Find<QLabel>("LabelPage").text(), "&Page (total No. of pages 3)");
  EXPECT_EQ(Find<TSpinEditInt>("SpinEditPage").minimum(), 1);
  EXPECT_EQ(Find<TSpinEditInt>("SpinEditPage").maximum(), 3);
  EXPECT_EQ(form->windowTitle(), "plan.pdf - Convert pdf to png");
}

TEST_F(EditorForm, Pdf_Should_ShowNoPageSelector_When_ItHasOnePage) {
  pdf.pages.resize(1);
  OpenPdf();
  EXPECT_FALSE(Find("LabelPage").isVisible());
  EXPECT_FALSE(Find("SpinEditPage").isVisible());
  EXPECT_TRUE(Find("CoBoResolution").isVisible());
}

TEST_F(EditorForm, PageSize_Should_BeTold_BeforeAnythingIsRendered) {
  OpenPdf();
  const size_t before = pdf.exports.size();
  Type("CoBoResolution", "600");
  EXPECT_EQ(Find<QLabel>("LabelPageSize").text(), "1200 * 1800 px, 51 * 76 mm (6.48 [MB])");
  EXPECT_EQ(pdf.exports.size(), before);
  EXPECT_EQ(Picture().Width(), 300);
}

TEST_F(EditorForm, Resolution_Should_RenderAgain_When_EnterIsPressed) {
  OpenPdf();
  Type("CoBoResolution", "300");
  EXPECT_EQ(Picture().Width(), 300);
  Key("CoBoResolution", Qt::Key_Return);
  EXPECT_EQ(Picture().Width(), 600);
  EXPECT_EQ(Picture().Height(), 900);
  EXPECT_EQ(Model().Resolution(), 300);
  // Enter in a box does not confirm the window.
  EXPECT_FALSE(Model().ModalResult());
  EXPECT_THAT(asked, IsEmpty());
}

TEST_F(EditorForm, Resolution_Should_RenderAgain_When_ChosenFromTheList) {
  OpenPdf();
  auto& box = Find<QComboBox>("CoBoResolution");
  box.setFocus();
  QTest::keyClick(&box, Qt::Key_Down);
  EXPECT_EQ(box.currentText(), "200");
  EXPECT_EQ(Picture().Width(), 400);
}

TEST_F(EditorForm, Resolution_Should_NotBeCompletedFromTheList) {
  OpenPdf();
  Type("CoBoResolution", "15");
  EXPECT_EQ(Find<QComboBox>("CoBoResolution").currentText(), "15");
}

TEST_F(EditorForm, Boxes_Should_SwallowWhatIsNoNumber) {
  OpenPdf();
  Type("CoBoResolution", "a-9x6");
  EXPECT_EQ(Find<QComboBox>("CoBoResolution").currentText(), "96");
  Type("CoBoRotation", "x-4b5");
  EXPECT_EQ(Find<QComboBox>("CoBoRotation").currentText(), "-45");
}

TEST_F(EditorForm, Rotation_Should_Fold_When_EnterIsPressed) {
  OpenGraphic(GradientBitmap(pf24bit, 40, 30));
  Type("CoBoRotation", "450");
  EXPECT_EQ(Model().Rotation(), 0);
  Key("CoBoRotation", Qt::Key_Return);
  EXPECT_EQ(Model().Rotation(), 90);
  EXPECT_EQ(Picture().Width(), 30);
  Type("CoBoRotation", "-400");
  Key("CoBoRotation", Qt::Key_Enter);
  EXPECT_EQ(Model().Rotation(), -40);
  EXPECT_THAT(asked, IsEmpty());
}

TEST_F(EditorForm, Rotation_Should_BeApplied_When_ChosenFromTheListWhileTyping) {
  OpenGraphic(GradientBitmap(pf24bit, 40, 30));
  Type("CoBoRotation", "4");
  auto& box = Find<QComboBox>("CoBoRotation");
  QTest::keyClick(&box, Qt::Key_End);
  box.setCurrentIndex(2);
  Q_EMIT box.activated(2);
  EXPECT_EQ(Model().Rotation(), 90);
  EXPECT_EQ(Picture().Width(), 30);
}

TEST_F(EditorForm, NumberOfTheList_Should_NotBeApplied_When_TheBoxIsLeft) {
  OpenPdf();
  Type("CoBoResolution", "300");
  Box().setFocus();
  EXPECT_EQ(Picture().Width(), 300);
  EXPECT_EQ(Model().Resolution(), 150);
}

TEST_F(EditorForm, Window_Should_GoQuietly_WhileABoxHasTheFocus) {
  OpenPdf();
  Type("CoBoResolution", "300");
  form.reset();
  EXPECT_THAT(pdf.exports, SizeIs(1));
}

TEST_F(EditorForm, Typing_Should_End_When_TheBoxIsLeft) {
  OpenGraphic(GradientBitmap(pf24bit, 40, 30));
  Type("CoBoRotation", "4");
  EXPECT_TRUE(Model().InEditCoBo());
  Box().setFocus();
  EXPECT_FALSE(Model().InEditCoBo());
}

TEST_F(EditorForm, Page_Should_BeRendered_AndStartUpright) {
  OpenPdf();
  Type("CoBoRotation", "90");
  Key("CoBoRotation", Qt::Key_Return);
  Click("SpeedButtonGrayScale");
  auto& page = Find<TSpinEditInt>("SpinEditPage");
  page.setFocus();
  QTest::keyClick(&page, Qt::Key_Up);
  EXPECT_EQ(Model().PageNumber(), 2);
  EXPECT_EQ(Find<QComboBox>("CoBoRotation").currentText(), "0");
  EXPECT_FALSE(Button("SpeedButtonGrayScale").isChecked());
  const TBitmap expected = PdfPicture(1, 1.5, kPage);
  EXPECT_TRUE(SamePixels(expected, Picture()));
}

TEST_F(EditorForm, Page_Should_BeTakenOver_When_EnterIsPressed_AndNoMore) {
  OpenPdf();
  auto& page = Find<TSpinEditInt>("SpinEditPage");
  page.setFocus();
  page.selectAll();
  QTest::keyClicks(&page, "3");
  EXPECT_EQ(Model().PageNumber(), 1);
  QTest::keyClick(&page, Qt::Key_Return);
  EXPECT_EQ(Model().PageNumber(), 3);
  EXPECT_THAT(asked, IsEmpty());
  AnswerFileDialog("");
  QTest::keyClick(&page, Qt::Key_Return);
  EXPECT_THAT(asked, SizeIs(1));
}

TEST_F(EditorForm, Toggles_Should_BeOneGroupThatMayBeUp) {
  OpenPdf();
  const auto down = [this] {
    std::string names;
    for (const char* name : {"SpeedButtonMirror", "SpeedButtonGrayScale", "SpeedButtonBlackWhite",
                             "SpeedButton256Colors"})
      names += Button(name).isChecked() ? '1' : '0';
    return names;
  };
  EXPECT_EQ(down(), "0000");
  Click("SpeedButtonMirror");
  EXPECT_EQ(down(), "1000");
  Click("SpeedButtonBlackWhite");
  EXPECT_EQ(down(), "0010");
  Click("SpeedButtonBlackWhite");
  EXPECT_EQ(down(), "0000");
}

TEST_F(EditorForm, Buttons_Should_DoWhatTheySay) {
  const TBitmap picture = GradientBitmap(pf24bit, 41, 30);
  OpenGraphic(picture);
  Click("SpeedButtonMirror");
  const std::unique_ptr<TBitmap> mirrored = picture.Clone();
  SwapBitmap(true, mirrored.get());
  EXPECT_TRUE(SamePixels(*mirrored, Picture()));

  OpenGraphic(picture);
  Click("SpeedButton256Colors");
  EXPECT_EQ(Picture().PixelFormat(), pf8bit);

  OpenGraphic(picture);
  Click("SpeedButtonGrayScale");
  const std::unique_ptr<TBitmap> gray = picture.Clone();
  BitmapToGray(gray.get(), false);
  EXPECT_TRUE(SamePixels(*gray, Picture()));

  OpenGraphic(picture);
  Click("SpeedButtonBlackWhite");
  const std::unique_ptr<TBitmap> blackWhite = picture.Clone();
  ColorBmpToSW(blackWhite.get(), 125);
  EXPECT_TRUE(SamePixels(*blackWhite, Picture()));
  EXPECT_FALSE(Button("SpeedButtonEdit").isEnabled());
}

TEST_F(EditorForm, BlackWhite_Should_AskForTheThreshold_When_CtrlIsHeld) {
  OpenGraphic(GradientBitmap(pf24bit, 41, 30));
  std::string title;
  WhenModal([&](QWidget& window) {
    title = window.windowTitle().toStdString();
    QTest::mouseClick(&window.findChild<TNavigator*>("NaviResult")->Button(nbPost), Qt::LeftButton);
  });
  QTest::keyPress(&Box(), Qt::Key_Control);
  Click("SpeedButtonBlackWhite", Qt::ControlModifier);
  EXPECT_EQ(title, "Select gray value");
  EXPECT_TRUE(Model().BmpChanged());
}

TEST_F(EditorForm, Ctrl_Should_BeForgotten_When_ItWasLetGoInAnotherWindow) {
  OpenGraphic(GradientBitmap(pf24bit, 41, 30));
  QTest::keyPress(&Box(), Qt::Key_Control, Qt::ControlModifier);
  EXPECT_TRUE(Model().CtrlPressed());
  QWidget other;
  QTest::keyRelease(&other, Qt::Key_Control);
  QEvent activate(QEvent::WindowActivate);
  QApplication::sendEvent(form.get(), &activate);
  EXPECT_FALSE(Model().CtrlPressed());
}

TEST_F(EditorForm, Edit_Should_RunTheValuesDialog) {
  OpenGraphic(GradientBitmap(pf24bit, 41, 30));
  std::string title;
  WhenModal([&](QWidget& window) {
    title = window.windowTitle().toStdString();
    QTest::mouseClick(&window.findChild<TNavigator*>("NaviResult")->Button(nbPost), Qt::LeftButton);
  });
  Click("SpeedButtonEdit");
  EXPECT_EQ(title, "Change values");
  EXPECT_TRUE(Model().BmpChanged());
}

TEST_F(EditorForm, Views_Should_FitAndShowPixels) {
  OpenGraphic(GradientBitmap(pf24bit, 410, 300));
  EXPECT_FALSE(form->Tool().IsUnscaled());
  Click("SpeedButtonViewOrig");
  EXPECT_TRUE(form->Tool().IsUnscaled());
  Click("SpeedButtonViewZoom");
  EXPECT_FALSE(form->Tool().IsUnscaled());
}

TEST_F(EditorForm, View_Should_Fit_When_TheWindowIsResizedOrActivated) {
  OpenGraphic(GradientBitmap(pf24bit, 410, 300));
  Click("SpeedButtonViewOrig");
  QEvent activate(QEvent::WindowActivate);
  QApplication::sendEvent(form.get(), &activate);
  EXPECT_FALSE(form->Tool().IsUnscaled());
  Click("SpeedButtonViewOrig");
  form->setWindowState(Qt::WindowNoState);
  form->resize(790, 780);
  QApplication::processEvents();
  EXPECT_FALSE(form->Tool().IsUnscaled());
}

TEST_F(EditorForm, Cut_Should_EnableItsButton_AndBeRemovedByAClick) {
  OpenGraphic(GradientBitmap(pf24bit, 410, 300));
  EXPECT_FALSE(Button("SpeedButtonCut").isEnabled());
  DrawCut(50, 40, 250, 200);
  EXPECT_TRUE(form->Tool().GetCutRectExists());
  EXPECT_TRUE(Button("SpeedButtonCut").isEnabled());
  EXPECT_FALSE(Button("SpeedButtonCut").isVisible());
  EXPECT_TRUE(Find<QLabel>("LabelSizeValue").text().startsWith("200 * 160 px"));
  QTest::mouseClick(&Box(), Qt::LeftButton, Qt::NoModifier, PlaceOf(5, 5));
  EXPECT_FALSE(form->Tool().GetCutRectExists());
  EXPECT_FALSE(Button("SpeedButtonCut").isEnabled());
}

TEST_F(EditorForm, Open_Should_TakeAnotherFile) {
  OpenGraphic(GradientBitmap(pf24bit, 41, 30));
  const std::string other = folder / "other.bmp";
  GradientBitmap(pf24bit, 20, 10).SaveToFile(other);
  AnswerFileDialog(other);
  Click("SpeedButtonOpen");
  EXPECT_EQ(Picture().Width(), 20);
  EXPECT_EQ(Model().FileNames().fBmpName, "other.bmp");
  AnswerFileDialog("plan.pdf");
  Click("SpeedButtonOpen");
  EXPECT_TRUE(Model().IsPDF());
  EXPECT_TRUE(Find("CoBoResolution").isVisible());
}

TEST_F(EditorForm, Save_Should_WriteTheCut_AndStayOpen) {
  const TBitmap picture = GradientBitmap(pf24bit, 410, 300);
  OpenGraphic(picture);
  form->Tool().SetBmpCutRect(RDRect(50, 40, 250, 200));
  AnswerFileDialog(folder / "cut.png", 3);
  Click("SpeedButtonSave");
  ASSERT_THAT(asked, SizeIs(1));
  EXPECT_EQ(asked[0].FileName, "new.bmp");
  TBitmap saved;
  TPngImage file;
  file.LoadFromFile(folder / "cut.png");
  saved.Assign(&file);
  EXPECT_EQ(saved.Width(), 200);
  EXPECT_EQ(saved.Height(), 160);
  EXPECT_FALSE(Model().ModalResult());
}

TEST_F(EditorForm, Help_Should_ShowTheTopicOfWhatIsEdited) {
  OpenGraphic(GradientBitmap(pf24bit, 41, 30));
  QTest::mouseClick(&Navigator(nbHelp), Qt::LeftButton);
  OpenPdf();
  QTest::mouseClick(&Navigator(nbHelp), Qt::LeftButton);
  EXPECT_THAT(topics, ElementsAre(570002, 570001));
}

TEST_F(EditorForm, Place_Should_BeKeptInTheSettings) {
  form = std::make_unique<TFormEditPdfBmp>();
  WhenModal([&](QWidget& window) {
    EXPECT_TRUE(window.isMaximized());
    window.setWindowState(Qt::WindowNoState);
    window.resize(780, 776);
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  EXPECT_EQ(form->ShowEditor(), mrCancel);
  EXPECT_EQ(sections["FormEditPdfBmp.Width"], "Settings");
  EXPECT_EQ(settings["FormEditPdfBmp.Width"], "780");
  form = std::make_unique<TFormEditPdfBmp>();
  QSize size;
  bool isMaximized = true;
  WhenModal([&](QWidget& window) {
    size = window.size();
    isMaximized = window.isMaximized();
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  form->ShowEditor();
  EXPECT_EQ(size, QSize(780, 776));
  EXPECT_FALSE(isMaximized);
}

}  // namespace
}  // namespace rasterkit::test
