// What is seen: zoom, pages, panels, tools, options of the host.

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QToolButton>
#include <map>

#include <rasterkit/dialogs/editor/window/editor_documentation.h>
#include <rasterkit/dialogs/editor/window/page_strip.h>
#include <rasterkit/dialogs/editor/window/tool_row.h>
#include <rasterkit/pictures/document/document.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/forms/language.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/ports.h>

#include "tests/dialogs/editor/window/editor_form_test.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class EditorLook : public EditorFormTest {
 protected:
  /// A TIFF file whose pages are 10, 20, 30 ... pixels wide.
  std::string WritePages(int count) {
    Document document;
    for (int page = 1; page <= count; ++page) {
      document.Append(Picture::Of(
          std::make_unique<TBitmap>(GradientBitmap(pf8bit, 10 * ((page - 1) % 50 + 1), 8))));
    }
    std::string file = folder / "pages.tif";
    document.Save(file);
    return file;
  }
  const PictureZoom& Zoom() const { return form->Pane().Zoom(); }
  /// The pixel of the picture under a point of the box, in fractions of it.
  QPointF Under(const QPointF& point) const {
    const double scale = form->devicePixelRatioF();
    const TRect place = Zoom().Place();
    return {(point.x() * scale - place.Left) / (place.Right - place.Left),
            (point.y() * scale - place.Top) / (place.Bottom - place.Top)};
  }
};

TEST_F(EditorLook, ThePicture_Should_BeFitted_AndStayFitted_When_TheWindowGrows) {
  Show(WritePicture("plan.png", 400, 300));
  EXPECT_TRUE(Zoom().IsFit());
  const double before = Zoom().Factor();
  form->resize(form->size() + QSize(200, 200));
  Settle(*form);
  EXPECT_TRUE(Zoom().IsFit());
  EXPECT_GT(Zoom().Factor(), before);
}

TEST_F(EditorLook, TheWheel_Should_ZoomAboutTheMouse) {
  Show(WritePicture("plan.png", 4000, 3000));
  Action("ActualSize").trigger();
  ASSERT_NEAR(Zoom().Factor(), 1, 1e-9);
  const QPoint mouse(Box().width() / 3, Box().height() / 4);
  const QPointF before = Under(mouse);
  TurnWheel(Box(), mouse, 120);
  EXPECT_NEAR(Zoom().Factor(), 1.25, 1e-9);
  EXPECT_NEAR(Under(mouse).x(), before.x(), 1e-3);
  EXPECT_NEAR(Under(mouse).y(), before.y(), 1e-3);
  TurnWheel(Box(), mouse, -60);
  EXPECT_NEAR(Zoom().Factor(), 1.25, 1e-9) << "half a notch";
  TurnWheel(Box(), mouse, -60);
  EXPECT_NEAR(Zoom().Factor(), 1, 1e-9);
}

TEST_F(EditorLook, Zoom_Should_Stay_When_TheWindowIsResizedOrActivatedAgain) {
  Show(WritePicture("plan.png", 4000, 3000));
  Action("ActualSize").trigger();
  TurnWheel(Box(), {20, 20}, 120);
  const TRect before = Zoom().Place();
  QWidget other;
  ASSERT_TRUE(ShowSettled(other));
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  form->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
  EXPECT_EQ(Zoom().Place().Left, before.Left);
  EXPECT_EQ(Zoom().Place().Top, before.Top);
  form->resize(form->size() + QSize(40, 40));
  Settle(*form);
  EXPECT_NEAR(Zoom().Factor(), 1.25, 1e-9);
}

TEST_F(EditorLook, Zoom_Should_Stay_When_AStepKeepsTheSize) {
  Show(WritePicture("plan.png", 4000, 3000));
  Action("ActualSize").trigger();
  Use("Mirror");
  EXPECT_NEAR(Zoom().Factor(), 1, 1e-9);
  Use("TurnLeft");
  EXPECT_TRUE(Zoom().IsFit()) << "another size";
}

