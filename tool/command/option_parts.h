// Implementation of the handles in options.h, shared by options.cpp and command_line.cpp.

#pragma once

#include <deque>
#include <string>
#include <vector>

#include "tool/command/options.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace rasterkit::tool {

struct OptionParts {
  CLI::Option* parsed = nullptr;
  /// "--bits"; empty for files.
  std::string name;
  /// Name and value, and the description, as the help shows them.
  HelpEntry entry;
  std::string section;
  bool isRequired = false;
  /// Accepted, but not in the help.
  bool isHidden = false;
  /// Words that begin a value of two words.
  std::vector<std::string> openWords;
  /// Names of other options.
  std::vector<std::string> needed, excluded;
};

struct VerbParts {
  CLI::App* parsed = nullptr;
  VerbHelp help;
  /// Not a vector: options point to them.
  std::deque<OptionParts> options;
};

/// Texts with commas between them.
std::string Joined(const std::vector<std::string>& texts);

}  // namespace rasterkit::tool
