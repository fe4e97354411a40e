#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QSlider>
#include <QTest>
#include <map>
#include <memory>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgbitmap/form_graphics_paras.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

struct NamedGroup {
  ParasGroup group;
  const char* name;
};
constexpr NamedGroup kGroups[] = {
    {ParasGroup::type, "GBGraphType"},   {ParasGroup::resolution, "GBDpi"},
    {ParasGroup::bitmap, "GBBitmap"},    {ParasGroup::jpeg, "GBJpeg"},
    {ParasGroup::pixelSize, "GBPixels"}, {ParasGroup::millimeters, "GBMm"}};

class FormGraphicsParasTest : public testing::Test {
 protected:
  FormGraphicsParasTest() {
    HostPorts().readSetting = [this](const std::string&,
                                     const std::string& key) -> std::optional<std::string> {
      const auto found = settings.find(key);
      if (found == settings.end()) return std::nullopt;
      return found->second;
    };
    HostPorts().writeSetting = [this](const std::string&, const std::string& key,
                                      const std::string& value) { settings[key] = value; };
    HostPorts().helpTopic = [this](int topic) { topics.push_back(topic); };
  }
  ~FormGraphicsParasTest() override { HostPorts() = Ports(); }

  void Show() {
    form.show();
    form.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  }
  void Open(const TrecSaveBitmap& rec, float width = 210, float height = 297) {
    form.Model().SetSizeMM(width, height);
    form.Model().SetSaveOptions(rec);
    Show();
  }
  void OpenPixels(const TrecSaveBitmap& rec, int width, int height) {
    form.Model().HideGroup(ParasGroup::resolution);
    form.Model().HideGroup(ParasGroup::millimeters);
    form.Model().SetBmpSize(width, height);
    form.Model().SetSaveOptions(rec);
    Show();
  }

  template <class Widget = QWidget>
  Widget& Find(const char* name) const {
    return *form.findChild<Widget*>(name);
  }
  std::string Text(const char* name) const {
    return Find<QLabel>(name).text().remove('&').toStdString();
  }
  std::string Title(const char* name) const {
    return Find<QGroupBox>(name).title().remove('&').toStdString();
  }
  /// A group with the gap below it.
  QWidget& PanelOf(const char* groupName) const { return *Find(groupName).parentWidget(); }
  void Type(const char* name, const char* text) const {
    Find(name).setFocus();
    QTest::keyClick(&Find(name), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&Find(name), text);
  }
  QStringList Entries(const char* name) const {
    QStringList entries;
    const auto& box = Find<QComboBox>(name);
    for (int i = 0; i < box.count(); ++i) entries += box.itemText(i);
    return entries;
  }

  std::map<std::string, std::string> settings;
  std::vector<int> topics;
  TFormGraphicsParas form;
};

TEST_F(FormGraphicsParasTest, Controls_Should_HaveTheirNamesAndTexts) {
  EXPECT_EQ(form.windowTitle(), "Graphics settings");
  EXPECT_EQ(Title("GBGraphType"), "Graphics type");
  EXPECT_EQ(Title("GBDpi"), "Resolution / size");
  EXPECT_EQ(Title("GBBitmap"), "Settings");
  EXPECT_EQ(Title("GBJpeg"), "Settings");
  EXPECT_EQ(Title("GBPixels"), "Bitmap size [pixels]");
  EXPECT_EQ(Title("GBMm"), "Size in mm");
  EXPECT_EQ(Text("LabDpi"), "Resolution [dpi]");
  EXPECT_EQ(Text("LabQuality"), "Compression quality");
  EXPECT_EQ(Text("LabNoComp"), "No compression");
  EXPECT_EQ(Text("LabMaxQuality"), "Maximum quality");
  EXPECT_EQ(Text("LabMaxComp"), "Maximum compression");
  EXPECT_EQ(Text("LabMinQuality"), "Minimum quality");
  EXPECT_EQ(Text("LabBmpPixels"), "Width x Height");
  EXPECT_EQ(Text("LabBmpSize"), "Size of Windows bitmap");
  EXPECT_EQ(Entries("CoBoGraphType"),
            QStringList({"Windows bitmap", "JPeg", "PNG Format", "TIFF"}));
  EXPECT_EQ(Entries("CoBoColors"), QStringList({"Black and white (1 bit)", "16 colors (4 bit)",
                                                "256 colors (8 bit)", "True color (24 bit)"}));
}

