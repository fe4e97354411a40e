#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rasterkit::test {

/// One call of the compiler.
struct CompileCommand {
  std::string command;
  /// What it makes, relative to the build folder.
  std::string object;
};

/// One call of the linker that makes a program or a shared library.
struct LinkCommand {
  std::string output, flags;
};

/// All of compile_commands.json.
std::vector<CompileCommand> ReadCompileCommands(const std::filesystem::path& build);

/// The links of build.ninja; empty if another program builds.
std::vector<LinkCommand> ReadLinkCommands(const std::filesystem::path& build);

/// Installs the build into a new folder and returns the ELF files that are there then, without
/// symbolic links. Throws std::runtime_error if that fails.
std::vector<std::filesystem::path> InstalledElfFiles(const std::filesystem::path& build,
                                                     const std::filesystem::path& prefix);

/// Whether `flag` is a word of the command.
bool HasFlag(const std::string& command, const std::string& flag);

}  // namespace rasterkit::test
