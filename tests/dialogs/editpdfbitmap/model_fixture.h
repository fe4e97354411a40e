#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_model.h>
#include <rasterkit/qt/modal_results.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/strings.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/dialogs/editpdfbitmap/fake_pdf.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {

using enum EditControl;

/// A window without widgets: the state of its controls, and the recorded calls in order.
class RecordingEditView : public EditPdfBmpView {
 public:
  struct Control {
    bool visible = false, enabled = false, down = false;
    std::string text;
  };

  void SetVisible(EditControl control, bool visible) override { Of(control).visible = visible; }
  void SetEnabled(EditControl control, bool enabled) override { Of(control).enabled = enabled; }
  void SetDown(EditControl button, bool down) override { Of(button).down = down; }
  void SetText(EditControl control, const std::string& text) override {
    Of(control).text = text;
    if (onText) onText(control, text);
  }
  void SetPage(int newPage, int newLastPage) override {
    page = newPage;
    lastPage = newLastPage;
  }
  void SetCaption(const std::string& text) override { caption = text; }
  void WidenButtonPanel(int editButtons) override { panelWidth += editButtons; }
  void Repaint() override { calls.push_back("repaint"); }
  void ShowHourglass(bool shown) override { calls.push_back(shown ? "hourglass" : "cursor"); }
  void ShowRendering(bool active) override { calls.push_back(active ? "rendering" : "rendered"); }
  void Close(int modalResult) override { closed.push_back(modalResult); }
  bool ChangeBitmap(int32_t operation, TBitmap& bitmap, TChgBmpValuesRec& values) override {
    operations.push_back(operation);
    return onChangeBitmap && onChangeBitmap(bitmap, values);
  }
  bool EditSize(int32_t& width, int32_t& height, bool& proportional) override {
    return onEditSize && onEditSize(width, height, proportional);
  }

  Control& Of(EditControl control) { return controls[static_cast<size_t>(control)]; }

  std::array<Control, kEditControls> controls;
  int page = 0, lastPage = 0, panelWidth = 0;
  std::string caption;
  std::vector<std::string> calls;
  std::vector<int> closed;
  std::vector<int32_t> operations;
  std::function<void(EditControl, const std::string&)> onText;
  std::function<bool(TBitmap&, TChgBmpValuesRec&)> onChangeBitmap;
  std::function<bool(int32_t&, int32_t&, bool&)> onEditSize;
};

/// A model with its view and crop tool, fake documents behind the port, and the host's ports
/// recorded.
class EditModelTest : public testing::Test {
 protected:
  EditModelTest() {
    Ports& ports = HostPorts();
    ports.messageBox = [this](const std::string& text) { messages.push_back(text); };
    ports.helpTopic = [this](int topic) { topics.push_back(topic); };
    ports.readSetting = [this](const std::string& section, const std::string& key) {
      const auto found = settings.find(section + "/" + key);
      return found == settings.end() ? std::nullopt : std::optional(found->second);
    };
    ports.writeSetting = [this](const std::string& section, const std::string& key,
                                const std::string& value) {
      settings[section + "/" + key] = value;
    };
    ports.pictureFileDialog = [this](PictureFileDialog& dialog) {
      dialogs.push_back(dialog);
      if (!onDialog) return false;
      return onDialog(dialog);
    };
    StartAnew();
  }
  ~EditModelTest() override {
    model.reset();
    HostPorts() = portsBefore_;
    SetTranslator({});
  }

  void StartAnew() {
    model.reset();
    view = RecordingEditView();
    model = std::make_unique<EditPdfBmpModel>(view, tool);
  }

  /// A PDF with this number of pages, opened at 150 dpi.
  void OpenPdf(size_t pages = 1) {
    pdf.pages.assign(pages, {72, 36});
    ASSERT_TRUE(model->SetOrgFilename("plans/plan.pdf"));
    Forget();
  }

  /// A bitmap whose target does not exist: changes are applied at once.
  void EditNew(TPixelFormat format = pf24bit, int width = 40, int height = 30) {
    model->SetBmpFilename(folder / "new.bmp");
    model->SetOrgGraphic(GradientBitmap(format, width, height).Clone());
    Forget();
  }
  /// A bitmap whose target exists: the picture is made again for each change.
  void EditExisting(TPixelFormat format = pf24bit, int width = 40, int height = 30) {
    folder.Write("old.bmp", std::string_view("an old file"));
    model->SetBmpFilename(folder / "old.bmp");
    model->SetOrgGraphic(GradientBitmap(format, width, height).Clone());
    Forget();
  }

  /// Clears the recorded calls.
  void Forget() {
    view.calls.clear();
    view.closed.clear();
    view.operations.clear();
    messages.clear();
    pdf.exports.clear();
  }

  /// The save dialog is confirmed with this name and the matching filter entry.
  void ConfirmSaving(const std::string& name, int filterIndex = 1) {
    onDialog = [=](PictureFileDialog& dialog) {
      dialog.FileName = name;
      dialog.FilterIndex = filterIndex;
      return true;
    };
  }
  void ConfirmOpening(const std::string& name) { ConfirmSaving(name); }

  void Cut(double left = 5, double top = 4, double right = 25, double bottom = 14) {
    tool.SetBmpCutRect({left, top, right, bottom});
  }

  // The window shows user input before the model gets the event.
  void ChooseResolution(const std::string& text) {
    view.Of(CoBoResolution).text = text;
    model->CoBoResolutionChange(text);
  }
  void ChooseAngle(const std::string& text) {
    view.Of(CoBoRotation).text = text;
    model->CoBoRotationChange(text);
  }
  void ChoosePage(int page) {
    view.page = page;
    model->SpinEditPageChange(page);
  }
  void Type(const std::string& resolution) {
    model->CoBoResolutionKeyPress(ComboKey::digit);
    ChooseResolution(resolution);
  }
  void TypeAngle(const std::string& angle) {
    model->CoBoRotationKeyPress(ComboKey::digit);
    ChooseAngle(angle);
  }

  const TBitmap& Work() { return *model->WorkBitmap(); }
  bool Shown(EditControl control) { return view.Of(control).visible; }
  bool Usable(EditControl control) { return view.Of(control).enabled; }
  bool Down(EditControl control) { return view.Of(control).down; }
  const std::string& Text(EditControl control) { return view.Of(control).text; }

 private:
  const Ports portsBefore_ = HostPorts();

 protected:
  TempFolder folder;
  PdfScript pdf;
  FakePdfPort pdfPort{pdf};
  std::vector<std::string> messages;
  std::vector<int> topics;
  std::map<std::string, std::string> settings;
  std::vector<PictureFileDialog> dialogs;
  std::function<bool(PictureFileDialog&)> onDialog;
  RecordingView box{400, 300};
  BmpCutModel tool{box};
  RecordingEditView view;
  std::unique_ptr<EditPdfBmpModel> model;
};

}  // namespace rasterkit::test
