#include "tests/hardening/build_records.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/hardening/elf_file.h"

#include <nlohmann/json.hpp>

namespace rasterkit::test {

namespace fs = std::filesystem;

std::vector<CompileCommand> ReadCompileCommands(const fs::path& build) {
  std::ifstream in(build / "compile_commands.json");
  std::vector<CompileCommand> commands;
  for (const auto& entry : nlohmann::json::parse(in)) {
    const std::string command = entry.at("command");
    const size_t object = command.find(" -o ") + 4;
    commands.push_back({command, command.substr(object, command.find(' ', object) - object)});
  }
  return commands;
}

std::vector<LinkCommand> ReadLinkCommands(const fs::path& build) {
  std::ifstream in(build / "build.ninja");
  std::vector<LinkCommand> links;
  bool isLink = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("build ")) {
      isLink = line.find(": CXX_EXECUTABLE_LINKER") != std::string::npos ||
               line.find(": CXX_SHARED_LIBRARY_LINKER") != std::string::npos;
      const std::string output = line.substr(6, line.find_first_of(": ", 6) - 6);
      if (isLink) links.push_back({output, ""});
    } else if (isLink && line.starts_with("  LINK_FLAGS = ")) {
      links.back().flags = line.substr(15);
    }
  }
  return links;
}

std::vector<fs::path> InstalledElfFiles(const fs::path& build, const fs::path& prefix) {
  const std::string command = "'" RASTERKIT_CMAKE "' --install '" + build.string() +
                              "' --prefix '" + prefix.string() + "' >/dev/null";
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(prefix)) {
    if (entry.is_symlink() || !entry.is_regular_file()) continue;
    if (IsElf(entry.path())) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

bool HasFlag(const std::string& command, const std::string& flag) {
  std::istringstream words(command);
  for (std::string word; words >> word;)
    if (word == flag) return true;
  return false;
}

}  // namespace rasterkit::test
