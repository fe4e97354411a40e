#include "tests/docs/tool_help.h"

#include <algorithm>

#include "tests/docs/document_files.h"

namespace rasterkit::test {

std::set<std::string> VerbsOfTool() {
  const std::string help = OutputOf(RASTERKIT_TOOL " --help");
  const size_t list = std::min(help.find("\nVerbs:"), help.size());
  const std::string verbs = help.substr(list, help.find("\n\n", list) - list);
  const auto found = FindAll(verbs, "\n  ([a-z-]+) ");
  return {found.begin(), found.end()};
}

}  // namespace rasterkit::test
