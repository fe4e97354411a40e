#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Other programs that read pictures; only tests that compare use them.
namespace rasterkit::test {

inline bool HasPeer(const std::string& name) {
  return std::system(("command -v " + name + " > /dev/null 2>&1").c_str()) == 0;
}

/// A word for a shell.
inline std::string InQuotes(const std::string& text) {
  return "'" + text + "'";
}

/// The stdout of a shell command.
inline std::string OutputOfPeer(const std::string& command) {
  std::string output;
  FILE* const pipe = popen((command + " 2> /dev/null").c_str(), "r");
  if (pipe == nullptr) return output;
  std::array<char, 4096> room;
  while (const size_t count = std::fread(room.data(), 1, room.size(), pipe)) {
    output.append(room.data(), count);
  }
  pclose(pipe);
  return output;
}

}  // namespace rasterkit::test
