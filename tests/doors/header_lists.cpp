#include "tests/doors/header_lists.h"

#include <filesystem>
#include <fstream>

namespace rasterkit::test {

HeaderLists ParseHeaderLists(std::istream& list) {
  HeaderLists headers;
  std::set<std::string>* current = nullptr;
  for (std::string word; list >> word;) {
    // The first keyword may follow the bracket directly.
    const std::string keyword = word.substr(word.find('(') + 1);
    if (keyword == "PROMISED") {
      current = &headers.promised;
    } else if (keyword == "INSTALLED") {
      current = &headers.installed;
    } else if (word.find(".h") == std::string::npos) {
      current = nullptr;
    } else if (current != nullptr) {
      current->insert(word.substr(0, word.find(')')));
      if (word.ends_with(')')) current = nullptr;
    }
  }
  return headers;
}

HeaderLists ReadHeaderLists(const std::string& root) {
  const std::filesystem::path folder = root;
  HeaderLists all;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder / "rasterkit")) {
    if (entry.path().filename() != "CMakeLists.txt") continue;
    const std::string room = entry.path().parent_path().lexically_relative(folder).generic_string();
    std::ifstream list(entry.path());
    const HeaderLists headers = ParseHeaderLists(list);
    for (const std::string& name : headers.promised) all.promised.insert(room + "/" + name);
    for (const std::string& name : headers.installed) all.installed.insert(room + "/" + name);
  }
  return all;
}

}  // namespace rasterkit::test
