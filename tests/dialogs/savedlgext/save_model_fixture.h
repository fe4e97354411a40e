#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgext/save_dialog_model.h>
#include <rasterkit/runtime/ports.h>

#include "tests/dialogs/savedlgext/recording_save_view.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {

/// A model over a folder with a file "old.png" and a folder "maps", and a user who answers
/// questions with `answer`.
class SaveModelTest : public testing::Test {
 protected:
  SaveModelTest() {
    HostPorts() = Ports();
    HostPorts().messageBox = [this](const std::string& text) { messages.push_back(text); };
    HostPorts().confirmation = [this](const std::string& question) {
      questions.push_back(question);
      return answer;
    };
    folder.Write("old.png", "picture");
    std::filesystem::create_directory(folder.Path() / "maps");
    model.SetInitialDir(folder.Path().string());
    model.DefaultExt = ".png";
  }
  ~SaveModelTest() override { HostPorts() = Ports(); }

  /// Presses "Save" after `text` was typed for a name; true when the window closed.
  bool Save(const std::string& text) {
    model.EditFilenameChange(text);
    const int before = view.closings;
    model.OKButtonClick();
    return view.closings > before;
  }
  /// The name of something in the folder.
  std::string In(const std::string& name) const { return folder.Path().string() + "/" + name; }

  TempFolder folder;
  RecordingSaveView view;
  SaveDialogModel model{view, "/start"};
  std::vector<std::string> messages, questions;
  bool answer = false;
};

}  // namespace rasterkit::test
