#pragma once

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>
#include <QToolButton>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/ports.h>

#include "tests/dialogs/editpdfbitmap/fake_pdf.h"
#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {

/// The editor's window in a host with test settings, file dialogs and PDF files.
class EditorTest : public testing::Test {
 protected:
  EditorTest() {
    Ports& ports = HostPorts();
    ports.readSetting = [this](const std::string&,
                               const std::string& key) -> std::optional<std::string> {
      const auto found = settings.find(key);
      if (found == settings.end()) return std::nullopt;
      return found->second;
    };
    ports.writeSetting = [this](const std::string& section, const std::string& key,
                                const std::string& value) {
      sections[key] = section;
      settings[key] = value;
    };
    ports.messageBox = [this](const std::string& text) { messages.push_back(text); };
    ports.helpTopic = [this](int topic) { topics.push_back(topic); };
    pdf.pages.assign(3, kPage);
    pdf.onLoad = [](const std::string& fileName) {
      if (fileName.find("damaged") != std::string::npos)
        throw FormatError("the file is damaged", fileName);
    };
    host = std::make_unique<QtHost>();
  }
  ~EditorTest() override {
    form.reset();
    host.reset();
    HostPorts() = Ports();
  }

  /// The next file dialog is answered with this name; "" cancels it.
  void AnswerFileDialog(std::string name, int filterIndex = 0) {
    answers.emplace_back(std::move(name), filterIndex);
    HostPorts().pictureFileDialog = [this](PictureFileDialog& dialog) {
      asked.push_back(dialog);
      if (answers.empty()) return false;
      const auto [fileName, index] = answers.front();
      answers.pop_front();
      dialog.FileName = fileName;
      if (index != 0) dialog.FilterIndex = index;
      return !fileName.empty();
    };
  }

  void Show() {
    form->show();
    form->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
  }
  /// A graphic whose target does not exist, unless `target` is an existing file.
  void OpenGraphic(const TBitmap& bitmap, const std::string& target = "") {
    form = std::make_unique<TFormEditPdfBmp>();
    Model().SetOrgCaption("Edit bitmap");
    Model().SetBmpFilename(target.empty() ? folder / "new.bmp" : target);
    Model().SetOrgGraphic(bitmap.Clone());
    Show();
  }
  void OpenPdf() {
    form = std::make_unique<TFormEditPdfBmp>();
    Model().SetOrgFilename(folder / "plan.pdf");
    Model().SetBmpFilename(folder / "plan.png");
    Show();
  }

  EditPdfBmpModel& Model() { return form->Model(); }
  const TBitmap& Picture() { return *Model().WorkBitmap(); }
  template <class Widget = QWidget>
  Widget& Find(const char* name) {
    return *form->findChild<Widget*>(name);
  }
  TPaintBox& Box() { return Find<TPaintBox>("PaintBoxPdf"); }
  QToolButton& Button(const char* name) { return Find<QToolButton>(name); }
  void Click(const char* name, Qt::KeyboardModifiers held = {}) {
    QTest::mouseClick(&Button(name), Qt::LeftButton, held);
  }
  QPushButton& Navigator(TNavigateButton button) {
    return Find<TNavigator>("NaviResult").Button(button);
  }
  /// Replaces the text of a box by typing.
  void Type(const char* boxName, const char* text) {
    auto& box = Find<QComboBox>(boxName);
    box.setFocus();
    box.lineEdit()->selectAll();
    QTest::keyClicks(&box, text);
  }
  void Key(const char* boxName, Qt::Key key) { QTest::keyClick(&Find(boxName), key); }
  /// Draws a crop rectangle with the mouse, in pixels of the picture.
  void DrawCut(int left, int top, int right, int bottom) {
    const QPoint from = PlaceOf(left, top), to = PlaceOf(right, bottom);
    QTest::mousePress(&Box(), Qt::LeftButton, Qt::NoModifier, from);
    QMouseEvent move(QEvent::MouseMove, to, Box().mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&Box(), &move);
    QTest::mouseRelease(&Box(), Qt::LeftButton, Qt::NoModifier, to);
  }
  QPoint PlaceOf(int x, int y) {
    const RDRect& place = form->Tool().PaintRect();
    const double factor = form->Tool().StretchFactor();
    return QPoint(qRound(place.Left + x * factor), qRound(place.Top + y * factor));
  }

  /// Points; 2 by 3 inches.
  static constexpr PdfPageSize kPage{144, 216};

  TempFolder folder;
  std::map<std::string, std::string> settings, sections;
  std::vector<std::string> messages;
  std::vector<int> topics;
  std::deque<std::pair<std::string, int>> answers;
  std::vector<PictureFileDialog> asked;
  PdfScript pdf;
  FakePdfPort pdfPort{pdf};
  std::unique_ptr<QtHost> host;
  std::unique_ptr<TFormEditPdfBmp> form;
};

}  // namespace rasterkit::test
