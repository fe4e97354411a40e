// docs/dialogs.md explains every control of the forms whose layout it names, and every exported
// routine of their rooms.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/document_files.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

std::string Page() {
  return ReadDocument("docs/dialogs.md");
}

std::vector<std::string> Layouts() {
  return FindAll(Page(), "`(rasterkit/dialogs/[a-z_/]+\\.ui)`");
}

TEST(DocsDialogs, Controls_Should_AllBeExplained) {
  ASSERT_GE(Layouts().size(), 3u);
  for (const std::string& layout : Layouts()) {
    const std::vector<std::string> controls = FindAll(
        ReadDocument(layout),
        "<widget class=\"(?:rasterkit::T[A-Za-z]+|QPushButton|QSlider|QCheckBox|QComboBox)\" "
        "name=\"([A-Za-z]+)\"");
    EXPECT_GE(controls.size(), 5u) << layout;
    for (const std::string& control : controls)
      EXPECT_THAT(Page(), HasSubstr("`" + control + "`")) << layout;
  }
}

TEST(DocsDialogs, Entries_Should_AllBeNamed) {
  size_t checked = 0;
  for (const std::string& layout : Layouts()) {
    const auto room = SourceFolder() / std::filesystem::path(layout).parent_path();
    for (const auto& file : std::filesystem::directory_iterator(room)) {
      if (file.path().extension() != ".h") continue;
      const std::string header = ReadDocument(file.path());
      for (const std::string& entry :
           FindAll(header, "\nRASTERKIT_EXPORT [^;({]*[ *&>]([A-Z][A-Za-z0-9]*)\\(")) {
        EXPECT_THAT(Page(), HasSubstr("`" + entry)) << file.path();
        ++checked;
      }
    }
  }
  EXPECT_GE(checked, 5u);
}

}  // namespace
}  // namespace rasterkit::test
