#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/qt/files/file_dialogs.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/qt/preview/preview_loader.h>
#include <rasterkit/qt/qt_text.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::WhenModal;

class FileDialogsTest : public testing::Test {
 protected:
  FileDialogsTest() {
    // Qt remembers folders there.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, ToQt(settings_ / ""));
  }
  ~FileDialogsTest() override {
    QDir::setCurrent(before_);
    detail::JoinLateTasks();
  }

  std::string Folder() const { return (folder_.Path() / "").string(); }

  static QLineEdit& NameEdit(QWidget& window) {
    return *window.findChild<QLineEdit*>("fileNameEdit");
  }
  static QComboBox& Types(QWidget& window) {
    return *window.findChild<QComboBox*>("fileTypeCombo");
  }
  static void Type(QWidget& window, const char* name) {
    NameEdit(window).setFocus();
    NameEdit(window).selectAll();
    QTest::keyClicks(&NameEdit(window), name);
    // The list of names that begin like this would take the next click.
    if (QCompleter* completer = NameEdit(window).completer()) completer->popup()->hide();
  }
  /// Chooses an entry as the user does.
  static void ChooseType(QWidget& window, int index) {
    Types(window).setCurrentIndex(index);
    Q_EMIT Types(window).activated(index);
    Q_EMIT Types(window).textActivated(Types(window).itemText(index));
  }
  static void PressOk(QWidget& window) {
    auto* box = window.findChild<QDialogButtonBox*>("buttonBox");
    for (QAbstractButton* button : box->buttons())
      if (box->buttonRole(button) == QDialogButtonBox::AcceptRole)
        QTest::mouseClick(button, Qt::LeftButton);
  }
  /// Answers the next message box; `asked_` then holds its text.
  void WhenAsked(QMessageBox::StandardButton answer) {
    QTimer::singleShot(5, &asking_, [this, answer] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return WhenAsked(answer);
      asked_ = box->text().toStdString();
      if (QAbstractButton* button = box->button(answer)) {
        button->click();
      } else {
        box->close();
      }
    });
  }

  const QtHost host_;
  test::TempFolder folder_, settings_;
  const QString before_ = QDir::currentPath();
  std::string asked_;
  /// Ends the waiting for a message that never comes.
  QObject asking_;
};

