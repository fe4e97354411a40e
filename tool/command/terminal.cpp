#include "tool/command/terminal.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include <sys/ioctl.h>
#include <unistd.h>

namespace rasterkit::tool {
namespace {

/// 0 if the variable states no number.
size_t StatedColumns() {
  const char* const text = std::getenv("COLUMNS");
  size_t columns = 0;
  if (text != nullptr) std::from_chars(text, text + std::strlen(text), columns);
  return columns;
}

/// 0 if the terminal does not know its size.
size_t TerminalColumns() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace

size_t OutputColumns() {
  constexpr size_t kUsual = 80, kLeast = 40;
  if (isatty(STDOUT_FILENO) == 0) return kUsual;
  size_t columns = StatedColumns();
  if (columns == 0) columns = TerminalColumns();
  return columns == 0 ? kUsual : std::max(columns, kLeast);
}

}  // namespace rasterkit::tool
