#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tool/support/run_tool.h"

/// Other programs that read GeoTIFF files; nothing here needs them but tests that compare.
namespace rasterkit::test {

bool HasProgram(const std::string& name);

/// For a shell.
std::string Quoted(const std::string& text);

/// What a shell command prints on stdout.
std::string OutputOf(const std::string& command);

/// What gdalinfo prints as JSON, discarded when it reads nothing. Nothing is written beside the
/// file.
nlohmann::json GdalInfo(const std::string& file);

/// x, x per column, x per row, y, y per column, y per row of the upper left corner; empty when the
/// file has no position.
std::vector<double> GeoTransform(const nlohmann::json& info);

/// gdalinfo prints 16 digits at most, and 15 behind the point.
void ExpectSamePosition(const std::vector<double>& ours, const std::vector<double>& theirs,
                        const std::string& file);

class GdalPeer : public testing::Test {
 protected:
  void SetUp() override;

  TempFolder folder_;
};

/// The corpus as well.
class GdalCorpus : public GdalPeer {
 protected:
  void SetUp() override;
};

}  // namespace rasterkit::test
