// From the opening of the save window to what is returned.

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgbitmap/save_bitmap_dlg_ext.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::WhenModal;
using Action = std::function<void(QWidget&)>;

struct Flags {
  bool withMetafiles = false, showResolution = true, showPixelSize = true, confirmOverwrite = true;
  float sizeA = 210, sizeB = 297;
};

class SaveBitmapDlgExtTest : public testing::Test {
 protected:
  SaveBitmapDlgExtTest() {
    HostPorts().confirmation = [this](const std::string& question) {
      questions.push_back(question);
      return saysYes;
    };
    HostPorts().messageBox = [this](const std::string& text) { messages.push_back(text); };
  }
  ~SaveBitmapDlgExtTest() override { HostPorts() = Ports(); }

  bool Save(const Action& action, const Flags& flags = {}) {
    WhenModal(action);
    return SaveBitmapDlgExt(folder.Path().string(), rec, flags.withMetafiles, flags.showResolution,
                            flags.showPixelSize, flags.confirmOverwrite, flags.sizeA, flags.sizeB,
                            fileName);
  }
  bool SavePixels(const Action& action) {
    WhenModal(action);
    return SaveBitmapDlgExt(folder.Path().string(), rec, width, height, fileName);
  }

  static QPushButton& Button(const QWidget& window, const char* name) {
    return *window.findChild<QPushButton*>(name);
  }
  static QComboBox& Filter(const QWidget& window) {
    return *window.findChild<QComboBox*>("FilterComboBox");
  }
  static void Click(QWidget& window, const char* name) {
    QTest::mouseClick(&Button(window, name), Qt::LeftButton);
  }
  static void TypeName(QWidget& window, const char* name) {
    auto* edit = window.findChild<QLineEdit*>("EditFilename");
    edit->selectAll();
    QTest::keyClicks(edit, name);
  }
  /// Presses "Options" and does something in the window that it opens.
  static void InOptions(QWidget& window, const Action& action) {
    bool isDone = false;
    WhenModal([&](QWidget& options) {
      EXPECT_EQ(options.objectName(), "FormGraphicsParas");
      action(options);
      isDone = true;
    });
    Click(window, "ButtonOptions");
    EXPECT_TRUE(isDone);
  }
  static void Post(QWidget& options) {
    QTest::mouseClick(&options.findChild<TNavigator*>("NaviResult")->Button(nbPost),
                      Qt::LeftButton);
  }
  static bool IsVisible(const QWidget& window, const char* name) {
    return window.findChild<QWidget*>(name)->isVisible();
  }
  std::string Place(const std::string& name) const { return folder / name; }

  test::TempFolder folder;
  std::vector<std::string> questions, messages;
  bool saysYes = true;
  TrecSaveBitmap rec{8, 24, 300, 1, 90};
  std::string fileName = "plan.png";
  int width = 400, height = 300;
};

// How the window begins.

TEST_F(SaveBitmapDlgExtTest, TheWindow_Should_BeginInTheFolderWithNameAndFilters) {
  Save([&](QWidget& window) {
    EXPECT_EQ(window.windowTitle(), "Save Graphics");
    EXPECT_EQ(window.findChild<QLineEdit*>("EditFilename")->text(), "plan.png");
    EXPECT_EQ(window.findChild<QLineEdit*>("EditPath")->text().toStdString(),
              folder.Path().string());
    EXPECT_EQ(Filter(window).count(), 4);
    EXPECT_EQ(Filter(window).currentText(), "PNG Format (*.png)");
    EXPECT_TRUE(Button(window, "ButtonOptions").isVisible());
    EXPECT_TRUE(Button(window, "ButtonOptions").isEnabled());
  });
}

TEST_F(SaveBitmapDlgExtTest, TheKindOfFile_Should_BeThatOfTheRecord_When_TheNameHasNoDot) {
  fileName = "plan";
  rec.BitmapFormat = 6;
  EXPECT_TRUE(Save([](QWidget& window) {
    EXPECT_EQ(Filter(window).currentText(), "JPeg (*.jpg)");
    TypeName(window, "other.png");
    Click(window, "OKButton");
  }));
  EXPECT_EQ(fileName, Place("other.jpg")) << "regardless of what was typed";
  EXPECT_EQ(rec.BitmapFormat, 6);
}

TEST_F(SaveBitmapDlgExtTest, TheKindOfFile_Should_BeTheFirst_When_NothingTells) {
  fileName = "plan";
  rec.BitmapFormat = 0;
  EXPECT_TRUE(Save([](QWidget& window) { Click(window, "OKButton"); }));
  EXPECT_EQ(fileName, Place("plan.bmp"));
  EXPECT_EQ(rec.BitmapFormat, 1);
}

