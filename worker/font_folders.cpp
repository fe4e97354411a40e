#include "worker/font_folders.h"

#include <cstdlib>

namespace rasterkit::worker {
namespace {

void AddBelow(const char* variable, const std::string& otherwise, const char* name,
              std::vector<std::string>& folders) {
  const char* const value = std::getenv(variable);
  const std::string base = value != nullptr && value[0] == '/' ? value : otherwise;
  if (!base.empty()) folders.push_back(base + name);
}

}  // namespace

std::vector<std::string> FontFolders() {
  std::vector<std::string> folders = {"/usr/share/fonts",
                                      "/usr/local/share/fonts",
                                      "/usr/share/X11/fonts",
                                      "/usr/share/fontconfig",
                                      "/usr/local/share/fontconfig",
                                      "/usr/share/texmf/fonts",
                                      "/usr/share/ghostscript",
                                      "/etc/fonts",
                                      "/var/cache/fontconfig",
                                      "/usr/lib/X11/fonts"};
  const char* const home = std::getenv("HOME");
  const std::string user = home != nullptr && home[0] == '/' ? home : "";
  if (!user.empty()) folders.push_back(user + "/.fonts");
  AddBelow("XDG_DATA_HOME", user.empty() ? "" : user + "/.local/share", "/fonts", folders);
  AddBelow("XDG_CONFIG_HOME", user.empty() ? "" : user + "/.config", "/fontconfig", folders);
  AddBelow("XDG_CACHE_HOME", user.empty() ? "" : user + "/.cache", "/fontconfig", folders);
  return folders;
}

}  // namespace rasterkit::worker
