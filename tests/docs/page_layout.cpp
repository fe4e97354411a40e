#include "tests/docs/page_layout.h"

#include <algorithm>
#include <regex>
#include <sstream>

namespace rasterkit::test {
namespace {

constexpr size_t kColumns = 100;

std::string_view TrimLeft(std::string_view line) {
  const size_t first = line.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view() : line.substr(first);
}

/// Characters, not bytes, without images and the targets of links.
size_t WidthOf(const std::string& line) {
  static const std::regex kHidden(R"(!\[[^\]]*\]\([^)]*\)|\]\([^)]*\))");
  const std::string shown = std::regex_replace(line, kHidden, "]");
  return static_cast<size_t>(std::count_if(shown.begin(), shown.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

/// Of a row "| a | b |"; an escaped bar is text.
size_t ColumnsOf(std::string_view row) {
  size_t bars = 0;
  for (size_t i = 0; i < row.size(); ++i) bars += row[i] == '|' && (i == 0 || row[i - 1] != '\\');
  while (!row.empty() && row.back() == ' ') row.remove_suffix(1);
  return bars - (row.ends_with('|') ? 1 : 0);
}

bool IsSeparator(std::string_view row) {
  return row.find('-') != std::string_view::npos &&
         row.find_first_not_of("|-: ") == std::string_view::npos;
}

/// Knows how many rows of the current table came before.
class LayoutCheck {
 public:
  void Take(const std::string& line) {
    ++number_;
    const std::string_view text = TrimLeft(line);
    if (text.starts_with("```")) {
      EndTable();
      isCode_ = !isCode_;
    } else if (isCode_) {
      return;
    } else if (text.starts_with('|')) {
      TakeRow(text);
    } else {
      EndTable();
      const size_t width = WidthOf(line);
      if (!text.starts_with('#') && width > kColumns)
        Report("has " + std::to_string(width) + " columns");
    }
  }

  std::vector<std::string> Finish() {
    EndTable();
    if (isCode_) Report("a code block does not end");
    return std::move(faults_);
  }

 private:
  void TakeRow(std::string_view row) {
    const size_t columns = ColumnsOf(row);
    if (rows_ == 0) {
      columns_ = columns;
    } else if (columns != columns_) {
      Report("the row has " + std::to_string(columns) + " columns, its table " +
             std::to_string(columns_));
    }
    if (rows_ == 1 && !IsSeparator(row)) Report("the table has no separator here");
    ++rows_;
  }

  void EndTable() {
    if (rows_ == 1) Report("the row before is not part of a table");
    rows_ = 0;
  }

  void Report(const std::string& fault) {
    faults_.push_back(std::to_string(number_) + ": " + fault);
  }

  std::vector<std::string> faults_;
  size_t number_ = 0, rows_ = 0, columns_ = 0;
  bool isCode_ = false;
};

}  // namespace

std::vector<std::string> FindLayoutFaults(std::string_view page) {
  LayoutCheck check;
  std::istringstream lines{std::string(page)};
  for (std::string line; std::getline(lines, line);) check.Take(line);
  return check.Finish();
}

}  // namespace rasterkit::test