TEST_F(SaveBitmapDlgExtTest, AnEmptyFolder_Should_BecomeThatOfTheName) {
  fileName = Place("plan.png");
  WhenModal([&](QWidget& window) {
    EXPECT_EQ(window.findChild<QLineEdit*>("EditPath")->text().toStdString(), Place(""));
    EXPECT_EQ(window.findChild<QLineEdit*>("EditFilename")->text(), "plan.png");
    Click(window, "OKButton");
  });
  EXPECT_TRUE(SaveBitmapDlgExt("", rec, false, true, true, true, 0, 0, fileName));
  EXPECT_EQ(fileName, Place("plan.png"));
}

// What comes back.

TEST_F(SaveBitmapDlgExtTest, Save_Should_ReturnRecordAndName) {
  EXPECT_TRUE(Save([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Return); }));
  EXPECT_EQ(rec, (TrecSaveBitmap{8, 24, 300, 1, 90}));
  EXPECT_EQ(fileName, Place("plan.png"));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{}) << "nothing is written";
}

TEST_F(SaveBitmapDlgExtTest, TheFilter_Should_DecideTypeAndExtension) {
  const std::pair<int, const char*> kinds[] = {{1, ".bmp"}, {6, ".jpg"}, {8, ".png"}, {10, ".tif"}};
  for (int position = 0; position < 4; ++position) {
    fileName = "plan.png";
    EXPECT_TRUE(Save([&](QWidget& window) {
      Filter(window).setCurrentIndex(position);
      EXPECT_TRUE(Button(window, "ButtonOptions").isEnabled());
      Click(window, "OKButton");
    }));
    EXPECT_EQ(rec.BitmapFormat, kinds[position].first);
    EXPECT_EQ(fileName, Place(std::string("plan") + kinds[position].second));
  }
}

TEST_F(SaveBitmapDlgExtTest, Metafiles_Should_BeOfferedWithoutOptions) {
  Flags flags;
  flags.withMetafiles = true;
  EXPECT_TRUE(Save(
      [](QWidget& window) {
        ASSERT_EQ(Filter(window).count(), 6);
        EXPECT_TRUE(Button(window, "ButtonOptions").isEnabled());
        for (const int position : {4, 5}) {
          Filter(window).setCurrentIndex(position);
          EXPECT_FALSE(Button(window, "ButtonOptions").isEnabled());
          EXPECT_TRUE(Button(window, "ButtonOptions").isVisible());
        }
        Click(window, "OKButton");
      },
      flags));
  EXPECT_EQ(rec.BitmapFormat, 4);
  EXPECT_EQ(fileName, Place("plan.emf"));
}

TEST_F(SaveBitmapDlgExtTest, AMetafile_Should_BeginWithoutOptions) {
  Flags flags;
  flags.withMetafiles = true;
  fileName = "plan.wmf";
  EXPECT_TRUE(Save(
      [](QWidget& window) {
        EXPECT_EQ(Filter(window).currentIndex(), 4);
        EXPECT_FALSE(Button(window, "ButtonOptions").isEnabled());
        Click(window, "OKButton");
      },
      flags));
  EXPECT_EQ(rec.BitmapFormat, 2);
  EXPECT_EQ(fileName, Place("plan.wmf"));
}

TEST_F(SaveBitmapDlgExtTest, AMetafile_Should_BecomeTheFirstKind_When_ThereAreNone) {
  for (const char* name : {"plan.emf", "plan"}) {
    fileName = name;
    rec.BitmapFormat = 4;
    EXPECT_TRUE(Save([](QWidget& window) { Click(window, "OKButton"); }));
    EXPECT_EQ(rec.BitmapFormat, 1);
    EXPECT_EQ(fileName, Place("plan.bmp"));
  }
}

TEST_F(SaveBitmapDlgExtTest, AModeAboveTwo_Should_ComeBackAsTwo) {
  rec.JpgCompress = 9;
  EXPECT_TRUE(Save([](QWidget& window) { Click(window, "OKButton"); }));
  EXPECT_EQ(rec.JpgCompress, 2);
}

TEST_F(SaveBitmapDlgExtTest, Cancel_Should_ChangeNothing) {
  rec.JpgCompress = 9;
  const TrecSaveBitmap before = rec;
  const Action ends[] = {[](QWidget& window) { Click(window, "CancelButton"); },
                         [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); },
                         [](QWidget& window) { window.close(); }};
  for (const Action& end : ends) {
    const Action change = [&](QWidget& window) {
      TypeName(window, "other");
      Filter(window).setCurrentIndex(1);
      InOptions(window, [](QWidget& options) {
        options.findChild<QSlider*>("TrackBarComp")->setValue(20);
        Post(options);
      });
      end(window);
    };
    EXPECT_FALSE(Save(change));
    EXPECT_FALSE(SavePixels(change));
    EXPECT_EQ(rec, before);
    EXPECT_EQ(fileName, "plan.png");
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 300);
  }
}

