// The reader of ELF files sees what the linker was told, and refuses bytes that are cut off.

#include "tests/hardening/elf_file.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <elf.h>
#include <gtest/gtest.h>

#include "tests/hardening/build_records.h"

namespace rasterkit::test {
namespace {

namespace fs = std::filesystem;

/// Libraries and programs of the same source, linked in opposite ways.
class ElfFiles : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = fs::path(RASTERKIT_BUILD) / "tests/hardening/elf";
    fs::create_directories(folder_);
    std::ofstream(folder_ / "a.cpp") << "extern \"C\" void* memcpy(void*, const void*, unsigned "
                                        "long);\nint F(int i, const char* s) { char a[99];\n"
                                        "memcpy(a, s, i); return a[i]; }\nint main() {}\n";
  }
  /// The file that the compiler makes of the source; nothing if it cannot.
  static ElfFile Made(const std::string& name, const std::string& flags) {
    const std::string file = (folder_ / name).string();
    const std::string command = "'" RASTERKIT_COMPILER "' " + flags + " '" +
                                (folder_ / "a.cpp").string() + "' -o '" + file + "'";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
    return ReadElf(file);
  }

  static inline fs::path folder_;
};

TEST_F(ElfFiles, Should_ShowAProtectedProgram) {
  const ElfFile elf = Made("protected",
                           "-O2 -fstack-protector-all -fPIE -pie -Wl,-z,relro -Wl,-z,now "
                           "-Wl,-z,noexecstack -Wl,-rpath,/there:");
  EXPECT_EQ(elf.type, ET_DYN);
  EXPECT_TRUE(elf.isProgram);
  EXPECT_TRUE(elf.isPie);
  EXPECT_TRUE(elf.hasRelro);
  EXPECT_TRUE(elf.bindsNow);
  EXPECT_FALSE(elf.hasExecutableStack);
  EXPECT_FALSE(elf.hasWritableCode);
  EXPECT_FALSE(elf.hasTextRelocations);
  EXPECT_EQ(elf.imports.count("__stack_chk_fail"), 1u);
  EXPECT_EQ(elf.runpath.value_or("") + elf.rpath.value_or(""), "/there:");
  EXPECT_FALSE(elf.needed.empty());
}

TEST_F(ElfFiles, Should_ShowAnUnprotectedProgram) {
  const ElfFile elf = Made("unprotected",
                           "-O2 -fno-stack-protector -fno-pie -no-pie -Wl,-z,norelro "
                           "-Wl,-z,lazy -Wl,-z,execstack");
  EXPECT_EQ(elf.type, ET_EXEC);
  EXPECT_TRUE(elf.isProgram);
  EXPECT_FALSE(elf.isPie);
  EXPECT_FALSE(elf.hasRelro);
  EXPECT_FALSE(elf.bindsNow);
  EXPECT_TRUE(elf.hasExecutableStack);
  EXPECT_EQ(elf.imports.count("__stack_chk_fail"), 0u);
  EXPECT_FALSE(elf.runpath.has_value());
  EXPECT_FALSE(elf.rpath.has_value());
}

TEST_F(ElfFiles, Should_TellRpathFromRunpath) {
  const std::string flags = "-shared -fPIC -Wl,-rpath,'$ORIGIN' -Wl,";
  const ElfFile old = Made("old.so", flags + "--disable-new-dtags");
  EXPECT_EQ(old.rpath, "$ORIGIN");
  EXPECT_FALSE(old.runpath.has_value());
  const ElfFile current = Made("current.so", flags + "--enable-new-dtags");
  EXPECT_FALSE(current.rpath.has_value());
  EXPECT_EQ(current.runpath, "$ORIGIN");
  EXPECT_FALSE(current.isProgram);
  EXPECT_FALSE(current.isPie);
}

TEST_F(ElfFiles, Should_ReadTheNoteOfControlFlow_When_TheProcessorIsX86) {
  const ElfFile none = Made("none.o", "-c -fcf-protection=none");
  if (none.machine != EM_X86_64) GTEST_SKIP() << "another processor";
  EXPECT_EQ(none.type, ET_REL);
  EXPECT_EQ(none.features.value_or(0), 0u);
  EXPECT_EQ(Made("branch.o", "-c -fcf-protection=branch").features, kX86Ibt);
  EXPECT_EQ(Made("full.o", "-c -fcf-protection=full").features, kX86Ibt | kX86Shstk);
}

TEST_F(ElfFiles, Should_Refuse_When_BytesAreCutOffOrWrong) {
  Made("whole.so", "-shared -fPIC");
  std::ifstream in(folder_ / "whole.so", std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), {});
  EXPECT_NO_THROW(ParseElf(bytes));
  // The table of sections is at the end.
  for (size_t length = 0; length < bytes.size(); length += 97)
    EXPECT_THROW(ParseElf(bytes.substr(0, length)), std::runtime_error) << length;
  std::string wrong = bytes;
  wrong[0] = 'x';
  EXPECT_THROW(ParseElf(wrong), std::runtime_error);
  EXPECT_FALSE(IsElf(folder_ / "a.cpp"));
  EXPECT_TRUE(IsElf(folder_ / "whole.so"));
}

TEST(BuildRecords, HasFlag_Should_CompareWholeWords) {
  EXPECT_TRUE(HasFlag("g++ -fstack-protector-strong -c a.cpp", "-fstack-protector-strong"));
  EXPECT_FALSE(HasFlag("g++ -fstack-protector-strong2 -c a.cpp", "-fstack-protector-strong"));
  EXPECT_FALSE(HasFlag("", "-c"));
}

}  // namespace
}  // namespace rasterkit::test