TEST_F(FormGraphicsParasTest, Fields_Should_HaveTheirRanges) {
  EXPECT_EQ(Find<TSpinEditReal>("SpEdDpi").singleStep(), 10);
  EXPECT_EQ(Find<QSlider>("TrackBarComp").minimum(), 10);
  EXPECT_EQ(Find<QSlider>("TrackBarComp").maximum(), 100);
  EXPECT_EQ(Find<QSlider>("TrackBarComp").tickInterval(), 10);
  EXPECT_NE(Find<QSlider>("TrackBarComp").tickPosition(), QSlider::NoTicks);
  for (const char* name : {"FlEdWidth", "FlEdHeight"}) {
    EXPECT_EQ(Find<TFloatEdit>(name).decimals(), 0);
    EXPECT_FALSE(Find<TFloatEdit>(name).isNegativeAllowed());
  }
  for (const char* name : {"PanBmpW", "PanBmpH", "PanBmpSize", "PanWmm", "PanHmm"})
    EXPECT_EQ(Find<QLabel>(name).focusPolicy(), Qt::NoFocus) << name;
}

TEST_F(FormGraphicsParasTest, ARecord_Should_StandInTheControls) {
  Open({10, 8, 300, 0, 55});
  EXPECT_EQ(Find<QComboBox>("CoBoGraphType").currentText(), "TIFF");
  EXPECT_EQ(Find<QComboBox>("CoBoColors").currentText(), "256 colors (8 bit)");
  EXPECT_EQ(Find<TSpinEditReal>("SpEdDpi").value(), 300);
  EXPECT_EQ(Find<QSlider>("TrackBarComp").value(), 55);
  EXPECT_EQ(Text("LabComp"), "55");
  EXPECT_EQ(Text("PanWmm"), "210");
  EXPECT_EQ(Text("PanHmm"), "297");
  EXPECT_EQ(Text("PanBmpW"), "2480");
  EXPECT_EQ(Text("PanBmpH"), "3508");
  EXPECT_EQ(Text("LabBmpSize"), "Size of Windows bitmap [MB]");
  EXPECT_EQ(Text("PanBmpSize"), "8.70");
  EXPECT_TRUE(Find("PanBmpW").isVisible());
  EXPECT_TRUE(Find("PanBmpH").isVisible());
  EXPECT_FALSE(Find("FlEdWidth").isVisible());
  EXPECT_FALSE(Find("FlEdHeight").isVisible());
}

// Groups and heights.

TEST_F(FormGraphicsParasTest, EachHiddenGroup_Should_ShortenTheWindowByItsHeight) {
  Open({0, 24, 96, 0, 90});
  for (const NamedGroup& hidden : kGroups) {
    TFormGraphicsParas other;
    other.Model().SetSizeMM(210, 297);
    other.Model().HideGroup(hidden.group);
    other.Model().SetSaveOptions({0, 24, 96, 0, 90});
    other.show();
    QApplication::processEvents();
    EXPECT_FALSE(other.findChild<QWidget*>(hidden.name)->isVisible());
    EXPECT_EQ(other.height(), form.height() - PanelOf(hidden.name).height()) << hidden.name;
    for (const NamedGroup& group : kGroups) {
      if (group.group == hidden.group) continue;
      EXPECT_EQ(other.findChild<QWidget*>(group.name)->parentWidget()->height(),
                PanelOf(group.name).height())
          << group.name << " without " << hidden.name;
    }
  }
}

