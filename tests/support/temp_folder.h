#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>

namespace rasterkit::test {

/// A folder of its own for one test, removed with all it holds.
class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "rasterkit-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "no temporary folder";
    path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  /// The full name of a file inside.
  std::string operator/(std::string_view name) const { return (path_ / name).string(); }

  /// Writes a file inside and returns its full name.
  std::string Write(std::string_view name, std::string_view content) const {
    const std::string fileName = *this / name;
    std::ofstream(fileName, std::ios::binary) << content;
    return fileName;
  }
  std::string Write(std::string_view name, std::span<const uint8_t> content) const {
    return Write(name,
                 std::string_view(reinterpret_cast<const char*>(content.data()), content.size()));
  }

  /// Names of all entries, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  std::filesystem::path path_;
};

/// The bytes of a file; empty when it cannot be read.
inline std::string ReadFile(const std::string& fileName) {
  std::ifstream file(fileName, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace rasterkit::test
