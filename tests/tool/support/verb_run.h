#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/raster/raster.h>

#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {

/// Runs a verb that changes pictures on a picture of the test.
class VerbTest : public testing::Test {
 protected:
  /// Saves the picture as in.png and runs `verb in.png out options`.
  ToolResult RunVerb(const std::string& verb, const Raster& raster,
                     const std::vector<std::string>& options, const std::string& out = "out.png") {
    SavePngFile(folder_ / "in.png", raster);
    std::vector<std::string> line = {verb, folder_ / "in.png", folder_ / out, "--overwrite"};
    line.insert(line.end(), options.begin(), options.end());
    return RunTool(line);
  }

  /// The picture that the verb writes.
  Raster Changed(const std::string& verb, const Raster& raster,
                 const std::vector<std::string>& options, const std::string& out = "out.png") {
    const ToolResult result = RunVerb(verb, raster, options, out);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "") << "nothing is lost";
    return LoadFile(folder_ / out);
  }

  TempFolder folder_;
};

}  // namespace rasterkit::test
