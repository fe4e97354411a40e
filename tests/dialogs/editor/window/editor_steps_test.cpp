// Tools, menus, keys and lists change the list of steps.

#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>

#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/runtime/errors.h>

#include "tests/dialogs/editor/window/editor_form_test.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using EditorSteps = EditorFormTest;

TEST_F(EditorSteps, AnOpenedPicture_Should_BeShownWithItsFacts) {
  Show(WritePicture("plan.png"));
  ASSERT_NE(form->Model().Pixels(), nullptr);
  EXPECT_EQ(form->windowTitle(), "plan.png - Edit picture");
  EXPECT_THAT(Text("LabelFacts").toStdString(), HasSubstr("60 x 40 pixels, 24 bits"));
  EXPECT_THAT(Text("LabelSaving").toStdString(), HasSubstr("OK writes plan.png"));
  EXPECT_EQ(Box().ContentText(), Text("LabelFacts"));
}

TEST_F(EditorSteps, EveryToolOfAStep_Should_AddIt) {
  cropAnswer = RecipeCrop{LengthUnit::pixels, 0, 0, 20, 20};
  valuesAnswer = AdjustColors{};
  valuesAnswer->brightness = 20;
  monoAnswer = MakeMono{};
  sizeAnswer = RecipeResize{LengthUnit::pixels, 10, 10};
  Show(WritePicture("plan.png"));
  size_t expected = 0;
  for (const char* tool : {"TurnLeft", "TurnRight", "Mirror", "Flip", "Crop", "Values", "256Colors",
                           "Gray", "Size", "Mono"}) {
    Use(tool);
    EXPECT_EQ(form->Model().Steps().size(), ++expected) << tool;
  }
}

TEST_F(EditorSteps, AWindowThatIsCanceled_Should_AddNothing) {
  Show(WritePicture("plan.png"));
  for (const char* tool : {"Crop", "Values", "Size", "Mono"}) Use(tool);
  EXPECT_THAT(form->Model().Steps(), IsEmpty());
  EXPECT_FALSE(Button(nbPost).isEnabled());
}

TEST_F(EditorSteps, AWindowThatCannotBeShown_Should_BeTold_AndChangeNothing) {
  windows.crop = [](TBitmap&, const Picture&, const ChooseCropOptions&,
                    QWidget*) -> std::optional<RecipeCrop> { throw Error("no room for it"); };
  Show(WritePicture("plan.png"));
  std::vector<std::string> told;
  WhenModal(
      [&](QWidget& box) { told.push_back(dynamic_cast<QMessageBox&>(box).text().toStdString()); });
  Use("Crop");
  EXPECT_THAT(told, ElementsAre(HasSubstr("no room for it")));
  EXPECT_THAT(form->Model().Steps(), IsEmpty());
}

struct Focus {
  const char* name;
};

TEST_F(EditorSteps, Keys_Should_WorkWhereverTheFocusIs) {
  Show(WritePicture("plan.png"));
  Action("ShowSteps").trigger();
  valuesAnswer = AdjustColors{};
  valuesAnswer->brightness = 5;
  size_t expected = 0;
  for (const char* name : {"PaintBoxPicture", "SpinEditAngle", "ListSteps", "ToolMirror",
                           "ButtonRotate", "nbCancel"}) {
    Find<QWidget>(name).setFocus();
    ASSERT_EQ(form->focusWidget(), &Find<QWidget>(name)) << name;
    Press(Qt::Key_E, Qt::ControlModifier);
    WaitForJobs();
    EXPECT_EQ(form->Model().Place(), ++expected) << name;
    Press(Qt::Key_L, Qt::ControlModifier);
    WaitForJobs();
    EXPECT_EQ(form->Model().Place(), ++expected) << name;
    Press(Qt::Key_Z, Qt::ControlModifier);
    WaitForJobs();
    EXPECT_EQ(form->Model().Place(), --expected) << name;
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    WaitForJobs();
    EXPECT_EQ(form->Model().Place(), ++expected) << name;
    Press(Qt::Key_Z, Qt::ControlModifier);
    WaitForJobs();
    Press(Qt::Key_Y, Qt::ControlModifier);
    WaitForJobs();
    EXPECT_EQ(form->Model().Place(), expected) << name;
  }
}

TEST_F(EditorSteps, UndoInAField_Should_FirstTakeBackWhatWasTyped) {
  Show(WritePicture("plan.png"));
  Use("TurnLeft");
  auto& field = Find<TSpinEditReal>("SpinEditAngle");
  field.setFocus();
  field.selectAll();
  QTest::keyClicks(&field, "12");
  ASSERT_EQ(field.value(), 12);
  Press(Qt::Key_Z, Qt::ControlModifier);
  WaitForJobs();
  EXPECT_EQ(form->Model().Place(), 1u) << "the field's own";
  EXPECT_NE(field.value(), 12);
  for (int i = 0; i < 4; ++i) Press(Qt::Key_Z, Qt::ControlModifier);
  WaitForJobs();
  EXPECT_EQ(form->Model().Place(), 0u) << "then the picture's";
}

TEST_F(EditorSteps, CommandsInQuickSuccession_Should_AllCount) {
  Show(WritePicture("plan.png", 300, 200));
  for (int i = 0; i < 3; ++i) Press(Qt::Key_L, Qt::ControlModifier);
  WaitForJobs();
  EXPECT_EQ(form->Model().Place(), 3u);
}

