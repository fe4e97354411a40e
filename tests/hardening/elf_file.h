#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace rasterkit::test {

/// What the loader and the processor read from a program, a shared library or an object file. Both
/// classes (32 and 64 bits) of little-endian files.
struct ElfFile {
  /// ET_REL, ET_EXEC, ET_DYN.
  int type = 0;
  /// EM_386, EM_X86_64, EM_AARCH64.
  int machine = 0;
  /// Whether there is an interpreter: a program that is started, not a library.
  bool isProgram = false;

  /// PT_GNU_STACK is there, and whether it is executable; without it, the stack is executable.
  bool hasExecutableStack = true;
  /// A segment that can be written and executed.
  bool hasWritableCode = false;
  bool hasRelro = false;

  // Of the dynamic section.
  bool bindsNow = false;
  /// DF_1_PIE.
  bool isPie = false;
  bool hasTextRelocations = false;
  std::optional<std::string> rpath, runpath;
  std::vector<std::string> needed;
  /// Names that other libraries must provide.
  std::set<std::string> imports;

  /// Bits of GNU_PROPERTY_X86_FEATURE_1_AND or GNU_PROPERTY_AARCH64_FEATURE_1_AND; no value without
  /// such a note.
  std::optional<uint32_t> features;
};

/// Bits of `ElfFile::features`.
inline constexpr uint32_t kX86Ibt = 1, kX86Shstk = 2, kArmBti = 1, kArmPac = 2;

/// Whether the file begins as an ELF file.
bool IsElf(const std::filesystem::path& file);

/// Throws std::runtime_error with the file's name if the bytes are not such a file or are cut off.
ElfFile ReadElf(const std::filesystem::path& file);

/// The same of bytes.
ElfFile ParseElf(const std::string& bytes);

}  // namespace rasterkit::test
