// What is installed has the protections that cmake/Hardening.cmake promises, and no target of the
// build is without its flags.

#include <cstdio>
#include <sstream>

#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/hardening/build_records.h"
#include "tests/hardening/elf_file.h"

namespace rasterkit::test {
namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;

const fs::path kBuild = RASTERKIT_BUILD;

std::vector<std::string> Words(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

/// The folder into which the build is installed once, and its ELF files.
class Hardening : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (Words(RASTERKIT_HARDENING_FLAGS).empty()) return;
    // Each test runs in a process of its own, several at the same time.
    files_ = InstalledElfFiles(kBuild, Prefix());
  }
  static void TearDownTestSuite() { fs::remove_all(Prefix()); }
  void SetUp() override {
    if (Words(RASTERKIT_HARDENING_FLAGS).empty()) GTEST_SKIP() << "this preset does not ship";
  }

  static fs::path Prefix() {
    return kBuild / "tests/hardening" / ("prefix-" + std::to_string(getpid()));
  }

  static inline std::vector<fs::path> files_;
};

/// All bits that the processor's control-flow protection has, or 0 if it has none.
uint32_t FeaturesFor(int machine) {
  if (machine == EM_AARCH64) return kArmBti | kArmPac;
  const bool isX86 = machine == EM_X86_64 || machine == EM_386;
  return isX86 ? kX86Ibt | kX86Shstk : 0;
}

bool HasFeatures(const ElfFile& elf) {
  const uint32_t wanted = FeaturesFor(elf.machine);
  return (elf.features.value_or(0) & wanted) == wanted;
}

/// What the compiler links into each program or library besides our objects.
std::vector<fs::path> SystemObjects(bool isProgram) {
  std::vector<std::string> names = {"crti.o", "crtbeginS.o", "crtendS.o", "crtn.o"};
  if (isProgram) names.insert(names.begin(), "Scrt1.o");
  std::vector<fs::path> objects;
  for (const std::string& name : names) {
    FILE* pipe = popen(("'" RASTERKIT_COMPILER "' -print-file-name=" + name).c_str(), "r");
    if (pipe == nullptr) continue;
    char path[4096] = {};
    if (std::fgets(path, sizeof path, pipe) != nullptr) objects.push_back(Words(path).at(0));
    pclose(pipe);
  }
  return objects;
}

std::string ObjectsWithoutFeatures(const ElfFile& of) {
  std::string names;
  for (const fs::path& object : SystemObjects(of.isProgram)) {
    if (fs::exists(object) && !HasFeatures(ReadElf(object)))
      names += (names.empty() ? "" : ", ") + object.filename().string();
  }
  return names;
}

TEST_F(Hardening, InstalledFiles_Should_BeProtected) {
  ASSERT_GE(files_.size(), 2u) << "at least a library and the tool";
  size_t programs = 0;
  for (const fs::path& file : files_) {
    SCOPED_TRACE(file.filename());
    const ElfFile elf = ReadElf(file);
    EXPECT_EQ(elf.type, ET_DYN);
    EXPECT_EQ(elf.isProgram, elf.isPie) << "a program is linked with -pie";
    EXPECT_TRUE(elf.hasRelro);
    EXPECT_TRUE(elf.bindsNow);
    EXPECT_FALSE(elf.hasExecutableStack);
    EXPECT_FALSE(elf.hasWritableCode);
    EXPECT_FALSE(elf.hasTextRelocations);
    EXPECT_EQ(elf.imports.count("__stack_chk_fail"), 1u);
    programs += elf.isProgram ? 1 : 0;
  }
  EXPECT_GE(programs, 1u);
}

TEST_F(Hardening, Libraries_Should_CallCheckedFunctions) {
  const auto isChecked = [](const std::string& name) {
    return name.ends_with("_chk") && name.starts_with("__");
  };
  for (const fs::path& file : files_) {
    const ElfFile elf = ReadElf(file);
    if (file.filename().string().starts_with("librasterkit.so")) {
      EXPECT_TRUE(std::any_of(elf.imports.begin(), elf.imports.end(), isChecked)) << file;
    }
  }
}

