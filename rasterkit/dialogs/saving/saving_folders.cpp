#include <algorithm>
#include <filesystem>
#include <system_error>

#include <rasterkit/dialogs/saving/saving_folders.h>
#include <rasterkit/dialogs/saving/target_faults.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit::detail {
namespace {

constexpr const char* kSection = "Saving";
constexpr int kMostFolders = 6;

std::string KeyOf(int number) {
  return "Folder" + std::to_string(number);
}

}  // namespace

std::vector<std::string> RecentFolders() {
  std::vector<std::string> folders;
  for (int number = 1; number <= kMostFolders; ++number) {
    const std::string folder = ReadSetting(kSection, KeyOf(number)).value_or("");
    if (!folder.empty() && IsExistingFolder(folder)) folders.push_back(folder);
  }
  return folders;
}

void RememberFolder(const std::string& folder) {
  std::vector<std::string> folders = RecentFolders();
  folders.erase(std::remove(folders.begin(), folders.end(), folder), folders.end());
  folders.insert(folders.begin(), folder);
  for (int number = 1; number <= kMostFolders; ++number) {
    const auto at = static_cast<size_t>(number - 1);
    WriteSetting(kSection, KeyOf(number), at < folders.size() ? folders[at] : "");
  }
}

std::string FirstFolder(const std::string& file) {
  std::error_code error;
  const std::string current = std::filesystem::current_path(error).string();
  const std::string named = FolderOf(file);
  if (!named.empty()) return FolderOf(FullName(file, current));
  const std::vector<std::string> recent = RecentFolders();
  return recent.empty() ? current : recent.front();
}

}  // namespace rasterkit::detail
