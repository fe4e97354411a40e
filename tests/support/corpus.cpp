#include "tests/support/corpus.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace rasterkit::test {
namespace {

std::vector<std::string> SplitTabs(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream in(line);
  for (std::string cell; std::getline(in, cell, '\t');) cells.push_back(cell);
  return cells;
}

}  // namespace

std::filesystem::path CorpusFolder() {
  const char* value = std::getenv("RASTERKIT_CORPUS");
  if (value == nullptr || *value == '\0') return {};
  std::filesystem::path folder(value);
  return std::filesystem::exists(folder / "INDEX.tsv") ? folder : std::filesystem::path();
}

std::vector<CorpusEntry> CorpusEntries(const std::string& folder) {
  std::ifstream in(CorpusFolder() / "INDEX.tsv");
  std::string line;
  std::getline(in, line);
  const std::vector<std::string> columns = SplitTabs(line);
  std::vector<CorpusEntry> entries;
  while (std::getline(in, line)) {
    std::vector<std::string> cells = SplitTabs(line);
    cells.resize(columns.size());
    CorpusEntry entry;
    for (size_t i = 0; i < columns.size(); ++i) entry[columns[i]] = cells[i];
    if (folder.empty() || entry["path"].rfind(folder + "/", 0) == 0) entries.push_back(entry);
  }
  return entries;
}

}  // namespace rasterkit::test