/// An empty element is the current folder; installed files look beside themselves only.
TEST_F(Hardening, InstalledFiles_Should_LookForLibrariesBesideThemselves) {
  for (const fs::path& file : files_) {
    const ElfFile elf = ReadElf(file);
    EXPECT_FALSE(elf.rpath.has_value()) << file;
    std::istringstream elements(elf.runpath.value_or(""));
    for (std::string element; std::getline(elements, element, ':');)
      EXPECT_THAT(element, testing::StartsWith("$ORIGIN")) << file;
    EXPECT_FALSE(elf.runpath.value_or("x").empty()) << file;
    EXPECT_FALSE(elf.runpath.value_or("x").ends_with(':')) << file;
  }
}

/// The same files where they were built.
TEST_F(Hardening, BuiltFiles_Should_NotLookForLibrariesInTheCurrentFolder) {
  size_t checked = 0;
  for (const LinkCommand& link : ReadLinkCommands(kBuild)) {
    const fs::path file = kBuild / link.output;
    if (!fs::exists(file)) continue;
    const ElfFile elf = ReadElf(file);
    EXPECT_FALSE(elf.rpath.has_value()) << file;
    if (elf.runpath) {
      const std::string path = ":" + *elf.runpath + ":";
      EXPECT_EQ(path.find("::"), std::string::npos) << file << ": " << *elf.runpath;
      EXPECT_EQ(path.find(":."), std::string::npos) << file << ": " << *elf.runpath;
    }
    ++checked;
  }
  EXPECT_GE(checked, 2u);
}

/// A linked file has the note only if each object in it has. It may be missing only because of the
/// system's objects: those with our code must have it.
TEST_F(Hardening, ControlFlow_Should_BeProtected_UnlessTheSystemsObjectsAreNot) {
  for (const fs::path& file : files_) {
    const ElfFile elf = ReadElf(file);
    if (HasFeatures(elf)) continue;
    const std::string reason = ObjectsWithoutFeatures(elf);
    EXPECT_NE(reason, "") << file << " has no note, but all of the system's objects have one";
    std::printf("%s: no note, because of %s\n", file.filename().c_str(), reason.c_str());
  }
  size_t checked = 0;
  for (const CompileCommand& command : ReadCompileCommands(kBuild)) {
    const fs::path object = kBuild / command.object;
    if (!fs::exists(object)) continue;
    EXPECT_TRUE(HasFeatures(ReadElf(object))) << object;
    ++checked;
  }
  EXPECT_GT(checked, 100u);
}

TEST_F(Hardening, Sources_Should_AllBeCompiledWithTheFlags) {
  const std::vector<std::string> flags = Words(RASTERKIT_HARDENING_FLAGS);
  const std::vector<CompileCommand> commands = ReadCompileCommands(kBuild);
  EXPECT_GT(commands.size(), 100u);
  std::vector<std::string> without;
  for (const CompileCommand& command : commands) {
    for (const std::string& flag : flags)
      if (!HasFlag(command.command, flag)) without.push_back(command.object + ": " + flag);
  }
  EXPECT_THAT(without, IsEmpty());
}

/// Compilers take what comes last: a definition before the flag that removes it has no effect.
TEST_F(Hardening, FortifySource_Should_BeDefinedAfterItIsRemoved) {
  for (const CompileCommand& command : ReadCompileCommands(kBuild)) {
    const size_t removed = command.command.rfind(" -U_FORTIFY_SOURCE ");
    const size_t defined = command.command.rfind(" -D_FORTIFY_SOURCE=3 ");
    ASSERT_NE(defined, std::string::npos) << command.object;
    if (removed == std::string::npos) continue;
    EXPECT_GT(defined, removed) << command.object;
  }
}

TEST_F(Hardening, Links_Should_AllHaveTheFlags) {
  const std::vector<LinkCommand> links = ReadLinkCommands(kBuild);
  if (links.empty()) GTEST_SKIP() << "not built by Ninja";
  std::vector<std::string> without;
  for (const LinkCommand& link : links) {
    for (const std::string& flag : Words(RASTERKIT_HARDENING_LINK_FLAGS))
      if (!HasFlag(link.flags, flag)) without.push_back(link.output + ": " + flag);
  }
  EXPECT_THAT(without, IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
