#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// Parts of file names. Both "/" and "\" separate folders here, so that names from either kind of
/// system split alike.
namespace rasterkit {

/// From the last "." of the file-name part, dot included: "a.tar.gz" gives ".gz", "dir.d/name"
/// gives "".
RASTERKIT_EXPORT std::string ExtractFileExt(std::string_view fileName);

/// The part after the last separator.
RASTERKIT_EXPORT std::string ExtractFileName(std::string_view fileName);

/// The folder with its trailing separator: "maps/a.bmp" gives "maps/", "a.bmp" gives "".
RASTERKIT_EXPORT std::string ExtractFilePath(std::string_view fileName);

/// Replaces the extension (or appends it when there is none); `extension` is given with its dot.
RASTERKIT_EXPORT std::string ChangeFileExt(std::string_view fileName, std::string_view extension);

/// Whether the extension is ".pdf", whatever its case.
RASTERKIT_EXPORT bool IsPdfName(std::string_view fileName);

/// The one door from a UTF-8 name to the file system's own.
RASTERKIT_EXPORT std::filesystem::path ToPath(std::string_view fileName);

/// True when the name leads to something that is not a folder.
RASTERKIT_EXPORT bool FileExists(const std::string& fileName);

}  // namespace rasterkit
