// The windows of saving: what they show and what they answer.

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/dialogs/saving/choose_saving.h>
#include <rasterkit/dialogs/saving/desktop_file_dialogs.h>
#include <rasterkit/dialogs/saving/form_saving.h>
#include <rasterkit/qt/files/file_list.h>
#include <rasterkit/qt/modal_results.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

constexpr int kPatience = 20000;

class FormSaving : public testing::Test {
 protected:
  std::string Make(const std::string& name, int width = 320, int height = 240) const {
    const std::string file = folder / name;
    std::mt19937 random(3);
    Picture::Of(std::make_unique<TBitmap>(RandomRaster(pf24bit, width, height, random))).Save(file);
    return file;
  }
  TFormSaving& Open(const std::string& file, SavingScope scope = SavingScope::places) {
    form = std::make_unique<TFormSaving>(Picture::Open(file), SavingStart{file, {}, false}, scope);
    EXPECT_TRUE(ShowSettled(*form));
    return *form;
  }
  template <typename Widget>
  Widget& Find(const char* name) const {
    auto* widget = form->findChild<Widget*>(name);
    EXPECT_NE(widget, nullptr) << name;
    return *widget;
  }
  std::string TextOf(const char* label) const { return Find<QLabel>(label).text().toStdString(); }
  void Retype(const char* name, const QString& text) const {
    auto& edit = Find<QLineEdit>(name);
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, text);
  }
  bool Waits(const std::function<bool()>& until) const { return QTest::qWaitFor(until, kPatience); }

  TempFolder folder;
  std::unique_ptr<TFormSaving> form;
};

TEST_F(FormSaving, TheTrueSize_Should_AppearByItself) {
  Open(Make("a.jpg"));
  EXPECT_TRUE(Waits([&] { return !form->Model().Percent(); }));
  EXPECT_THAT(TextOf("LabSize"), testing::Not(HasSubstr("at most")));
  EXPECT_EQ(TextOf("LabLossless"), "Lossless: the compressed pixels are copied");
  EXPECT_EQ(TextOf("LabLoss"), "Nothing is lost");
}

TEST_F(FormSaving, TheSliderOfQuality_Should_ChangeSizeAndView) {
  Open(Make("a.jpg"), SavingScope::settings);
  EXPECT_TRUE(Waits([&] { return !form->Model().Percent() && form->Model().After().pixels; }));
  const std::string before = TextOf("LabSize");
  EXPECT_TRUE(Find<QCheckBox>("CheckQuality").isChecked());
  Find<QSlider>("SliderQuality").setFocus();
  QTest::keyClick(&Find<QSlider>("SliderQuality"), Qt::Key_Home);
  EXPECT_EQ(Find<QSpinBox>("NumberQuality").value(), 1);
  EXPECT_FALSE(Find<QCheckBox>("CheckQuality").isChecked());
  EXPECT_THAT(TextOf("LabLossless"), HasSubstr("Compressed again"));
  EXPECT_TRUE(Waits([&] { return !form->Model().Percent(); }));
  EXPECT_NE(TextOf("LabSize"), before);
  EXPECT_TRUE(Waits([&] { return form->Model().AfterText() == "As sa&ved"; }));
  EXPECT_EQ(TextOf("LabViewAfter"), "As sa&ved");
  QTest::keyClick(&Find<QCheckBox>("CheckQuality"), Qt::Key_Space);
  EXPECT_FALSE(form->Model().HasOwnQuality());
  EXPECT_EQ(form->Model().Choice().save.quality, std::nullopt);
}

TEST_F(FormSaving, ATypedEnding_Should_ChangeTheKindAndItsSettings) {
  Open(Make("a.jpeg"));
  Find<QPushButton>("ButtonSettings").click();
  EXPECT_TRUE(Find<QSlider>("SliderQuality").isVisible());
  EXPECT_TRUE(Find<QComboBox>("BoxCompression").isHidden());
  Retype("EditName", "b.tiff");
  EXPECT_THAT(Find<QComboBox>("BoxType").currentText().toStdString(), HasSubstr("TIFF"));
  EXPECT_FALSE(Find<QSlider>("SliderQuality").isVisible());
  EXPECT_FALSE(Find<QComboBox>("BoxCompression").isHidden());
  EXPECT_EQ(Find<QLineEdit>("EditFile").text().toStdString(), folder / "b.tiff");
}

