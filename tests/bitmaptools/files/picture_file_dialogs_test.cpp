#include <functional>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

/// Stands in for the user: looks at the dialog and confirms or cancels it.
class PictureFileDialogsTest : public testing::Test {
 protected:
  void TearDown() override { HostPorts() = Ports(); }

  void UserChooses(const std::string& fileName, int filterIndex = 1) {
    HostPorts().pictureFileDialog = [=, this](PictureFileDialog& dialog) {
      shown_ = dialog;
      dialog.FileName = fileName;
      dialog.FilterIndex = filterIndex;
      return true;
    };
  }

  void UserCancels() {
    HostPorts().pictureFileDialog = [this](PictureFileDialog& dialog) {
      shown_ = dialog;
      dialog.FileName = "typed but canceled";
      return false;
    };
  }

  PictureFileDialog shown_;
  std::string fileName_ = "old.bmp";
};

using BitmapOpenDialogTest = PictureFileDialogsTest;
using BitmapSaveDialogTest = PictureFileDialogsTest;

TEST_F(BitmapOpenDialogTest, ShowsWhatItWasGiven) {
  UserChooses("new.png");
  EXPECT_TRUE(BitmapOpenDialog("C:\\maps\\", ".jpg", bfAll, fileName_, false));
  EXPECT_EQ(shown_.kind, PictureFileDialog::Kind::open);
  EXPECT_EQ(shown_.InitialDir, "C:\\maps\\");
  EXPECT_EQ(shown_.FileName, "old.bmp");
  EXPECT_FALSE(shown_.ofOverwritePrompt);
  EXPECT_EQ(fileName_, "new.png");
}

TEST_F(BitmapOpenDialogTest, AllFiles_HaveMetafiles) {
  UserChooses("new.png");
  BitmapOpenDialog("", ".emf", bfAll, fileName_, false);
  EXPECT_EQ(shown_.Filter, GetOpenFilter(true));
  EXPECT_EQ(shown_.FilterIndex, 8);
}

TEST_F(BitmapOpenDialogTest, Bitmaps_HaveNoMetafilesButTheSameLookup) {
  UserChooses("new.png");
  BitmapOpenDialog("", ".emf", bfLoadBmp, fileName_, false);
  EXPECT_EQ(shown_.Filter, GetOpenFilter(false));
  EXPECT_EQ(shown_.FilterIndex, 8);
  BitmapOpenDialog("", "", bfLoadBmp, fileName_, false);
  EXPECT_EQ(shown_.FilterIndex, 1);
}

TEST_F(BitmapOpenDialogTest, GeoFilter_PreselectsOneEntryTooFar) {
  UserChooses("new.png");
  BitmapOpenDialog("", ".bmp", bfGeo, fileName_, false);
  EXPECT_EQ(shown_.Filter, GetGeoOpenFilter());
  EXPECT_EQ(shown_.FilterIndex, 3);
  BitmapOpenDialog("", "pdf", bfGeo, fileName_, false);
  EXPECT_EQ(shown_.FilterIndex, 7);
}

TEST_F(BitmapOpenDialogTest, AnyOtherFilterValue_SetsNeitherFilterNorIndex) {
  UserChooses("new.png");
  for (const int value : {3, -1, 1000}) {
    EXPECT_TRUE(BitmapOpenDialog("", ".jpg", static_cast<TBitmapFilter>(value), fileName_, false));
    EXPECT_EQ(shown_.Filter, "");
    EXPECT_EQ(shown_.FilterIndex, 1);
  }
}

TEST_F(BitmapOpenDialogTest, Cancel_LeavesTheNameUnchanged) {
  UserCancels();
  EXPECT_FALSE(BitmapOpenDialog("", "", bfAll, fileName_, false));
  EXPECT_EQ(fileName_, "old.bmp");
}

TEST_F(BitmapOpenDialogTest, WithoutAPort_IsCanceled) {
  EXPECT_FALSE(BitmapOpenDialog("", "", bfAll, fileName_, false));
  EXPECT_EQ(fileName_, "old.bmp");
}

TEST_F(BitmapOpenDialogTest, KeptPdf_IsAnsweredAsItIs) {
  HostPorts().pdfPageChooser = [](const std::string&, std::string&) -> int {
    ADD_FAILURE() << "the page chooser was called";
    return 1;
  };
  UserChooses("C:\\plans\\p.pdf");
  EXPECT_TRUE(BitmapOpenDialog("D:\\", "", bfAll, fileName_, true));
  EXPECT_EQ(fileName_, "C:\\plans\\p.pdf");
}

