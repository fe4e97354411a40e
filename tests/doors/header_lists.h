#pragma once

#include <istream>
#include <set>
#include <string>

namespace rasterkit::test {

/// The headers that the CMakeLists.txt of one or more rooms offer.
struct HeaderLists {
  std::set<std::string> promised, installed;
};

/// The names after PROMISED and INSTALLED in one CMakeLists.txt, each list up to the next keyword.
HeaderLists ParseHeaderLists(std::istream& list);

/// The lists of all rooms below `root`, as include names: "rasterkit/raster/palette.h".
HeaderLists ReadHeaderLists(const std::string& root);

}  // namespace rasterkit::test