TEST_F(FormGraphicsParasTest, TheWindow_Should_BeAsHighAsItsGroupsWant) {
  Open({1, 24, 96, 0, 90});
  EXPECT_EQ(form.height(), form.sizeHint().height());
  for (const int position : {1, 0, 2, 1, 3, 1}) {
    Find<QComboBox>("CoBoGraphType").setCurrentIndex(position);
    QApplication::processEvents();
    EXPECT_EQ(form.height(), form.sizeHint().height()) << position;
    EXPECT_EQ(Find("GBJpeg").isVisible(), position == 1);
    EXPECT_EQ(Find("GBBitmap").isVisible(), position != 1);
  }
}

TEST_F(FormGraphicsParasTest, JpegSettings_Should_ReplaceThoseOfBitmaps_When_TheUserChoosesThem) {
  Open({1, 24, 96, 0, 90});
  EXPECT_EQ(Title("GBBitmap"), "BMP Settings");
  const int before = form.height();
  const int bitmapHeight = PanelOf("GBBitmap").height();
  Find("CoBoGraphType").setFocus();
  QTest::keyClick(&Find("CoBoGraphType"), Qt::Key_Down);
  QApplication::processEvents();
  EXPECT_EQ(Title("GBJpeg"), "JPG Settings");
  EXPECT_EQ(form.height(), before - bitmapHeight + PanelOf("GBJpeg").height());
  QTest::keyClick(&Find("CoBoGraphType"), Qt::Key_Down);
  QApplication::processEvents();
  EXPECT_EQ(Title("GBBitmap"), "PNG Settings");
  EXPECT_EQ(form.height(), before);
  EXPECT_EQ(form.Model().GetSaveOptions().BitmapFormat, 8);
}

TEST_F(FormGraphicsParasTest, AWindowThatTheUserMadeHigher_Should_ChangeByTheDifferenceAlone) {
  Open({1, 24, 96, 0, 90});
  const int before = form.height();
  form.resize(form.width(), before + 77);
  const int bitmapHeight = PanelOf("GBBitmap").height();
  Find<QComboBox>("CoBoGraphType").setCurrentIndex(1);
  QApplication::processEvents();
  EXPECT_EQ(form.height(), before + 77 - bitmapHeight + PanelOf("GBJpeg").height());
  EXPECT_EQ(PanelOf("GBGraphType").height(), PanelOf("GBGraphType").sizeHint().height());
}

TEST_F(FormGraphicsParasTest, TheWindow_Should_BeHundredHighAtLeast) {
  for (const NamedGroup& group : kGroups) form.Model().HideGroup(group.group);
  Show();
  EXPECT_EQ(form.height(), 100);
}

TEST_F(FormGraphicsParasTest, TheHeightOfAnotherCall_Should_NotBeKept) {
  settings = {{"FormGraphicsParas.Left", "40"},
              {"FormGraphicsParas.Top", "50"},
              {"FormGraphicsParas.Width", "500"},
              {"FormGraphicsParas.Height", "700"}};
  form.Model().SetSizeMM(0, 0);
  form.Model().SetSaveOptions({8, 24, 96, 0, 90});
  test::WhenModal([&](QWidget&) {
    EXPECT_EQ(form.height(), form.sizeHint().height());
    EXPECT_EQ(form.width(), 500);
    EXPECT_EQ(form.geometry().x(), 40);
    form.reject();
  });
  form.ShowModal();
}

TEST_F(FormGraphicsParasTest, TheNavigator_Should_BeFiftySixWide_WithoutHelp) {
  const auto& navigator = Find<TNavigator>("NaviResult");
  Open({8, 24, 96, 0, 90});
  EXPECT_TRUE(navigator.Button(nbHelp).isVisible());
  EXPECT_EQ(navigator.width(), 84);
  form.HideHelp();
  QApplication::processEvents();
  EXPECT_FALSE(navigator.Button(nbHelp).isVisible());
  EXPECT_EQ(navigator.width(), 56);
}

// What the user does.