TEST_F(FileDialogsTest, Open_Should_ListTheFiltersAndChooseTheIndex) {
  std::string fileName = "unchanged";
  QStringList types;
  int index = -1;
  WhenModal([&](QWidget& window) {
    for (int i = 0; i < Types(window).count(); ++i) types.append(Types(window).itemText(i));
    index = Types(window).currentIndex();
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  EXPECT_FALSE(BitmapOpenDialog(Folder(), ".tif", bfAll, fileName, true));
  EXPECT_EQ(fileName, "unchanged");
  ASSERT_EQ(types.size(), 8);
  EXPECT_EQ(types[0], "All supported files");
  EXPECT_EQ(types[4], "TIFF (*.tif,*.tiff)");
  EXPECT_EQ(index, 4);
}

TEST_F(FileDialogsTest, Open_Should_AnswerTheFileAndTheIndex) {
  const std::string file = folder_.Write("Zeichnung ä.PNG", "x");
  PictureFileDialog dialog;
  dialog.Filter = GetOpenFilter(false);
  dialog.FilterIndex = 3;
  dialog.InitialDir = Folder();
  WhenModal([&](QWidget& window) {
    NameEdit(window).setText("Zeichnung ä.PNG");
    ChooseType(window, 3);
    PressOk(window);
  });
  ASSERT_TRUE(RunPictureFileDialog(dialog));
  EXPECT_EQ(dialog.FileName, file);
  EXPECT_EQ(dialog.FilterIndex, 4);
  EXPECT_EQ(QDir::currentPath(), before_);
}

TEST_F(FileDialogsTest, Open_Should_FindTheFile_When_ItsExtensionIsNotTyped) {
  const std::string file = folder_.Write("photo.jpg", "x");
  std::string fileName;
  WhenModal([&](QWidget& window) {
    Type(window, "photo");
    PressOk(window);
  });
  ASSERT_TRUE(BitmapOpenDialog(Folder(), ".jpg", bfAll, fileName, true));
  EXPECT_EQ(fileName, file);
}

TEST_F(FileDialogsTest, Open_Should_NotAccept_When_ThereIsNoSuchFile) {
  std::string fileName = "unchanged";
  WhenModal([&](QWidget& window) {
    Type(window, "missing.bmp");
    PressOk(window);
    WhenAsked(QMessageBox::Ok);
    QTest::keyClick(&NameEdit(window), Qt::Key_Return);
    EXPECT_TRUE(window.isVisible());
    window.close();
  });
  EXPECT_FALSE(BitmapOpenDialog(Folder(), ".bmp", bfAll, fileName, true));
  EXPECT_EQ(fileName, "unchanged");
}

TEST_F(FileDialogsTest, Open_Should_ShowTheFirstEntry_When_IndexLiesBeyondTheList) {
  std::string fileName;
  int index = -1;
  WhenModal([&](QWidget& window) { index = Types(window).currentIndex(); });
  EXPECT_FALSE(BitmapOpenDialog(Folder(), ".pdf", bfGeo, fileName, true));
  EXPECT_EQ(index, 0);
}

TEST_F(FileDialogsTest, Open_Should_PreviewTheFileThatIsSuggested) {
  test::GradientBitmap(pf24bit, 31, 17).SaveToFile(folder_ / "a.bmp");
  std::string fileName = "a.bmp";
  QString text;
  WhenModal([&](QWidget& window) {
    auto* label = window.findChild<QLabel*>("PreviewText");
    EXPECT_TRUE(QTest::qWaitFor([&] { return label->text().contains("×"); }, 20000));
    text = label->text();
  });
  EXPECT_FALSE(BitmapOpenDialog(Folder(), ".bmp", bfAll, fileName, true));
  EXPECT_TRUE(text.startsWith("31 × 17")) << text.toStdString();
}

TEST_F(FileDialogsTest, Open_Should_CloseAtOnce_When_APreviewIsBeingDecoded) {
  test::GradientBitmap(pf24bit, 4000, 3000).SaveToFile(folder_ / "large.png.bmp");
  for (int i = 0; i < 5; ++i) {
    std::string fileName = "large.png.bmp";
    WhenModal([&](QWidget& window) {
      QTest::qWait(120 + 10 * i);
      window.close();
    });
    EXPECT_FALSE(BitmapOpenDialog(Folder(), ".bmp", bfAll, fileName, true));
  }
}

TEST_F(FileDialogsTest, Open_Should_ShowTheFolderOfTheName_When_ItHasOne) {
  QString shown;
  WhenModal([&](QWidget& window) {
    shown = static_cast<QFileDialog&>(window).directory().absolutePath();
  });
  std::string fileName = folder_ / "a.bmp";
  EXPECT_FALSE(BitmapOpenDialog("/", ".bmp", bfAll, fileName, true));
  EXPECT_EQ(shown.toStdString(), folder_.Path().string());
}

TEST_F(FileDialogsTest, Open_Should_ShowTheInitialDir_When_FolderOfTheNameIsGone) {
  QString shown;
  WhenModal([&](QWidget& window) {
    shown = static_cast<QFileDialog&>(window).directory().absolutePath();
  });
  std::string fileName = "/no/such/folder/a.bmp";
  EXPECT_FALSE(BitmapOpenDialog(Folder(), ".bmp", bfAll, fileName, true));
  EXPECT_EQ(shown.toStdString(), folder_.Path().string());
}

TEST_F(FileDialogsTest, Open_Should_BeCanceled_When_CalledOnAnotherThread) {
  std::thread([] {
    PictureFileDialog dialog;
    EXPECT_FALSE(RunPictureFileDialog(dialog));
  }).join();
}

TEST_F(FileDialogsTest, Save_Should_GiveTheExtensionOfTheEntry) {
  std::string fileName;
  WhenModal([&](QWidget& window) {
    Type(window, "name.jpg");
    PressOk(window);
  });
  ASSERT_TRUE(BitmapSaveDialog(Folder(), ".bmp", false, fileName, false));
  EXPECT_EQ(fileName, folder_ / "name.bmp");
}

TEST_F(FileDialogsTest, Save_Should_ShowTheNewExtension_When_AnotherEntryIsChosen) {
  std::string fileName = "plan.png";
  QString first, second;
  WhenModal([&](QWidget& window) {
    first = NameEdit(window).text();
    ChooseType(window, 3);
    second = NameEdit(window).text();
    PressOk(window);
  });
  ASSERT_TRUE(BitmapSaveDialog(Folder(), ".jpg", true, fileName, false));
  EXPECT_EQ(first, "plan.jpg");
  EXPECT_EQ(second, "plan.tif");
  EXPECT_EQ(fileName, folder_ / "plan.tif");
}

TEST_F(FileDialogsTest, Save_Should_AskAboutTheFileThatIsWritten) {
  folder_.Write("plan.png", "old");
  std::string fileName;
  WhenModal([&](QWidget& window) {
    Type(window, "plan");
    WhenAsked(QMessageBox::Yes);
    PressOk(window);
  });
  ASSERT_TRUE(BitmapSaveDialog(Folder(), ".png", false, fileName, false));
  EXPECT_EQ(fileName, folder_ / "plan.png");
  EXPECT_EQ(asked_, "plan.png exists already.\nReplace it?");
}

TEST_F(FileDialogsTest, Save_Should_GoOn_When_TheUserDoesNotReplace) {
  folder_.Write("plan.png", "old");
  std::string fileName = "unchanged.png";
  WhenModal([&](QWidget& window) {
    Type(window, "plan.png");
    WhenAsked(QMessageBox::No);
    PressOk(window);
    EXPECT_TRUE(window.isVisible());
    window.close();
  });
  EXPECT_FALSE(BitmapSaveDialog(Folder(), ".png", false, fileName, false));
  EXPECT_EQ(fileName, "unchanged.png");
  EXPECT_NE(asked_, "");
}

TEST_F(FileDialogsTest, Save_Should_NotAsk_When_PromptIsNotWanted) {
  folder_.Write("plan.png", "old");
  PictureFileDialog dialog;
  dialog.kind = PictureFileDialog::Kind::save;
  dialog.InitialDir = Folder();
  dialog.ofNoChangeDir = true;
  dialog.FilterIndex = 7;
  WhenModal([&](QWidget& window) {
    Type(window, "plan.png");
    PressOk(window);
  });
  ASSERT_TRUE(RunPictureFileDialog(dialog));
  EXPECT_EQ(dialog.FileName, folder_ / "plan.png");
  EXPECT_EQ(dialog.FilterIndex, 7);
  EXPECT_EQ(asked_, "");
}

TEST_F(FileDialogsTest, Save_Should_Refuse_When_TheNameCannotBeWritten) {
  std::filesystem::create_directory(folder_.Path() / "taken.png");
  const std::string tooLong(253, 'n');
  const std::pair<std::string, std::string> namesAndTexts[] = {
      {"no/such/plan", "There is no folder"},
      {"taken", "taken.png is a folder."},
      {tooLong, "is too long."}};
  for (const auto& nameAndText : namesAndTexts) {
    std::string fileName;
    asked_.clear();
    WhenModal([&](QWidget& window) {
      NameEdit(window).setText(ToQt(nameAndText.first));
      WhenAsked(QMessageBox::Ok);
      PressOk(window);
      EXPECT_TRUE(window.isVisible());
      window.close();
    });
    EXPECT_FALSE(BitmapSaveDialog(Folder(), ".png", false, fileName, false));
    EXPECT_THAT(asked_, testing::HasSubstr(nameAndText.second));
  }
}

TEST_F(FileDialogsTest, Save_Should_ChangeTheCurrentFolder_When_AskedTo) {
  for (const bool changeDir : {false, true}) {
    std::string fileName;
    WhenModal([&](QWidget& window) {
      Type(window, "plan");
      PressOk(window);
    });
    ASSERT_TRUE(BitmapSaveDialog(Folder(), ".png", false, fileName, changeDir));
    EXPECT_EQ(QDir::currentPath(), changeDir ? ToQt(folder_.Path().string()) : before_);
  }
}

}  // namespace
}  // namespace rasterkit
