#pragma once

#include <string>
#include <vector>

#include <rasterkit/dialogs/savedlgext/save_dialog_view.h>

namespace rasterkit::test {

/// A window that only notes what it is told.
struct RecordingSaveView : SaveDialogView {
  void ShowName(const std::string& text) override { name = text; }
  void ShowPath(const std::string& text) override { path = text; }
  void ShowDirectory(const std::string& text) override { directory = text; }
  void ShowMask(const std::string& text) override {
    mask = text;
    ++masks;
  }
  void ShowReport(bool report) override { isReport = report; }
  void ShowFilters(const std::vector<std::string>& descriptions) override {
    filters = descriptions;
  }
  void ShowFilterPosition(int position) override { filterPosition = position; }
  void SetOptionsVisible(bool visible) override { hasOptions = visible; }
  void SetSelPathVisible(bool visible) override { hasSelPath = visible; }
  void CloseOk() override { ++closings; }

  std::string name, path, directory, mask;
  std::vector<std::string> filters;
  int masks = 0, filterPosition = -1, closings = 0;
  bool isReport = true, hasOptions = true, hasSelPath = true;
};

}  // namespace rasterkit::test
