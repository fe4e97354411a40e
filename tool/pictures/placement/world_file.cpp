#include "tool/pictures/placement/world_file.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <rasterkit/bitmaptools/files/world_file_name.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

#include "tool/arguments/numbers.h"

namespace rasterkit::tool {
namespace {

/// Largest size that is read: six lines and any notes below them.
constexpr size_t kLongestWorldFile = 64 * 1024;

/// Replaces the first `from` by `to`; false if there is none.
bool Replace(std::string& text, char from, char to) {
  const size_t at = text.find(from);
  if (at != std::string::npos) text[at] = to;
  return at != std::string::npos;
}

}  // namespace

std::optional<std::string> FindWorldFile(const std::string& picture) {
  const std::string upper = GetWorldFileExt(picture);
  if (upper.empty()) return std::nullopt;
  for (const std::string& extension : {upper, LowerCase(upper)}) {
    const std::string name = ChangeFileExt(picture, extension);
    std::error_code ignored;
    // Nobody has named this file: a pipe or a device of that name would block.
    const bool isRegular = std::filesystem::is_regular_file(ToPath(name), ignored);
    if (name != picture && isRegular) return name;
  }
  return std::nullopt;
}

std::optional<WorldFile> ReadWorldFile(const std::string& worldFile) {
  std::ifstream in(ToPath(worldFile), std::ios::binary);
  std::string text(kLongestWorldFile, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(in.gcount()));
  WorldFile result{worldFile, {}, false};
  std::istringstream words(text);
  for (double& number : result.affine) {
    std::string word;
    words >> word;
    if (word.find('.') == std::string::npos && Replace(word, ',', '.')) {
      result.hasDecimalCommas = true;
    }
    const auto value = ParseNumber(word);
    if (!value) return std::nullopt;
    number = *value;
  }
  return result;
}

}  // namespace rasterkit::tool