TEST_F(EditorLook, ADrag_Should_MoveThePicture) {
  Show(WritePicture("plan.png", 4000, 3000));
  Action("ActualSize").trigger();
  const TRect before = Zoom().Place();
  QTest::mousePress(&Box(), Qt::LeftButton, {}, {200, 150});
  QTest::mouseMove(&Box(), {180, 120});
  QTest::mouseRelease(&Box(), Qt::LeftButton, {}, {180, 120});
  const double scale = form->devicePixelRatioF();
  EXPECT_EQ(Zoom().Place().Left, before.Left - qRound(20 * scale));
  EXPECT_EQ(Zoom().Place().Top, before.Top - qRound(30 * scale));
}

TEST_F(EditorLook, ThePixels_Should_BeThoseOfThePicture) {
  const std::string file = WritePicture("plan.png", 60, 40);
  Show(file);
  Action("ActualSize").trigger();
  const QImage image = form->grab().toImage();
  const double scale = image.devicePixelRatio();
  const TRect place = Zoom().Place();
  const QPoint corner = (QPointF(Box().mapTo(form.get(), QPoint())) * scale).toPoint();
  const TBitmap& pixels = *form->Model().Pixels();
  for (const QPoint point : {QPoint(10, 5), QPoint(50, 30), QPoint(31, 17)}) {
    const auto color = static_cast<uint32_t>(pixels.Content().PixelColor(point.x(), point.y()));
    const QRgb shown = image.pixel(corner + QPoint(place.Left, place.Top) + point);
    EXPECT_EQ(qRed(shown), static_cast<int>(color & 0xFF));
    EXPECT_EQ(qBlue(shown), static_cast<int>(color >> 16 & 0xFF));
  }
}

// Pages.

TEST_F(EditorLook, ThePages_Should_BeShownInAStrip_AndChosenByKeys) {
  Show(WritePages(3), 1);
  EXPECT_TRUE(Find<QWidget>("PanelPages").isVisible());
  EXPECT_EQ(Find<PageStrip>("ListPages").model()->rowCount(), 3);
  const auto press = [&](Qt::Key key, Qt::KeyboardModifiers keys = {}) {
    Press(key, keys);
    WaitForJobs();
    return form->Model().Page();
  };
  EXPECT_EQ(press(Qt::Key_PageDown), 2);
  EXPECT_EQ(form->Model().Pixels()->Width(), 20);
  EXPECT_EQ(press(Qt::Key_PageDown), 3);
  EXPECT_EQ(press(Qt::Key_PageDown), 3);
  EXPECT_EQ(press(Qt::Key_PageUp), 2);
  EXPECT_EQ(press(Qt::Key_Home, Qt::ControlModifier), 1);
  EXPECT_EQ(press(Qt::Key_End, Qt::ControlModifier), 3);
  EXPECT_EQ(Find<TSpinEditInt>("SpinEditPage").value(), 3);
  EXPECT_EQ(Find<PageStrip>("ListPages").currentIndex().row(), 2);
}

TEST_F(EditorLook, ThePages_Should_BeChosenByClickEnterAndNumber) {
  Show(WritePages(3));
  auto& strip = Find<PageStrip>("ListPages");
  QTest::mouseClick(strip.viewport(), Qt::LeftButton, {},
                    strip.visualRect(strip.model()->index(1, 0)).center());
  WaitForJobs();
  EXPECT_EQ(form->Model().Page(), 2);
  strip.setFocus();
  Press(Qt::Key_Down);
  Press(Qt::Key_Return);
  WaitForJobs();
  EXPECT_EQ(form->Model().Page(), 3);
  auto& field = Find<TSpinEditInt>("SpinEditPage");
  field.setFocus();
  field.selectAll();
  QTest::keyClicks(&field, "1");
  Press(Qt::Key_Return);
  WaitForJobs();
  EXPECT_EQ(form->Model().Page(), 1);
  EXPECT_TRUE(form->isVisible());
}

