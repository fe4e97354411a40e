#include "tests/tool/support/gdal_peer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tests/support/corpus.h"

namespace rasterkit::test {

using nlohmann::json;

std::string Quoted(const std::string& text) {
  return "'" + text + "'";
}

std::string OutputOf(const std::string& command) {
  std::string output;
  FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) return output;
  char buffer[4096];
  for (size_t count; (count = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
    output.append(buffer, count);
  pclose(pipe);
  return output;
}

bool HasProgram(const std::string& name) {
  return !OutputOf("command -v " + name).empty();
}

json GdalInfo(const std::string& file) {
  const std::string output =
      OutputOf("gdalinfo --config GDAL_PAM_ENABLED NO -json " + Quoted(file));
  return json::parse(output, nullptr, false);
}

std::vector<double> GeoTransform(const json& info) {
  return info.contains("geoTransform") ? info["geoTransform"].get<std::vector<double>>()
                                       : std::vector<double>();
}

void ExpectSamePosition(const std::vector<double>& ours, const std::vector<double>& theirs,
                        const std::string& file) {
  ASSERT_EQ(ours.size(), theirs.size()) << file;
  for (size_t i = 0; i < ours.size(); ++i)
    EXPECT_NEAR(ours[i], theirs[i], std::max(1e-14 * std::abs(theirs[i]), 1e-15))
        << file << " number " << i;
}

void GdalPeer::SetUp() {
  for (const char* program : {"gdalinfo", "gdal_translate", "gdallocationinfo"})
    if (!HasProgram(program)) GTEST_SKIP() << program << " is not installed";
}

void GdalCorpus::SetUp() {
  GdalPeer::SetUp();
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
}

}  // namespace rasterkit::test
