#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// Parts of file names. Both "/" and "\" separate folders on every system.
namespace rasterkit {

/// Returns the extension, from the last "." of the file name on: "a.tar.gz" gives ".gz",
/// "dir.d/name" gives "".
RASTERKIT_EXPORT std::string ExtractFileExt(std::string_view fileName);

/// Returns the part after the last separator.
RASTERKIT_EXPORT std::string ExtractFileName(std::string_view fileName);

/// Returns the folder with its trailing separator: "maps/a.bmp" gives "maps/", "a.bmp" gives "".
RASTERKIT_EXPORT std::string ExtractFilePath(std::string_view fileName);

/// Replaces the extension, or appends it if there is none. `extension` includes the dot.
RASTERKIT_EXPORT std::string ChangeFileExt(std::string_view fileName, std::string_view extension);

/// True if the extension is ".pdf", ignoring case.
RASTERKIT_EXPORT bool IsPdfName(std::string_view fileName);

/// Converts a UTF-8 file name to a path of the file system. All file names go through it.
RASTERKIT_EXPORT std::filesystem::path ToPath(std::string_view fileName);

/// True if the name exists and is not a folder.
RASTERKIT_EXPORT bool FileExists(const std::string& fileName);

}  // namespace rasterkit
