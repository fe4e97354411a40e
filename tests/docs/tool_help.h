#pragma once

#include <set>
#include <string>

namespace rasterkit::test {

/// The verbs that `rasterkit --help` lists.
std::set<std::string> VerbsOfTool();

}  // namespace rasterkit::test