// The options.

TEST_F(SaveBitmapDlgExtTest, Options_Should_ShowTheSettingsOfTheChosenType) {
  EXPECT_TRUE(Save([](QWidget& window) {
    InOptions(window, [](QWidget& options) {
      EXPECT_FALSE(IsVisible(options, "GBGraphType"));
      EXPECT_TRUE(IsVisible(options, "GBDpi"));
      EXPECT_TRUE(IsVisible(options, "GBBitmap"));
      EXPECT_FALSE(IsVisible(options, "GBJpeg"));
      EXPECT_TRUE(IsVisible(options, "GBPixels"));
      EXPECT_TRUE(IsVisible(options, "GBMm"));
      EXPECT_FALSE(options.findChild<TNavigator*>("NaviResult")->isHelpVisible());
      options.findChild<QComboBox*>("CoBoColors")->setCurrentIndex(0);
      Post(options);
    });
    Filter(window).setCurrentIndex(1);
    InOptions(window, [](QWidget& options) {
      EXPECT_FALSE(IsVisible(options, "GBBitmap"));
      EXPECT_TRUE(IsVisible(options, "GBJpeg"));
      options.findChild<QSlider*>("TrackBarComp")->setValue(20);
      Post(options);
    });
    Click(window, "OKButton");
  }));
  EXPECT_EQ(rec, (TrecSaveBitmap{6, 1, 300, 1, 20}));
  EXPECT_EQ(fileName, Place("plan.jpg"));
}

TEST_F(SaveBitmapDlgExtTest, Options_Should_HideWhatTheCallerHides) {
  Flags flags;
  flags.showResolution = flags.showPixelSize = false;
  flags.sizeA = 0;
  EXPECT_TRUE(Save(
      [](QWidget& window) {
        InOptions(window, [](QWidget& options) {
          EXPECT_FALSE(IsVisible(options, "GBDpi"));
          EXPECT_FALSE(IsVisible(options, "GBPixels"));
          EXPECT_FALSE(IsVisible(options, "GBMm"));
          Post(options);
        });
        Click(window, "OKButton");
      },
      flags));
  EXPECT_EQ(rec, (TrecSaveBitmap{8, 24, 300, 1, 90}));
}

TEST_F(SaveBitmapDlgExtTest, Options_Should_GetEachFlagAndSizeOfTheCaller) {
  for (const bool hidesResolution : {true, false}) {
    Flags flags;
    (hidesResolution ? flags.showResolution : flags.showPixelSize) = false;
    Save(
        [&](QWidget& window) {
          InOptions(window, [&](QWidget& options) {
            EXPECT_EQ(IsVisible(options, "GBDpi"), !hidesResolution);
            EXPECT_EQ(IsVisible(options, "GBPixels"), hidesResolution);
            EXPECT_EQ(options.findChild<QLabel*>("PanWmm")->text(), "210");
            EXPECT_EQ(options.findChild<QLabel*>("PanHmm")->text(), "297");
            Post(options);
          });
        },
        flags);
  }
}

TEST_F(SaveBitmapDlgExtTest, CanceledOptions_Should_LeaveTheRecord) {
  rec.JpgQuality = 5;
  EXPECT_TRUE(Save([](QWidget& window) {
    InOptions(window, [](QWidget& options) {
      options.findChild<QComboBox*>("CoBoColors")->setCurrentIndex(0);
      QTest::keyClick(&options, Qt::Key_Escape);
    });
    EXPECT_TRUE(window.isVisible());
    Click(window, "OKButton");
  }));
  EXPECT_EQ(rec, (TrecSaveBitmap{8, 24, 300, 1, 5}));
}

TEST_F(SaveBitmapDlgExtTest, Options_Should_BeginWithWhatWasSetBefore) {
  EXPECT_TRUE(Save([](QWidget& window) {
    InOptions(window, [](QWidget& options) {
      options.findChild<QComboBox*>("CoBoColors")->setCurrentIndex(1);
      Post(options);
    });
    InOptions(window, [](QWidget& options) {
      EXPECT_EQ(options.findChild<QComboBox*>("CoBoColors")->currentIndex(), 1);
      Post(options);
    });
    Click(window, "OKButton");
  }));
  EXPECT_EQ(rec.BitsPerPix, 4);
}