TEST_F(FormSaving, AnotherKind_Should_ChangeTheName) {
  Open(Make("a.jpeg"));
  auto& type = Find<QComboBox>("BoxType");
  type.setCurrentIndex(type.findText("PNG", Qt::MatchStartsWith));
  EXPECT_EQ(Find<QLineEdit>("EditName").text(), "a.png");
}

TEST_F(FormSaving, AFault_Should_StandAboveAPaleButton) {
  Open(Make("a.png"));
  Retype("EditName", "gone/a.png");
  EXPECT_FALSE(Find<QPushButton>("SaveButton").isEnabled());
  EXPECT_TRUE(Find<QLabel>("LabFault").isVisible());
  EXPECT_THAT(TextOf("LabFault"), HasSubstr("There is no folder"));
  Retype("EditName", "b.png");
  EXPECT_TRUE(Find<QPushButton>("SaveButton").isEnabled());
  EXPECT_FALSE(Find<QLabel>("LabFault").isVisible());
}

TEST_F(FormSaving, Losses_Should_BeListedWhenTheUserAsks) {
  Picture picture = Picture::Open(Make("a.tif"));
  MetadataEdit edit;
  edit.set = {{"Artist", "Anna"}};
  picture.Edit(edit);
  form = std::make_unique<TFormSaving>(picture, SavingStart{folder / "b.png", {}, false},
                                       SavingScope::places);
  ASSERT_TRUE(ShowSettled(*form));
  auto& type = Find<QComboBox>("BoxType");
  EXPECT_FALSE(Find<QPushButton>("ButtonLosses").isVisible()) << form->Model().LossDetails();
  type.setCurrentIndex(type.findText("BMP", Qt::MatchStartsWith));
  EXPECT_TRUE(Find<QPushButton>("ButtonLosses").isVisible());
  EXPECT_FALSE(Find<QPlainTextEdit>("LossList").isVisible());
  QTest::mouseClick(&Find<QPushButton>("ButtonLosses"), Qt::LeftButton);
  EXPECT_TRUE(Find<QPlainTextEdit>("LossList").isVisible());
  EXPECT_EQ(Find<QPlainTextEdit>("LossList").toPlainText().toStdString(),
            form->Model().LossDetails());
}

TEST_F(FormSaving, Places_Should_OpenTheirFolder) {
  std::filesystem::create_directory(folder / "maps");
  Open(Make("a.png"));
  auto& places = Find<QListWidget>("Places");
  ASSERT_GE(places.count(), 1);
  Retype("EditFolder", QString::fromStdString(folder / "maps"));
  QTest::keyClick(&Find<QLineEdit>("EditFolder"), Qt::Key_Return);
  EXPECT_EQ(form->Model().Folder(), folder / "maps");
  EXPECT_TRUE(form->isVisible());
  const QRect first = places.visualItemRect(places.item(0));
  QTest::mouseClick(places.viewport(), Qt::LeftButton, {}, first.center());
  EXPECT_EQ(form->Model().Folder(), folder.Path().string());
  EXPECT_EQ(Find<TFileListView>("FileListView").Directory(), folder.Path().string() + "/");
}