TEST_F(FormGraphicsParasTest, TheResolution_Should_ChangeThePixels) {
  Open({8, 24, 300, 0, 90});
  Type("SpEdDpi", "72");
  EXPECT_EQ(Text("PanBmpW"), "595");
  EXPECT_EQ(Text("PanBmpH"), "842");
  EXPECT_EQ(Text("LabBmpSize"), "Size of Windows bitmap [MB]");
  EXPECT_EQ(Text("PanBmpSize"), "1.50");
  QTest::keyClick(&Find("SpEdDpi"), Qt::Key_Up);
  EXPECT_EQ(Find<TSpinEditReal>("SpEdDpi").value(), 82);
  EXPECT_EQ(Text("PanBmpW"), "678");
  EXPECT_EQ(form.Model().GetSaveOptions().BitsPerInch, 82);
}

TEST_F(FormGraphicsParasTest, TheResolution_Should_TakeRealNumbers_AndBeReturnedRounded) {
  Open({8, 24, 300, 0, 90}, 25.4F, 254);
  for (const auto& [typed, pixels, kept] :
       {std::tuple{"72.4", "724", 72}, {"72.5", "725", 72}, {"73.5", "735", 74}}) {
    Type("SpEdDpi", typed);
    EXPECT_EQ(Text("PanBmpH"), pixels);
    EXPECT_EQ(form.Model().GetSaveOptions().BitsPerInch, kept) << typed;
  }
}

TEST_F(FormGraphicsParasTest, AMaximizedWindow_Should_StaySo) {
  form.setWindowState(Qt::WindowMaximized);
  Open({1, 24, 96, 0, 90});
  const QSize before = form.size();
  Find<QComboBox>("CoBoGraphType").setCurrentIndex(1);
  QApplication::processEvents();
  EXPECT_TRUE(form.isMaximized());
  EXPECT_EQ(form.size(), before);
}

TEST_F(FormGraphicsParasTest, TheColors_Should_ChangeTheSizeInMemory) {
  Open({8, 24, 254, 0, 90}, 10, 10);
  EXPECT_EQ(Text("LabBmpSize"), "Size of Windows bitmap [kB]");
  EXPECT_EQ(Text("PanBmpSize"), "30");
  Find("CoBoColors").setFocus();
  QTest::keyClick(&Find("CoBoColors"), Qt::Key_Home);
  EXPECT_EQ(Text("LabBmpSize"), "Size of Windows bitmap [byte]");
  EXPECT_EQ(Text("PanBmpSize"), "1250");
  EXPECT_EQ(form.Model().GetSaveOptions().BitsPerPix, 1);
}

TEST_F(FormGraphicsParasTest, TheTrackBar_Should_TellItsPosition) {
  Open({6, 24, 254, 0, 5});
  EXPECT_EQ(Text("LabComp"), "90");
  Find("TrackBarComp").setFocus();
  QTest::keyClick(&Find("TrackBarComp"), Qt::Key_Left);
  EXPECT_EQ(Text("LabComp"), "89");
  QTest::keyClick(&Find("TrackBarComp"), Qt::Key_PageDown);
  EXPECT_EQ(Text("LabComp"), "79");
  QTest::keyClick(&Find("TrackBarComp"), Qt::Key_Home);
  EXPECT_EQ(Text("LabComp"), "10");
  QTest::keyClick(&Find("TrackBarComp"), Qt::Key_End);
  EXPECT_EQ(Text("LabComp"), "100");
  EXPECT_EQ(form.Model().GetSaveOptions().JpgQuality, 100);
}

