#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tool/support/run_tool.h"

namespace rasterkit::test {

/// A command line of a verb that writes, without its files, and what `apply` needs besides the
/// recipe.
struct RecordedLine {
  std::string name;
  std::vector<std::string> words;
  /// Input and output; the input is a sample, or a file of the test.
  std::string input = "orientation-6.jpg", output = "out.jpg";
  std::vector<std::string> applied = {};
};

/// Runs `line` on `input` with --record, then `apply` on the same input: the bytes must be the
/// same. Returns false, after a failure of the test, if one of them could not run.
inline bool ExpectSameByRecipe(const RecordedLine& line, const std::string& input,
                               const TempFolder& folder) {
  const std::string recipe = folder / "recipe.json";
  const std::string one = folder / ("one-" + line.output), two = folder / ("two-" + line.output);
  std::vector<std::string> words = line.words;
  words.insert(words.end(), {input, one, "--record", recipe, "--overwrite", "--no-sync"});
  const ToolResult recorded = RunTool(words);
  EXPECT_EQ(recorded.code, 0) << recorded.err;
  if (recorded.code != 0) return false;
  std::vector<std::string> again = {"apply", recipe, input, two, "--overwrite", "--no-sync"};
  again.insert(again.end(), line.applied.begin(), line.applied.end());
  const ToolResult applied = RunTool(again);
  EXPECT_EQ(applied.code, 0) << applied.err;
  if (applied.code != 0) return false;
  EXPECT_EQ(ReadBytes(one), ReadBytes(two)) << input;
  return true;
}

}  // namespace rasterkit::test
