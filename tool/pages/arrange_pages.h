#pragma once

#include <string>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// What the verb `pages` does with the pages of its inputs.
struct ArrangeOptions {
  OutputOptions output;
  PictureOptions picture;
  /// Pages of the output, in their order; empty for all. Already checked.
  std::string order;
  /// Pages that the output does not have; empty for none. Already checked.
  std::string removed;
};

/// Check of --order: a list of pages, or "reverse".
std::string CheckOrder(const std::string& text);

/// Writes one file with the pages of all inputs; with --in-place, each input anew; with --out-dir,
/// each page as a file. Returns the exit code.
int ArrangePages(const ArrangeOptions& options);

}  // namespace rasterkit::tool