TEST_F(EditorLook, ThePages_Should_BeDrawnAnew_When_TheirFileIsSaved) {
  const std::string file = WritePages(3);
  Show(file);
  auto& strip = Find<PageStrip>("ListPages");
  // Empty while the page is not drawn.
  const auto first = [&] {
    const auto icon = strip.model()->index(0, 0).data(Qt::DecorationRole).value<QIcon>();
    const QImage image = icon.pixmap(icon.availableSizes().value(0)).toImage();
    const bool isDrawn = image.pixelColor(image.width() / 2, image.height() / 2).alpha() != 0;
    return isDrawn ? image.size() : QSize();
  };
  constexpr int kMost = 20'000;
  ASSERT_TRUE(QTest::qWaitFor([&] { return first().width() > first().height(); }, kMost));
  Use("TurnLeft");
  savingAnswer = SavingChoice{file, {}, true};
  Use("SaveAs");
  EXPECT_EQ(form->Model().PagesFile(), file);
  EXPECT_TRUE(QTest::qWaitFor([&] { return first().width() < first().height(); }, kMost));
}

TEST_F(EditorLook, OnlyPagesThatAreSeen_Should_BeDrawn) {
  Show(WritePages(2000));
  auto& strip = Find<PageStrip>("ListPages");
  EXPECT_EQ(strip.model()->rowCount(), 2000);
  const auto hasDrawing = [&](int row) {
    const auto icon = strip.model()->index(row, 0).data(Qt::DecorationRole).value<QIcon>();
    const QImage image = icon.pixmap(icon.availableSizes().value(0)).toImage();
    return image.pixelColor(image.width() / 2, image.height() / 2).alpha() != 0;
  };
  ASSERT_TRUE(QTest::qWaitFor([&] { return hasDrawing(0) && hasDrawing(1); }, 60'000));
  EXPECT_LT(strip.Pages().DrawnPages(), 100);
  EXPECT_FALSE(hasDrawing(1500));
  strip.scrollTo(strip.model()->index(1500, 0));
  ASSERT_TRUE(QTest::qWaitFor([&] { return hasDrawing(1500); }, 60'000));
  EXPECT_LT(strip.Pages().DrawnPages(), 200);
}

TEST_F(EditorLook, APictureOfOnePage_Should_HaveNoStrip) {
  Show(WritePicture("plan.png"));
  EXPECT_FALSE(Find<QWidget>("PanelPages").isVisible());
  EXPECT_FALSE(Find<QWidget>("CellPage").isVisible());
  EXPECT_FALSE(Find<QWidget>("CellResolution").isVisible());
  EXPECT_FALSE(Action("NextPage").isVisible());
}

// Options of the host.

TEST_F(EditorLook, WhatTheHostDoesNotWant_Should_NotBeThere) {
  options.mayOpenOtherFiles = false;
  options.showsPages = false;
  options.showsSave = false;
  Show(WritePages(3));
  for (const char* name : {"Open", "SaveAs", "Settings", "NextPage", "ShowPages"}) {
    EXPECT_FALSE(Action(name).isVisible()) << name;
    EXPECT_FALSE(Action(name).isEnabled()) << name;
  }
  for (const char* name : {"ToolOpen", "ToolSaveAs", "ToolShowPages"}) {
    EXPECT_FALSE(Find<QWidget>(name).isVisible()) << name;
  }
  EXPECT_FALSE(Find<QWidget>("PanelPages").isVisible());
  EXPECT_FALSE(Find<QWidget>("CellPage").isVisible());
}

class EditorDrop : public EditorLook {
 protected:
  bool Enter(const std::string& file) {
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(file))});
    QDragEnterEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(form.get(), &event);
    return event.isAccepted();
  }
  void Drop() {
    QDropEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(form.get(), &event);
    QCoreApplication::processEvents();
    WaitForJobs();
  }
  QMimeData data;
};

TEST_F(EditorDrop, AFile_Should_BeOpened) {
  Show(WritePicture("plan.png"));
  ASSERT_TRUE(Enter(WritePicture("other.png", 33, 22)));
  Drop();
  EXPECT_EQ(form->windowTitle(), "other.png - Edit picture");
  EXPECT_EQ(form->Model().Pixels()->Width(), 33);
}

TEST_F(EditorDrop, AFile_Should_BeRefused_When_TheHostWantsOneFile) {
  options.mayOpenOtherFiles = false;
  Show(WritePicture("plan.png"));
  EXPECT_FALSE(Enter(WritePicture("other.png", 33, 22)));
}

TEST_F(EditorDrop, AFileThatIsNoPicture_Should_BeTold_AndKeepThePicture) {
  Show(WritePicture("plan.png"));
  ASSERT_TRUE(Enter(folder.Write("notes.txt", "no picture")));
  bool isTold = false;
  WhenModal([&](QWidget&) { isTold = true; });
  Drop();
  ASSERT_TRUE(QTest::qWaitFor([&] { return isTold; }, 60'000));
  EXPECT_EQ(form->windowTitle(), "plan.png - Edit picture");
  EXPECT_NE(form->Model().Pixels(), nullptr);
}

// Help.

TEST_F(EditorLook, F1_Should_CallTheHost) {
  int called = 0;
  options.onHelp = [&] { ++called; };
  Show(WritePicture("plan.png"));
  Press(Qt::Key_F1);
  EXPECT_EQ(called, 1);
}

TEST_F(EditorLook, F1_Should_ShowTheHostsTopic_When_ThereIsOne) {
  const auto before = HostPorts().helpTopic;
  int topic = 0;
  HostPorts().helpTopic = [&](int number) { topic = number; };
  Show(WritePicture("plan.png"));
  Press(Qt::Key_F1);
  HostPorts().helpTopic = before;
  EXPECT_NE(topic, 0);
}

TEST_F(EditorLook, F1_Should_OpenTheDocumentation_OrShowAShortHelp) {
  opensDocuments = false;
  Show(WritePicture("plan.png"));
  QString help;
  WhenModal([&](QWidget& window) {
    help = window.findChild<QPlainTextEdit*>("TextHelp")->toPlainText();
  });
  Press(Qt::Key_F1);
  EXPECT_THAT(help.toStdString(), HasSubstr("Ctrl+Z: Takes back the last step"));
  EXPECT_EQ(openedDocument.isEmpty(), InstalledDocumentation().isEmpty());
}

// Tools and panels.

TEST_F(EditorLook, EveryTool_Should_BeReachable_When_TheWindowIsAsNarrowAsItGets) {
  Show(WritePicture("plan.png"));
  form->resize(form->minimumSizeHint());
  Settle(*form);
  const auto& row = Find<ToolRow>("ToolRow");
  for (const QToolButton* tool : row.Tools()) {
    if (tool->isHidden()) continue;
    EXPECT_TRUE(row.rect().contains(tool->geometry())) << tool->objectName().toStdString();
    EXPECT_TRUE(form->rect().contains(row.geometry()));
  }
}

TEST_F(EditorLook, Tools_Should_BeOneTabStop_WithArrowsBetweenThem) {
  Show(WritePicture("plan.png"));
  Press(Qt::Key_F6);
  ASSERT_EQ(form->focusWidget()->objectName(), "ToolOpen");
  Press(Qt::Key_Right);
  EXPECT_EQ(form->focusWidget()->objectName(), "ToolSaveAs") << "save is pale";
  Press(Qt::Key_End);
  EXPECT_EQ(form->focusWidget()->objectName(), "ToolHelp");
  Press(Qt::Key_Home);
  EXPECT_EQ(form->focusWidget()->objectName(), "ToolOpen");
  int stops = 0;
  for (const QToolButton* tool : Find<ToolRow>("ToolRow").Tools()) {
    stops += (tool->focusPolicy() & Qt::TabFocus) != 0 ? 1 : 0;
  }
  EXPECT_EQ(stops, 1);
}

TEST_F(EditorLook, ATool_Should_BePressedByEnterAndSpace) {
  Show(WritePicture("plan.png"));
  auto& tool = Find<QWidget>("ToolTurnLeft");
  tool.setFocus();
  QTest::keyClick(&tool, Qt::Key_Return);
  WaitForJobs();
  EXPECT_EQ(form->Model().Place(), 1u);
  QTest::keyClick(&tool, Qt::Key_Space);
  WaitForJobs();
  EXPECT_EQ(form->Model().Place(), 2u);
  EXPECT_TRUE(form->isVisible());
}

class MemorySettings {
 public:
  MemorySettings() : read_(HostPorts().readSetting), write_(HostPorts().writeSetting) {
    HostPorts().readSetting = [this](const std::string&,
                                     const std::string& key) -> std::optional<std::string> {
      const auto found = values_.find(key);
      return found == values_.end() ? std::nullopt : std::optional(found->second);
    };
    HostPorts().writeSetting = [this](const std::string&, const std::string& key,
                                      const std::string& value) { values_[key] = value; };
  }
  ~MemorySettings() {
    HostPorts().readSetting = read_;
    HostPorts().writeSetting = write_;
  }

 private:
  std::map<std::string, std::string> values_;
  decltype(HostPorts().readSetting) read_;
  decltype(HostPorts().writeSetting) write_;
};

TEST_F(EditorLook, PlaceAndPanels_Should_BeRemembered) {
  const MemorySettings settings;
  const std::string file = WritePicture("plan.png");
  Make();
  form->Model().Open(file, 1);
  QSize size;
  QTimer::singleShot(0, form.get(), [&] {
    EXPECT_FALSE(Find<QWidget>("PanelSteps").isVisible());
    Action("ShowSteps").trigger();
    form->resize(form->size() - QSize(30, 20));
    WaitForJobs();
    size = form->size();
    form->close();
  });
  form->ShowEditor();
  Make();
  Show(file);
  EXPECT_TRUE(Find<QWidget>("PanelSteps").isVisible());
  form->hide();
  QTimer::singleShot(0, form.get(), [&] {
    EXPECT_EQ(form->size(), size);
    form->close();
  });
  form->ShowEditor();
}

TEST_F(EditorLook, Mnemonics_Should_BeUniqueInTheWindowAndInEachMenu) {
  for (const char* language : {"en", "de"}) {
    ASSERT_TRUE(SetLanguage(language));
    form.reset();
    Make();
    std::vector<std::pair<QString, QString>> window;
    for (const QLabel* label : form->findChildren<QLabel*>()) {
      if (label->buddy() != nullptr) window.emplace_back(label->text(), label->objectName());
    }
    for (const auto* button : form->findChildren<QPushButton*>()) {
      window.emplace_back(button->text(), button->objectName());
    }
    const auto check = [&](const auto& texts) {
      QMap<QKeySequence, QString> owners;
      for (const auto& [text, name] : texts) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (key.isEmpty()) continue;
        EXPECT_FALSE(owners.contains(key))
            << language << ": " << owners[key].toStdString() << " and " << name.toStdString();
        owners[key] = name;
      }
      return owners.size();
    };
    for (const QAction* title : Find<QMenuBar>("MenuBar").actions()) {
      window.emplace_back(title->text(), title->text());
      std::vector<std::pair<QString, QString>> menu;
      for (const QAction* action : title->menu()->actions()) {
        if (!action->isSeparator()) menu.emplace_back(action->text(), action->objectName());
      }
      EXPECT_EQ(check(menu), static_cast<int>(menu.size())) << "each has one";
    }
    check(window);
  }
  SetLanguage("");
}

TEST_F(EditorFormTest, SmallPages_Should_BeDrawnUnderTheLimitsOfTheCaller) {
  const std::string file = WritePicture("plan.png");
  const std::atomic<bool> isCanceled = false;
  Limits limits;
  limits.side = 50;
  PageDrawing limited;
  {
    const LimitsScope scope(limits);
    limited = DrawPagesOf(file, Isolation::none);
  }
  EXPECT_TRUE(limited(1, 20, isCanceled).isNull());
  EXPECT_FALSE(DrawPagesOf(file, Isolation::none)(1, 20, isCanceled).isNull());
}

}  // namespace
}  // namespace rasterkit::test
