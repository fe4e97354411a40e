#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tool/support/run_tool.h"

/// Other programs that read GeoTIFF files; only tests that compare use them.
namespace rasterkit::test {

bool HasProgram(const std::string& name);

/// Quotes a word for a shell.
std::string Quoted(const std::string& text);

/// Returns the stdout of a shell command.
std::string OutputOf(const std::string& command);

/// The JSON output of gdalinfo; discarded if it cannot read the file. It writes no file beside the
/// picture.
nlohmann::json GdalInfo(const std::string& file);

/// x, x per column, x per row, y, y per column, y per row of the top left corner; empty if the file
/// has no position.
std::vector<double> GeoTransform(const nlohmann::json& info);

/// gdalinfo prints at most 16 digits, and 15 after the point.
void ExpectSamePosition(const std::vector<double>& ours, const std::vector<double>& theirs,
                        const std::string& file);

class GdalPeer : public testing::Test {
 protected:
  void SetUp() override;

  TempFolder folder_;
};

/// Requires the corpus as well.
class GdalCorpus : public GdalPeer {
 protected:
  void SetUp() override;
};

}  // namespace rasterkit::test