TEST_F(SaveBitmapDlgExtTest, TheSizeInPixels_Should_ComeBack) {
  EXPECT_TRUE(SavePixels([](QWidget& window) {
    EXPECT_EQ(Filter(window).count(), 4);
    InOptions(window, [](QWidget& options) {
      EXPECT_FALSE(IsVisible(options, "GBDpi"));
      EXPECT_FALSE(IsVisible(options, "GBMm"));
      auto* edit = options.findChild<QLineEdit*>("FlEdWidth");
      EXPECT_EQ(edit->text(), "400");
      edit->selectAll();
      QTest::keyClicks(edit, "200");
      Post(options);
    });
    InOptions(window, [](QWidget& options) {
      EXPECT_EQ(options.findChild<QLineEdit*>("FlEdWidth")->text(), "200");
      EXPECT_EQ(options.findChild<QLineEdit*>("FlEdHeight")->text(), "150");
      QTest::keyClick(&options, Qt::Key_Escape);
    });
    Click(window, "OKButton");
  }));
  EXPECT_EQ(width, 200);
  EXPECT_EQ(height, 150);
  EXPECT_EQ(rec, (TrecSaveBitmap{8, 24, 300, 1, 90}));
  EXPECT_EQ(fileName, Place("plan.png"));
}

TEST_F(SaveBitmapDlgExtTest, TheFilter_Should_DecideTheType_When_TheOptionsNameAnother) {
  EXPECT_TRUE(SavePixels([](QWidget& window) {
    InOptions(window, [](QWidget& options) {
      EXPECT_EQ(options.findChild<QComboBox*>("CoBoGraphType")->currentIndex(), 2);
      options.findChild<QComboBox*>("CoBoGraphType")->setCurrentIndex(1);
      Post(options);
    });
    Click(window, "OKButton");
  }));
  EXPECT_EQ(rec.BitmapFormat, 8);
  EXPECT_EQ(fileName, Place("plan.png"));
}

// Existing files, and invalid names.

TEST_F(SaveBitmapDlgExtTest, AnExistingFile_Should_BeAskedAbout) {
  folder.Write("plan.png", "x");
  saysYes = false;
  const auto save = [&](QWidget& window) {
    Click(window, "OKButton");
    EXPECT_EQ(window.isVisible(), !saysYes);
  };
  EXPECT_FALSE(Save(save));
  EXPECT_FALSE(SavePixels(save));
  ASSERT_EQ(questions.size(), 2u);
  EXPECT_THAT(questions[0], testing::HasSubstr("\"" + Place("plan.png") + "\""));
  saysYes = true;
  EXPECT_TRUE(Save(save));
  fileName = "plan.png";
  EXPECT_TRUE(SavePixels(save));
  EXPECT_EQ(questions.size(), 4u);
}

TEST_F(SaveBitmapDlgExtTest, AnExistingFile_Should_BeTaken_When_NobodyIsToBeAsked) {
  folder.Write("plan.png", "x");
  Flags flags;
  flags.confirmOverwrite = false;
  EXPECT_TRUE(Save([](QWidget& window) { Click(window, "OKButton"); }, flags));
  EXPECT_TRUE(questions.empty());
}

TEST_F(SaveBitmapDlgExtTest, AWindowWithoutAName_Should_TakeWhateverIsTyped) {
  folder.Write("plan.png", "x");
  const auto save = [](QWidget& window) {
    TypeName(window, "plan");
    Click(window, "OKButton");
  };
  fileName.clear();
  EXPECT_TRUE(Save(save));
  EXPECT_EQ(fileName, Place("plan.png"));
  fileName.clear();
  EXPECT_TRUE(SavePixels(save));
  EXPECT_EQ(fileName, Place("plan.png"));
  EXPECT_TRUE(questions.empty()) << "no question is asked";
}

TEST_F(SaveBitmapDlgExtTest, AWindowWithoutAName_Should_TakeNothingToo) {
  fileName.clear();
  EXPECT_TRUE(Save([](QWidget& window) { Click(window, "OKButton"); }));
  EXPECT_EQ(fileName, Place(".png"));
}

TEST_F(SaveBitmapDlgExtTest, AnEmptyName_Should_KeepTheWindow_When_ItBeganWithOne) {
  const auto save = [](QWidget& window) {
    window.findChild<QLineEdit*>("EditFilename")->clear();
    Click(window, "OKButton");
    EXPECT_TRUE(window.isVisible());
  };
  EXPECT_FALSE(Save(save));
  EXPECT_FALSE(SavePixels(save));
  EXPECT_EQ(fileName, "plan.png");
}

TEST_F(SaveBitmapDlgExtTest, AFolderThatIsMissing_Should_BeTold) {
  WhenModal([](QWidget& window) {
    Click(window, "OKButton");
    EXPECT_TRUE(window.isVisible());
  });
  EXPECT_FALSE(SaveBitmapDlgExt(Place("none"), rec, width, height, fileName));
  EXPECT_EQ(messages.size(), 1u);
}

}  // namespace
}  // namespace rasterkit
