#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rasterkit::test {

/// What a page in Markdown has that breaks the layout rules, as "LINE: FAULT". Prose is wrapped at
/// 100 columns; code blocks, headings, tables, images and the targets of links are exempt. Each row
/// of a table belongs to a block of a header, a separator and rows of the same number of columns.
std::vector<std::string> FindLayoutFaults(std::string_view page);

}  // namespace rasterkit::test