TEST_F(FormSaving, TheViews_Should_MoveTogetherByMouseAndKeys) {
  Open(Make("a.png", 2000, 1500), SavingScope::settings);
  auto& before = Find<TPaintBox>("ViewBefore");
  EXPECT_TRUE(Waits([&] { return form->Model().After().pixels != nullptr; }));
  const auto start = form->Model().ViewedPart();
  before.setFocus();
  QTest::keyClick(&before, Qt::Key_Right);
  EXPECT_EQ(form->Model().ViewedPart().left, start.left + 16);
  QTest::keyClick(&before, Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(form->Model().ViewedPart().top, start.top - 160);
  QTest::mousePress(&before, Qt::LeftButton, {}, {50, 50});
  QTest::mouseMove(&before, {30, 60});
  QTest::mouseRelease(&before, Qt::LeftButton, {}, {30, 60});
  EXPECT_EQ(form->Model().ViewedPart().left, start.left + 36);
  EXPECT_EQ(form->Model().ViewedPart().top, start.top - 170);
}

TEST_F(FormSaving, TheAnswer_Should_BeWhatIsShown) {
  const std::string file = Make("a.jpg");
  std::optional<SavingChoice> choice;
  WhenModal([&](QWidget& window) {
    auto& name = *window.findChild<QLineEdit*>("EditName");
    name.setText("b.png");
    QTest::keyClick(&name, Qt::Key_Return);
  });
  choice = ChooseSaving(Picture::Open(file), {file, {}, false});
  ASSERT_TRUE(choice);
  EXPECT_EQ(choice->file, folder / "b.png");
  EXPECT_EQ(choice->save.type, PictureType::png);
  EXPECT_FALSE(choice->mayReplace);
  EXPECT_THAT(folder.Names(), testing::ElementsAre("a.jpg")) << "the window writes nothing";
}

TEST_F(FormSaving, WithoutDialogsOfTheDesktop_TheOwnWindow_Should_Open) {
  const std::string file = Make("a.jpg");
  std::string name;
  WhenModal([&](QWidget& window) { name = window.objectName().toStdString(); });
  EXPECT_EQ(ChooseSaving(Picture::Open(file), {file, {}, true}), std::nullopt);
  EXPECT_EQ(name, "FormSaving");
}

TEST_F(FormSaving, AnExistingFile_Should_BeAskedAboutOnce) {
  const std::string file = Make("a.jpg");
  int questions = 0;
  WhenModal([&](QWidget& window) {
    WhenModal([&](QWidget& box) {
      ++questions;
      QTest::mouseClick(dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes), Qt::LeftButton);
    });
    QTest::mouseClick(window.findChild<QPushButton*>("SaveButton"), Qt::LeftButton);
  });
  const auto choice = ChooseSaving(Picture::Open(file), {file, {}, false});
  ASSERT_TRUE(choice);
  EXPECT_EQ(questions, 1);
  EXPECT_TRUE(choice->mayReplace);
}

TEST_F(FormSaving, Settings_Should_BeAnsweredAlone) {
  const std::string file = Make("a.jpg");
  WhenModal([&](QWidget& window) {
    EXPECT_EQ(window.findChild<QComboBox*>("BoxType"), nullptr);
    EXPECT_EQ(window.findChild<QLineEdit*>("EditName"), nullptr);
    window.findChild<QSpinBox*>("NumberQuality")->setValue(33);
    QTest::mouseClick(window.findChild<QPushButton*>("SaveButton"), Qt::LeftButton);
  });
  const auto save = ChooseSaveSettings(Picture::Open(file), {file, {}, false});
  ASSERT_TRUE(save);
  EXPECT_EQ(save->quality, 33);
}

TEST_F(FormSaving, Escape_Should_AnswerNothing) {
  const std::string file = Make("a.jpg");
  WhenModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  EXPECT_EQ(ChooseSaveSettings(Picture::Open(file), {file, {}, false}), std::nullopt);
}

TEST_F(FormSaving, TheWindow_Should_CloseWhileItsWorkRuns) {
  const std::string file = Make("a.png", 4000, 3000);
  Open(file, SavingScope::settings);
  Find<QComboBox>("BoxLevel").setCurrentIndex(13);
  // Until the work is under way.
  EXPECT_TRUE(Waits([&] { return form->Model().Percent().value_or(0) > 0; }));
  form->reject();
  form.reset();
}

/// Dialogs of a desktop that answer at once.
class FormSavingOnADesktop : public FormSaving {
 protected:
  FormSavingOnADesktop() {
    dialogs.areThere = [] { return true; };
    dialogs.askToSave = [this](const std::string& file, PictureType type, QWidget*) {
      suggested.push_back(file);
      types.push_back(type);
      return answer;
    };
    dialogs.askToOpen = [](const std::string& first, QWidget*) { return first + "/b.png"; };
  }
  ~FormSavingOnADesktop() override { dialogs = {}; }

  detail::DesktopFileDialogs& dialogs = detail::TheDesktopFileDialogs();
  std::vector<std::string> suggested;
  std::vector<PictureType> types;
  std::optional<ChosenName> answer;
};

TEST_F(FormSavingOnADesktop, TheDesktopsDialog_Should_ComeFirstAndAskAlone) {
  const std::string file = Make("a.jpeg");
  answer = ChosenName{file, true};
  std::string shown;
  WhenModal([&](QWidget& window) {
    shown = window.findChild<QLineEdit*>("EditFile")->text().toStdString();
    EXPECT_EQ(window.findChild<QLineEdit*>("EditName"), nullptr);
    QTest::mouseClick(window.findChild<QPushButton*>("SaveButton"), Qt::LeftButton);
  });
  const auto choice = ChooseSaving(Picture::Open(file), {file, {}, true});
  ASSERT_TRUE(choice);
  EXPECT_THAT(suggested, testing::ElementsAre(file));
  EXPECT_THAT(types, testing::ElementsAre(PictureType::jpeg));
  EXPECT_EQ(shown, file);
  EXPECT_TRUE(choice->mayReplace);
  EXPECT_EQ(choice->file, file);
}

