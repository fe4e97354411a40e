#include <algorithm>
#include <filesystem>
#include <string_view>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/placement/side_file_names.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

/// Kinds of rasters that have world files and that no codec of the library reads.
constexpr std::string_view kOtherRasters[] = {"dib", "ecw", "img", "jpe", "jxl", "pbm", "pcx",
                                              "pgm", "ppm", "sid", "tga", "vrt", "xpm"};

/// JPEG 2000 has one kind of world file, whatever the picture's extension is.
constexpr std::string_view kJp2WorldFile = "j2w";

size_t NameStart(const std::string& file) {
  const size_t slash = file.rfind('/');
  return slash == std::string::npos ? 0 : slash + 1;
}

/// Where the dot of the extension is; the end of the name if there is none.
size_t DotOf(const std::string& file) {
  const size_t dot = file.rfind('.');
  return dot == std::string::npos || dot < NameStart(file) ? file.size() : dot;
}

std::string ExtensionOf(const std::string& file) {
  const size_t dot = DotOf(file);
  return dot == file.size() ? "" : file.substr(dot + 1);
}

bool IsAscii(char letter) {
  return static_cast<unsigned char>(letter) < 0x80;
}

bool IsPictureExtension(const std::string& extension) {
  const auto is = [&](std::string_view other) { return CompareText(extension, other) == 0; };
  return FindCodecOfExtension(extension) != nullptr ||
         std::any_of(std::begin(kOtherRasters), std::end(kOtherRasters), is);
}

/// Adds the name with the extension in lower and in upper case.
void AddBothCases(std::vector<std::string>& names, const std::string& picture,
                  const std::string& extension) {
  for (const std::string& written : {LowerCase(extension), UpperCase(extension)}) {
    std::string name = detail::WithExtension(picture, written);
    const bool isNew = std::find(names.begin(), names.end(), name) == names.end();
    if (isNew && name != picture) names.push_back(std::move(name));
  }
}

/// Adds the name with the extension in every other mixture of cases.
void AddMixedCases(std::vector<std::string>& names, const std::string& picture,
                   const std::string& extension) {
  constexpr size_t kMostLetters = 5;
  if (extension.size() > kMostLetters) return;
  for (uint32_t upper = 0; upper < 1U << extension.size(); ++upper) {
    std::string written = LowerCase(extension);
    for (size_t i = 0; i < written.size(); ++i) {
      if ((upper >> i & 1U) != 0) written.replace(i, 1, UpperCase(written.substr(i, 1)));
    }
    std::string name = detail::WithExtension(picture, written);
    const bool isNew = std::find(names.begin(), names.end(), name) == names.end();
    if (isNew && name != picture) names.push_back(std::move(name));
  }
}

/// The extensions of world files, in the order in which they count.
std::vector<std::string> WorldFileExtensions(const std::string& picture) {
  std::vector<std::string> extensions;
  if (NameStart(picture) == picture.size()) return extensions;
  const std::string extension = ExtensionOf(picture);
  if (extension.size() > 1 && IsAscii(extension.front()) && IsAscii(extension.back())) {
    extensions = {{extension.front(), extension.back(), 'w'}, extension + "w"};
  }
  const Codec* codec = FindCodecOfExtension(extension);
  const bool isJp2 = codec != nullptr && codec->type == PictureType::jp2;
  const bool hasOwn =
      std::find(extensions.begin(), extensions.end(), kJp2WorldFile) != extensions.end();
  if (isJp2 && !hasOwn) extensions.emplace_back(kJp2WorldFile);
  extensions.emplace_back("wld");
  return extensions;
}

/// True for two names of one directory entry on a system that takes no care of case.
bool IsOneEntry(const std::string& name, const std::string& other) {
  std::error_code error;
  if (CompareText(name, other) != 0) return false;
  if (std::filesystem::is_symlink(ToPath(name), error) ||
      std::filesystem::is_symlink(ToPath(other), error)) {
    return false;
  }
  return std::filesystem::equivalent(ToPath(name), ToPath(other), error) && !error &&
         std::filesystem::hard_link_count(ToPath(name), error) == 1;
}

}  // namespace

std::vector<std::string> WorldFileNames(const std::string& picture) {
  std::vector<std::string> names;
  for (const std::string& extension : WorldFileExtensions(picture)) {
    AddBothCases(names, picture, extension);
  }
  return names;
}

namespace detail {

std::vector<std::string> AllWorldFileNames(const std::string& picture) {
  std::vector<std::string> names;
  for (const std::string& extension : WorldFileExtensions(picture)) {
    AddBothCases(names, picture, extension);
    AddMixedCases(names, picture, extension);
  }
  return names;
}

std::vector<std::string> WorldFilesBeside(const std::string& picture) {
  std::vector<std::string> found;
  for (const std::string& name : AllWorldFileNames(picture)) {
    std::error_code error;
    const auto type = std::filesystem::status(ToPath(name), error).type();
    if (type == std::filesystem::file_type::not_found) continue;
    const auto isSame = [&](const std::string& other) { return IsOneEntry(name, other); };
    if (std::none_of(found.begin(), found.end(), isSame)) found.push_back(name);
  }
  return found;
}

std::string WithExtension(const std::string& picture, const std::string& extension) {
  return picture.substr(0, DotOf(picture)) + "." + extension;
}

std::vector<std::string> ProjectionNames(const std::string& picture) {
  std::vector<std::string> names;
  AddBothCases(names, picture, "prj");
  return names;
}

std::string AuxXmlName(const std::string& picture) {
  return picture + ".aux.xml";
}

std::vector<std::string> AttachedNames(const std::string& picture) {
  std::vector<std::string> names;
  for (const char* ending : {".aux.xml", ".ovr", ".msk", ".msk.ovr"}) {
    names.push_back(picture + ending);
  }
  return names;
}

std::vector<std::string> Neighbors(const std::string& picture) {
  const std::string folder = picture.substr(0, NameStart(picture));
  const std::string stem = picture.substr(folder.size(), DotOf(picture) - folder.size());
  std::vector<std::string> neighbors;
  std::error_code error;
  std::filesystem::directory_iterator entries(folder.empty() ? "." : ToPath(folder), error);
  for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
    const std::string other = entries->path().filename().string();
    if (!other.starts_with(stem) || folder + other == picture) continue;
    if (other.substr(0, DotOf(other)) != stem || !IsPictureExtension(ExtensionOf(other))) continue;
    std::error_code ignored;
    if (entries->is_regular_file(ignored)) neighbors.push_back(folder + other);
  }
  std::sort(neighbors.begin(), neighbors.end());
  return neighbors;
}

}  // namespace detail
}  // namespace rasterkit
