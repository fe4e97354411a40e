#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>

#include <rasterkit/dialogs/savedlgext/typed_names.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

/// The limit of nearly every file system, in bytes.
constexpr size_t kLongestName = 255;

std::string WithoutHome(const std::string& typed) {
  const char* home = std::getenv("HOME");
  const bool isInHome = typed == "~" || typed.starts_with("~/");
  return isInHome && home != nullptr ? home + typed.substr(1) : typed;
}

std::string Below(const std::string& folder, const std::string& name) {
  return (ToPath(folder) / ToPath(name)).lexically_normal().string();
}

bool IsBlank(const std::string& text) {
  return text.find_first_not_of(' ') == std::string::npos;
}

bool IsUnfit(char character) {
  const auto byte = static_cast<unsigned char>(character);
  // Wildcards are meant as a filter and would act as one when the file is opened.
  return byte < 0x20 || byte == 0x7f || character == '*' || character == '?';
}

/// Whether the name is a device on other systems, with any extension.
bool IsDevice(const std::string& name) {
  std::string stem = name.substr(0, name.find('.'));
  stem.erase(std::min(stem.find_last_not_of(' ') + 1, stem.size()));
  stem = UpperCase(stem);
  constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN",    "AUX",
                                                        "NUL", "CONIN$", "CONOUT$"};
  if (std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end()) return true;
  const bool isPort = stem.starts_with("COM") || stem.starts_with("LPT");
  return isPort && stem.size() == 4 && stem[3] >= '1' && stem[3] <= '9';
}

/// Returns the start of the character at `position`.
size_t CharacterStart(const std::string& text, size_t position) {
  while (position > 0 && (static_cast<unsigned char>(text[position]) & 0xc0) == 0x80) --position;
  return position;
}

}  // namespace

bool IsFolder(const std::string& name) {
  std::error_code error;
  return std::filesystem::is_directory(ToPath(name), error);
}

std::string WithSeparator(const std::string& folder) {
  return folder.ends_with('/') || folder.ends_with('\\') ? folder : folder + '/';
}

std::string PlaceOf(const std::string& typed, const std::string& folder) {
  std::string place = Below(folder, WithoutHome(typed));
  if (IsFolder(place) || typed.find('\\') == std::string::npos) return place;
  std::string withSlashes = typed;
  std::replace(withSlashes.begin(), withSlashes.end(), '\\', '/');
  std::string other = Below(folder, WithoutHome(withSlashes));
  return IsFolder(other) ? other : place;
}

std::string_view FaultOfName(const std::string& name) {
  if (IsBlank(ChangeFileExt(name, ""))) return rsSaveNameIsExtension;
  if (std::any_of(name.begin(), name.end(), IsUnfit)) return rsSaveNameUnfit;
  if (IsDevice(name)) return rsSaveNameReserved;
  return name.size() > kLongestName ? rsFileNameTooLong : std::string_view();
}

std::string Shortened(const std::string& name) {
  constexpr size_t kKept = 40;
  if (name.size() <= 2 * kKept + 3) return name;
  const size_t head = CharacterStart(name, kKept);
  const size_t tail = CharacterStart(name, name.size() - kKept);
  return name.substr(0, head) + "…" + name.substr(tail);
}

}  // namespace rasterkit::detail
