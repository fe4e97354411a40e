#include "apps/rasterkit/world_file.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fstream>
#include <locale>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/host/runtime/file_name.h>

namespace rasterkit::tool {

std::optional<std::string> FindWorldFile(const std::string& picture) {
  const std::string upper = GetWorldFileExt(picture);
  if (upper.empty()) return std::nullopt;
  std::string lower = upper;
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const std::string& extension : {upper, lower}) {
    const std::string name = ChangeFileExt(picture, extension);
    if (name != picture && FileExists(name)) return name;
  }
  return std::nullopt;
}

std::optional<WorldFile> ReadWorldFile(const std::string& worldFile) {
  std::ifstream in(ToPath(worldFile));
  in.imbue(std::locale::classic());
  WorldFile result{worldFile, {}};
  for (double& number : result.affine) {
    if (!(in >> number) || !std::isfinite(number)) return std::nullopt;
  }
  return result;
}

}  // namespace rasterkit::tool
