#include <system_error>

#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

/// Where the part after the last separator begins.
size_t NameStart(std::string_view fileName) {
  const size_t separator = fileName.find_last_of("/\\");
  return separator == std::string_view::npos ? 0 : separator + 1;
}

/// Where the extension begins; the end of the name when there is none.
size_t ExtensionStart(std::string_view fileName) {
  const size_t dot = fileName.rfind('.');
  return dot == std::string_view::npos || dot < NameStart(fileName) ? fileName.size() : dot;
}

}  // namespace

std::string ExtractFileExt(std::string_view fileName) {
  return std::string(fileName.substr(ExtensionStart(fileName)));
}

std::string ExtractFileName(std::string_view fileName) {
  return std::string(fileName.substr(NameStart(fileName)));
}

std::string ExtractFilePath(std::string_view fileName) {
  return std::string(fileName.substr(0, NameStart(fileName)));
}

std::string ChangeFileExt(std::string_view fileName, std::string_view extension) {
  return std::string(fileName.substr(0, ExtensionStart(fileName))).append(extension);
}

bool IsPdfName(std::string_view fileName) {
  return CompareText(ExtractFileExt(fileName), ".pdf") == 0;
}

std::filesystem::path ToPath(std::string_view fileName) {
  return std::filesystem::path(std::u8string(fileName.begin(), fileName.end()));
}

bool FileExists(const std::string& fileName) {
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(ToPath(fileName), ignored);
  return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

}  // namespace rasterkit
