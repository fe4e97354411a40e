#pragma once

#include <string>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// An output in the folder of --out-dir.
struct NamedOutput {
  std::string input;
  /// The name without --name, in the folder. Its extension is that of the output.
  std::string usualName;
  /// The page of the input, and the place of the output among all, both counted from 1.
  int page = 1, number = 1;
};

/// The name of the input without its folders; "stdin" for the input "-".
std::string NameOfInput(const std::string& input);

/// The full name of an output in the folder of --out-dir, by --name if that is given. Throws
/// Failure(exitWrongUsage) for a name that leaves the folder or contradicts --format.
std::string NameInFolder(const OutputOptions& options, const NamedOutput& output);

}  // namespace rasterkit::tool