TEST_F(FormGraphicsParasTest, ASizeInPixels_Should_FollowWhatIsTyped) {
  OpenPixels({8, 24, 96, 0, 90}, 400, 300);
  EXPECT_FALSE(Find("PanBmpW").isVisible());
  EXPECT_FALSE(Find("PanBmpH").isVisible());
  EXPECT_FALSE(Find("GBDpi").isVisible());
  EXPECT_FALSE(Find("GBMm").isVisible());
  EXPECT_EQ(Find<TFloatEdit>("FlEdWidth").text(), "400");
  EXPECT_EQ(Find<TFloatEdit>("FlEdHeight").text(), "300");
  EXPECT_EQ(Text("PanBmpSize"), "360");
  Type("FlEdWidth", "200");
  EXPECT_EQ(Find<TFloatEdit>("FlEdHeight").text(), "150");
  EXPECT_EQ(Text("PanBmpSize"), "90");
  Type("FlEdHeight", "30");
  EXPECT_EQ(Find<TFloatEdit>("FlEdWidth").text(), "40");
  EXPECT_EQ(Text("LabBmpSize"), "Size of Windows bitmap [byte]");
  EXPECT_EQ(Text("PanBmpSize"), "3600");
}

TEST_F(FormGraphicsParasTest, TheEdits_Should_ShowWhatIsReturned) {
  OpenPixels({8, 24, 96, 0, 90}, 1000, 3);
  for (const char* width : {"500", "833", "834", "167", "166", "999"}) {
    Type("FlEdWidth", width);
    EXPECT_EQ(Find<TFloatEdit>("FlEdWidth").text(), width);
    EXPECT_EQ(Find<TFloatEdit>("FlEdHeight").text().toInt(), form.Model().RoundedHeight()) << width;
  }
}

TEST_F(FormGraphicsParasTest, Nonsense_Should_NotBeTyped) {
  OpenPixels({8, 24, 96, 0, 90}, 400, 300);
  Type("FlEdWidth", "-1a2b.,e9");
  EXPECT_EQ(Find<TFloatEdit>("FlEdWidth").text(), "129");
  Type("FlEdWidth", "99999999999999999999");
  EXPECT_LE(form.Model().RoundedWidth(), INT32_MAX);
}

TEST_F(FormGraphicsParasTest, Help_Should_ShowTheTopicOfTheWindow) {
  Open({8, 24, 96, 0, 90});
  QTest::mouseClick(&Find<TNavigator>("NaviResult").Button(nbHelp), Qt::LeftButton);
  QTest::keyClick(&form, Qt::Key_F1);
  EXPECT_EQ(topics, (std::vector<int>{530200, 530200}));
  EXPECT_TRUE(form.isVisible());
}

TEST_F(FormGraphicsParasTest, AHelpThatFails_Should_BeToldAndLeaveTheWindow) {
  std::string message;
  HostPorts().messageBox = [&](const std::string& text) { message = text; };
  HostPorts().helpTopic = [](int) { throw std::runtime_error("no help today"); };
  Open({8, 24, 96, 0, 90});
  QTest::mouseClick(&Find<TNavigator>("NaviResult").Button(nbHelp), Qt::LeftButton);
  EXPECT_EQ(message, "no help today");
  EXPECT_TRUE(form.isVisible());
}

TEST_F(FormGraphicsParasTest, Enter_Should_Post_FromEveryControl) {
  for (const char* name : {"CoBoGraphType", "SpEdDpi", "CoBoColors", "TrackBarComp"}) {
    TFormGraphicsParas other;
    // Both settings are there.
    other.Model().SetSizeMM(10, 10);
    other.Model().SetSaveOptions({0, 24, 96, 0, 90});
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    auto* control = other.findChild<QWidget*>(name);
    control->setFocus();
    QTest::keyClick(control, Qt::Key_Return);
    EXPECT_EQ(other.result(), QDialog::Accepted) << name;
    EXPECT_FALSE(other.isVisible()) << name;
  }
  OpenPixels({8, 24, 96, 0, 90}, 4, 3);
  Type("FlEdHeight", "6");
  QTest::keyClick(&Find("FlEdHeight"), Qt::Key_Enter);
  EXPECT_EQ(form.result(), QDialog::Accepted);
  EXPECT_EQ(form.Model().RoundedWidth(), 8);
}

}  // namespace
}  // namespace rasterkit
