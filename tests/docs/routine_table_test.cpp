// The table of docs/cli.md that says which verb shows which routine and class is made from the
// sources of the tool. RASTERKIT_WRITE_TABLE=1 writes it anew.

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/document_files.h"
#include "tests/docs/tool_help.h"
#include "tests/docs/verb_calls.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kPage = "docs/cli.md";
constexpr const char* kHead = "| name | shown by |\n|---|---|\n";

/// What the units export, and the class that the verbs stand on.
LibraryNames NamesOfUnits() {
  LibraryNames names;
  for (const char* room : {"bitmaptools", "graphics", "jpegexif", "tifftobmp", "startup"}) {
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(SourceFolder() / "rasterkit" / room)) {
      if (entry.path().extension() != ".h") continue;
      const std::string text =
          WithoutDetail(ReadDocument(std::filesystem::relative(entry.path(), SourceFolder())));
      for (const std::string& name : FindAll(text, "\nclass RASTERKIT_EXPORT (\\w+)")) {
        names.classes.insert(name);
      }
      if (std::string(room) == "graphics") continue;
      for (const std::string& name :
           FindAll(text, "\nRASTERKIT_EXPORT [^;({]*[ *&]([A-Z][A-Za-z0-9]*)\\(")) {
        names.routines.insert(name);
      }
    }
  }
  names.classes.insert("Picture");
  return names;
}

std::string TableOfSources() {
  const auto verbs = VerbsByName(ReadToolSources(), NamesOfUnits());
  const size_t all = VerbsOfTool().size();
  std::string table = kHead;
  for (const auto& [name, users] : verbs) {
    std::string shown = users.empty() ? "library" : users.size() == all ? "every verb" : "";
    if (shown.empty()) {
      for (const std::string& verb : users) shown += (shown.empty() ? "" : ", ") + verb;
    }
    table += "| `" + name + "` | " + shown + " |\n";
  }
  return table;
}

TEST(DocsRoutines, Table_Should_BeThatOfTheSources) {
  const std::string page = ReadDocument(kPage), table = TableOfSources();
  const size_t begin = page.find(kHead);
  ASSERT_NE(begin, std::string::npos);
  const size_t gap = page.find("\n\n", begin);
  const size_t end = gap == std::string::npos ? page.size() : gap + 1;
  const bool isSame = page.substr(begin, end - begin) == table;
  if (!isSame && std::getenv("RASTERKIT_WRITE_TABLE") != nullptr) {
    std::ofstream(SourceFolder() / kPage) << page.substr(0, begin) << table << page.substr(end);
    return;
  }
  EXPECT_TRUE(isSame) << "RASTERKIT_WRITE_TABLE=1 writes this table:\n" << table;
}

TEST(DocsRoutines, Calls_Should_BeFollowedThroughTheTool) {
  const ToolSources sources = {
      {"tool/verbs/verb_a.cpp",
       "#include \"tool/help.h\"\nvoid Change(int x) {\n  Outer(x);  // Unused(x)\n}\n"
       "VerbRunner AddAVerb(CommandLine& line) {\n  PictureVerb verb(line, {\"a\", "
       "\"Quoted(1)\"});\n"
       "  return [](int x) { Change(x); };\n}\n"},
      {"tool/verbs/verb_b.cpp",
       "VerbRunner AddBVerb(CommandLine& line) {\n  line.AddVerb({\"b\", \"text\"});\n"
       "  TThing thing;\n  thing.Member(1);\n}\n"},
      {"tool/help.h", "void Outer(int x);\n"},
      {"tool/help.cpp",
       "#include \"tool/help.h\"\nvoid Hidden(int) {\n  Routine(1);\n}\nvoid Outer(int x) {\n"
       "  Hidden(x);\n}\nvoid Alone() {\n  Unused(1);\n}\n"}};
  const auto verbs = VerbsByName(
      sources, {{"Routine", "Unused", "Quoted", "Member", "Outer"}, {"TThing", "TOther"}});
  EXPECT_THAT(verbs.at("Routine"), ElementsAre("a"));
  EXPECT_THAT(verbs.at("TThing"), ElementsAre("b"));
  for (const char* name : {"Unused", "Quoted", "Member", "TOther"}) {
    EXPECT_THAT(verbs.at(name), IsEmpty()) << name;
  }
  EXPECT_THAT(verbs.at("Outer"), IsEmpty()) << "a function of the tool with that name";
}

}  // namespace
}  // namespace rasterkit::test