TEST_F(EditorSteps, TheAngle_Should_RotateWithEnterAndWithItsButton) {
  Show(WritePicture("plan.png"));
  auto& field = Find<TSpinEditReal>("SpinEditAngle");
  field.setFocus();
  field.selectAll();
  QTest::keyClicks(&field, "7.5");
  Press(Qt::Key_Return);
  WaitForJobs();
  ASSERT_EQ(form->Model().Steps().size(), 1u);
  EXPECT_EQ(std::get<RotateStep>(form->Model().Steps()[0]).degrees, 7.5);
  EXPECT_TRUE(form->isVisible()) << "Enter in a field does not close the window";
  field.setValue(-30);
  QTest::mouseClick(&Find<QAbstractButton>("ButtonRotate"), Qt::LeftButton);
  WaitForJobs();
  EXPECT_EQ(std::get<RotateStep>(form->Model().Steps()[1]).degrees, -30);
}

TEST_F(EditorSteps, AnAngleOfNothing_Should_AddNothing) {
  Show(WritePicture("plan.png"));
  QTest::mouseClick(&Find<QAbstractButton>("ButtonRotate"), Qt::LeftButton);
  WaitForJobs();
  EXPECT_THAT(form->Model().Steps(), IsEmpty());
}

TEST_F(EditorSteps, TheListOfSteps_Should_MoveThePlace_ByClickAndByEnter) {
  Show(WritePicture("plan.png"));
  Action("ShowSteps").trigger();
  for (const char* tool : {"TurnLeft", "Mirror", "Gray"}) Use(tool);
  auto& list = Find<QListWidget>("ListSteps");
  ASSERT_EQ(list.count(), 4);
  EXPECT_EQ(list.currentRow(), 3);
  const QRect first = list.visualItemRect(list.item(0));
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, first.center());
  WaitForJobs();
  EXPECT_EQ(form->Model().Place(), 0u);
  EXPECT_EQ(form->Model().Pixels()->Width(), 60);
  list.setFocus();
  list.setCurrentRow(3);
  Press(Qt::Key_Return);
  WaitForJobs();
  EXPECT_EQ(form->Model().Place(), 3u);
  EXPECT_EQ(form->Model().Pixels()->Width(), 40);
  EXPECT_TRUE(form->isVisible());
}

TEST_F(EditorSteps, StepsThatAreUndone_Should_BePale) {
  Show(WritePicture("plan.png"));
  for (const char* tool : {"TurnLeft", "Mirror"}) Use(tool);
  Use("Undo");
  auto& list = Find<QListWidget>("ListSteps");
  EXPECT_EQ(list.item(2)->foreground().color(),
            form->palette().color(QPalette::Disabled, QPalette::Text));
  EXPECT_NE(list.item(1)->foreground().color(), list.item(2)->foreground().color());
}

TEST_F(EditorSteps, UndoAndRedo_Should_BePaleWhereThereIsNothing) {
  Show(WritePicture("plan.png"));
  EXPECT_FALSE(Action("Undo").isEnabled());
  EXPECT_FALSE(Action("Redo").isEnabled());
  Use("Mirror");
  EXPECT_TRUE(Action("Undo").isEnabled());
  EXPECT_FALSE(Action("Redo").isEnabled());
  Use("Undo");
  EXPECT_FALSE(Action("Undo").isEnabled());
  EXPECT_TRUE(Action("Redo").isEnabled());
}

/// Whether a crop is lossless is known for the blocks of a JPEG file alone.
TEST_F(EditorSteps, TheCropWindow_Should_LearnWhatIsLossless) {
  const std::string file = WritePicture("photo.jpg", 64, 64);
  Show(file);
  Use("Crop");
  ASSERT_TRUE(cropOptions.isLossless);
  EXPECT_TRUE(cropOptions.isLossless({16, 16, 32, 32}));
  EXPECT_FALSE(cropOptions.isLossless({3, 3, 32, 32}));
  EXPECT_FALSE(cropOptions.isLossless({100, 100, 32, 32})) << "outside, and nothing is thrown";
}

TEST_F(EditorSteps, TheMenus_Should_HaveEveryActionOnce) {
  Show(WritePicture("plan.png"));
  QList<QAction*> inMenus;
  for (const QAction* title : Find<QMenuBar>("MenuBar").actions()) {
    for (QAction* action : title->menu()->actions()) {
      if (!action->isSeparator()) inMenus += action;
    }
  }
  EXPECT_EQ(inMenus.size(), kEditorCommands);
  for (QAction* action : inMenus) {
    EXPECT_EQ(inMenus.count(action), 1) << action->objectName().toStdString();
    EXPECT_FALSE(action->toolTip().isEmpty()) << action->objectName().toStdString();
    EXPECT_FALSE(action->shortcuts().isEmpty()) << action->objectName().toStdString();
  }
}

TEST_F(EditorSteps, NoTwoActions_Should_HaveOneKey) {
  Make();
  QMap<QKeySequence, QString> owners;
  for (const QAction* action : form->actions()) {
    for (const QKeySequence& key : action->shortcuts()) {
      EXPECT_FALSE(owners.contains(key))
          << owners[key].toStdString() << " and " << action->objectName().toStdString();
      owners[key] = action->objectName();
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