TEST_F(BitmapOpenDialogTest, Pdf_BecomesAPictureInTheInitialFolder) {
  std::string pdf;
  std::string suggested;
  HostPorts().pdfPageChooser = [&](const std::string& pdfFile, std::string& pictureFile) {
    pdf = pdfFile;
    suggested = pictureFile;
    return 1;
  };
  UserChooses("C:\\plans\\p.v2.PDF");
  EXPECT_TRUE(BitmapOpenDialog("D:\\maps\\", "", bfAll, fileName_, false));
  EXPECT_EQ(pdf, "C:\\plans\\p.v2.PDF");
  EXPECT_EQ(suggested, "D:\\maps\\p.v2.png");
  EXPECT_EQ(fileName_, "D:\\maps\\p.v2.png");
}

TEST_F(BitmapOpenDialogTest, Pdf_TheFolderGetsNoSeparator) {
  HostPorts().pdfPageChooser = [](const std::string&, std::string&) { return 1; };
  UserChooses("plans/p.pdf");
  EXPECT_TRUE(BitmapOpenDialog("maps", "", bfGeo, fileName_, false));
  EXPECT_EQ(fileName_, "mapsp.png");
}

TEST_F(BitmapOpenDialogTest, Pdf_TheChooserMayChangeTheName) {
  HostPorts().pdfPageChooser = [](const std::string&, std::string& pictureFile) {
    pictureFile = "page7.bmp";
    return 2;
  };
  UserChooses("p.pdf");
  EXPECT_TRUE(BitmapOpenDialog("", "", bfAll, fileName_, false));
  EXPECT_EQ(fileName_, "page7.bmp");
}

TEST_F(BitmapOpenDialogTest, Pdf_NoPageIsNoFile) {
  UserChooses("p.pdf");
  for (const int answer : {0, -1}) {
    HostPorts().pdfPageChooser = [=](const std::string&, std::string&) { return answer; };
    EXPECT_FALSE(BitmapOpenDialog("D:\\", "", bfAll, fileName_, false));
    EXPECT_EQ(fileName_, "D:\\p.png") << "the name is made before the page is chosen";
  }
}

TEST_F(BitmapOpenDialogTest, Pdf_WithoutAChooserIsNoFile) {
  UserChooses("p.pdf");
  EXPECT_FALSE(BitmapOpenDialog("", "", bfAll, fileName_, false));
}

TEST_F(BitmapSaveDialogTest, ShowsWhatItWasGiven) {
  UserChooses("new.png");
  EXPECT_TRUE(BitmapSaveDialog("C:\\maps\\", ".jpg", true, fileName_, true));
  EXPECT_EQ(shown_.kind, PictureFileDialog::Kind::save);
  EXPECT_EQ(shown_.InitialDir, "C:\\maps\\");
  EXPECT_EQ(shown_.FileName, "old.bmp");
  EXPECT_EQ(shown_.Filter, GetSaveFilter(true));
  EXPECT_EQ(shown_.FilterIndex, 2);
  BitmapSaveDialog("", "", false, fileName_, true);
  EXPECT_EQ(shown_.Filter, GetSaveFilter(false));
  EXPECT_EQ(shown_.FilterIndex, 1);
}

TEST_F(BitmapSaveDialogTest, AlwaysAsksBeforeOverwriting) {
  UserChooses("new.png");
  for (const bool changeDir : {false, true}) {
    BitmapSaveDialog("", "", false, fileName_, changeDir);
    EXPECT_TRUE(shown_.ofOverwritePrompt);
  }
}

TEST_F(BitmapSaveDialogTest, WithoutChangeDir_TheProcessStaysInItsFolder) {
  UserChooses("new.png");
  BitmapSaveDialog("", "", false, fileName_, false);
  EXPECT_TRUE(shown_.ofNoChangeDir);
  BitmapSaveDialog("", "", false, fileName_, true);
  EXPECT_FALSE(shown_.ofNoChangeDir);
}

TEST_F(BitmapSaveDialogTest, TheFinalFilterIndexGivesTheExtension) {
  const char* expected[] = {".png", ".bmp", ".jpg", ".png", ".tif", ".wmf", ".emf", ".png"};
  for (int index = 0; index < 8; ++index) {
    UserChooses("dir.d/name", index);
    EXPECT_TRUE(BitmapSaveDialog("", "", true, fileName_, false));
    EXPECT_EQ(fileName_, std::string("dir.d/name") + expected[index]) << index;
  }
  UserChooses("name", -5);
  EXPECT_TRUE(BitmapSaveDialog("", "", true, fileName_, false));
  EXPECT_EQ(fileName_, "name.png");
}

TEST_F(BitmapSaveDialogTest, ATypedExtensionIsOverwritten) {
  UserChooses("name.jpg", 1);
  EXPECT_TRUE(BitmapSaveDialog("", "", true, fileName_, false));
  EXPECT_EQ(fileName_, "name.bmp");
}

TEST_F(BitmapSaveDialogTest, Cancel_LeavesTheNameUnchanged) {
  UserCancels();
  EXPECT_FALSE(BitmapSaveDialog("", "", true, fileName_, false));
  EXPECT_EQ(fileName_, "old.bmp");
}

}  // namespace
}  // namespace rasterkit