TEST_F(FormSavingOnADesktop, ACanceledDialog_Should_AnswerNothing) {
  const std::string file = Make("a.png");
  EXPECT_FALSE(ChooseSaving(Picture::Open(file), {file, {}, true}));
  EXPECT_EQ(suggested.size(), 1U);
}

TEST_F(FormSavingOnADesktop, APictureThatIsNotWritten_Should_SayWhyAfterTheDialog) {
  const std::string file = Make("a.png");
  answer = ChosenName{folder / "b.png", false};
  std::string note;
  WhenModal(
      [&](QWidget& window) { note = window.findChild<QLabel*>("LabNote")->text().toStdString(); });
  ChooseSaving(Picture::Open(file), {folder / "b.webp", {}, true});
  EXPECT_THAT(suggested, testing::ElementsAre(folder / "b.png"));
  EXPECT_THAT(note, HasSubstr("WEBP files cannot be written"));
}

TEST_F(FormSavingOnADesktop, AFaultOfTheName_Should_LeadBackToTheDialog) {
  const std::string file = Make("a.png");
  answer = ChosenName{folder / "gone/b.png", false};
  WhenModal([&](QWidget& window) {
    auto& save = *window.findChild<QPushButton*>("SaveButton");
    EXPECT_FALSE(save.isEnabled());
    EXPECT_TRUE(window.findChild<QLabel*>("LabFault")->isVisible());
    answer = ChosenName{folder / "b.png", false};
    QTest::mouseClick(window.findChild<QPushButton*>("ButtonOtherName"), Qt::LeftButton);
    EXPECT_TRUE(save.isEnabled());
    QTest::mouseClick(&save, Qt::LeftButton);
  });
  const auto choice = ChooseSaving(Picture::Open(file), {file, {}, true});
  ASSERT_TRUE(choice);
  EXPECT_EQ(choice->file, folder / "b.png");
  EXPECT_FALSE(choice->mayReplace);
}

TEST_F(FormSavingOnADesktop, OpeningFiles_Should_AskTheDesktop) {
  EXPECT_EQ(ChooseFileToOpen(folder.Path().string()), folder / "b.png");
}

/// Qt's dialog in place of a desktop's, which it resembles in its answers.
TEST_F(FormSaving, TheDialogForNames_Should_KeepWhatItsUserTyped) {
  struct Case {
    std::string typed, filter, file;
    bool wasAsked;
  };
  Make("a.jpeg");
  for (const Case& one : {Case{"b.jpg", "JPEG", "b.jpg", true}, Case{"b", "JPEG", "b.jpg", false},
                          Case{"b", "PNG", "b.png", false}, Case{"b.tif", "PNG", "b.tif", true},
                          Case{"v1.2", "BMP", "v1.2.bmp", false}}) {
    WhenModal([&](QWidget& window) {
      auto& dialog = dynamic_cast<QFileDialog&>(window);
      for (const QString& filter : dialog.nameFilters()) {
        if (filter.startsWith(QString::fromStdString(one.filter))) dialog.selectNameFilter(filter);
      }
      auto& edit = *dialog.findChild<QLineEdit*>("fileNameEdit");
      edit.setText(QString::fromStdString(one.typed));
      QTest::keyClick(&edit, Qt::Key_Return);
    });
    const auto name = detail::AskSaveName(folder / "a.jpeg", PictureType::jpeg, nullptr);
    ASSERT_TRUE(name) << one.typed;
    EXPECT_EQ(name->file, folder / one.file);
    EXPECT_EQ(name->wasAsked, one.wasAsked) << one.typed;
  }
}

TEST_F(FormSaving, OpeningFiles_Should_KnowEveryKindThatIsRead) {
  QStringList filters;
  WhenModal([&](QWidget& window) {
    auto& dialog = dynamic_cast<QFileDialog&>(window);
    filters = dialog.nameFilters();
    dialog.reject();
  });
  EXPECT_EQ(ChooseFileToOpen(folder.Path().string(), false), "");
  ASSERT_GE(filters.size(), 2);
  for (const Codec& codec : CodecTable()) {
    for (const std::string_view extension : codec.extensions) {
      if (extension.empty()) continue;
      EXPECT_THAT(filters.front().toStdString(), HasSubstr("*." + std::string(extension)));
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
