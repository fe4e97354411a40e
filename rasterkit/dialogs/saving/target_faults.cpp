#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <rasterkit/dialogs/saving/target_faults.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_facts.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

namespace fs = std::filesystem;

/// The limit of nearly every file system, in bytes.
constexpr size_t kLongestName = 255;
/// A name that is tried and never written.
constexpr char kNoFile[] = ".rasterkit-new-file";

std::string Said(std::string_view key, const std::string& name) {
  const std::string shown = ShortenedName(name);
  return FormatText(ResourceString(key), {&shown, 1});
}

bool IsUnfit(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7f;
}

/// Returns the start of the character at `position`.
size_t CharacterStart(const std::string& text, size_t position) {
  while (position > 0 && (static_cast<unsigned char>(text[position]) & 0xc0) == 0x80) --position;
  return position;
}

/// Whether a save under this name would be taken.
bool IsSavable(const std::string& file) {
  try {
    RequireSavable(file);
    return true;
  } catch (const Error&) {
    return false;
  }
}

/// Where a link leads, if anywhere.
fs::path Followed(const fs::path& file) {
  constexpr int kMostLinks = 40;
  fs::path at = file;
  std::error_code error;
  for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(at, error)); ++i) {
    const fs::path next = fs::read_symlink(at, error);
    if (error) break;
    at = next.is_absolute() ? next : at.parent_path() / next;
  }
  return at;
}

}  // namespace

std::string FullName(const std::string& typed, const std::string& folder) {
  const char* home = std::getenv("HOME");
  const bool isInHome = (typed == "~" || typed.starts_with("~/")) && home != nullptr;
  const std::string name = isInHome ? home + typed.substr(1) : typed;
  return (ToPath(folder) / ToPath(name)).lexically_normal().string();
}

std::string FolderOf(const std::string& file) {
  return ToPath(file).parent_path().string();
}

std::string NameIn(const std::string& file) {
  return ToPath(file).filename().string();
}

bool IsExistingFolder(const std::string& name) {
  std::error_code error;
  return fs::is_directory(ToPath(name), error);
}

bool IsExisting(const std::string& file) {
  std::error_code error;
  return fs::symlink_status(ToPath(file), error).type() != fs::file_type::not_found;
}

std::string FaultOfTarget(const std::string& file) {
  const std::string name = NameIn(file);
  if (name.empty()) return ResourceString(rsSavingFaultNoName);
  if (std::any_of(name.begin(), name.end(), IsUnfit)) return Said(rsSaveNameUnfit, name);
  if (name.size() > kLongestName) return Said(rsFileNameTooLong, name);
  if (name.find_first_not_of(". ") == std::string::npos) return Said(rsSavingFaultTarget, name);
  const std::string folder = FolderOf(file);
  if (!IsExistingFolder(folder)) return Said(rsNoSuchFolder, folder);
  if (IsExistingFolder(file)) return Said(rsFileIsFolder, name);
  const fs::path target = Followed(ToPath(file));
  const std::string place = target.parent_path().string();
  if (!IsExistingFolder(place)) return Said(rsNoSuchFolder, place);
  if (IsSavable(file)) return {};
  // Where the folder takes other files, the file itself is protected.
  const bool isFolder = !IsSavable((target.parent_path() / kNoFile).string());
  return isFolder ? Said(rsSavingFaultReadOnly, place) : Said(rsSavingFaultTarget, file);
}

std::string ShortenedName(const std::string& name) {
  constexpr size_t kKept = 40;
  if (name.size() <= 2 * kKept + 3) return name;
  const size_t head = CharacterStart(name, kKept);
  const size_t tail = CharacterStart(name, name.size() - kKept);
  return name.substr(0, head) + "…" + name.substr(tail);
}

}  // namespace rasterkit::detail
