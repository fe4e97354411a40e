// docs/dialogs.md explains every control of the forms whose layout it names, and every exported
// routine of their rooms.

#include <utility>

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

/// The fields of a struct in a header that have a value there.
std::vector<std::string> FieldsOf(const std::string& header, const std::string& name) {
  const std::string text = ReadDocument(header);
  const size_t begin = text.find("struct " + name + " {");
  if (begin == std::string::npos) return {};
  const std::string body = text.substr(begin, text.find("\n};", begin) - begin);
  return FindAll(body, "[ *]([a-z][A-Za-z]*)(?: = |\\{)");
}

TEST(DocsDialogs, RulesOfBothSets_Should_StandSideBySide) {
  const std::string page = ReadDocument("docs/dialogs.md");
  const std::pair<const char*, const char*> kRules[] = {
      {"rasterkit/dialogs/bitmapframe/crop_rules.h", "CropRules"},
      {"rasterkit/dialogs/execbitmap/value_rules.h", "ValueRules"},
      {"rasterkit/dialogs/editchangesize/size_rules.h", "SizeRules"}};
  for (const auto& [header, name] : kRules) {
    SCOPED_TRACE(name);
    const size_t begin = page.find("| `" + std::string(name) + "` |");
    ASSERT_NE(begin, std::string::npos);
    const std::string table = page.substr(begin, page.find("\n\n", begin) - begin);
    const std::vector<std::string> fields = FieldsOf(header, name);
    EXPECT_GE(fields.size(), 5u);
    for (const std::string& field : fields) EXPECT_THAT(table, HasSubstr("`" + field + "`"));
  }
}

}  // namespace
}  // namespace rasterkit::test
