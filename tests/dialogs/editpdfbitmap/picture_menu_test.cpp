#include <QContextMenuEvent>
#include <QMenu>
#include <QTimer>
#include <optional>

#include "tests/dialogs/editpdfbitmap/editor_test.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;

/// The menu over the picture.
class PictureMenu : public EditorTest {
 protected:
  PictureMenu() { OpenGraphic(picture); }

  /// Opens the menu with the mouse or the menu key and chooses the entry of that text in it, or
  /// none. Gives back which entries could have been chosen.
  std::vector<std::string> Choose(const char* text,
                                  QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse) {
    std::optional<std::vector<std::string>> enabled;
    QTimer::singleShot(0, &Box(), [&] {
      auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (menu == nullptr) return;
      enabled.emplace();
      QAction* chosen = nullptr;
      for (QAction* const action : menu->actions()) {
        if (action->isEnabled()) enabled->push_back(action->text().toStdString());
        if (action->text() == text) chosen = action;
      }
      if (chosen == nullptr) return void(menu->close());
      menu->setActiveAction(chosen);
      QTest::keyClick(menu, Qt::Key_Return);
    });
    const QPoint place = Box().rect().center();
    QContextMenuEvent event(reason, place, Box().mapToGlobal(place));
    QApplication::sendEvent(&Box(), &event);
    EXPECT_TRUE(enabled.has_value()) << "there was no menu";
    return enabled.value_or(std::vector<std::string>());
  }

  const TBitmap picture = GradientBitmap(pf24bit, 410, 300);
};

TEST_F(PictureMenu, Entries_Should_BeEnabled_When_TheyHaveSomethingToDo) {
  EXPECT_THAT(Choose(nullptr), ElementsAre("Change size..."));
  Click("SpeedButtonMirror");
  EXPECT_THAT(Choose(nullptr), ElementsAre("Undo", "Change size..."));
  DrawCut(50, 40, 250, 200);
  EXPECT_THAT(Choose(nullptr, QContextMenuEvent::Keyboard),
              ElementsAre("Undo", "Change size...", "Remove rectangle"));
  EXPECT_TRUE(form->Tool().GetCutRectExists());
}

TEST_F(PictureMenu, Undo_Should_TakeTheLastChangeBack) {
  Click("SpeedButtonMirror");
  Choose("Undo");
  EXPECT_TRUE(SamePixels(picture, Picture()));
}

TEST_F(PictureMenu, Rectangle_Should_BeRemoved) {
  DrawCut(50, 40, 250, 200);
  Choose("Remove rectangle");
  EXPECT_FALSE(form->Tool().GetCutRectExists());
  EXPECT_FALSE(Model().ModalResult());
}

TEST_F(PictureMenu, Size_Should_RunItsDialog) {
  std::string title;
  QTimer::singleShot(50, &Box(), [&] {
    WhenModal([&](QWidget& window) {
      title = window.windowTitle().toStdString();
      QTest::keyClick(&window, Qt::Key_Escape);
    });
  });
  Choose("Change size...");
  EXPECT_NE(title, "");
  EXPECT_FALSE(Model().BmpChanged());
  EXPECT_FALSE(Model().CtrlPressed()) << "no key is held";
}

}  // namespace
}  // namespace rasterkit::test
