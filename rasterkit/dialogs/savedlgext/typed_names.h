#pragma once

#include <string>
#include <string_view>

/// File and folder names as people type them. Internal to this folder.
namespace rasterkit::detail {

bool IsFolder(const std::string& name);

/// Returns the folder's name with a separator at its end.
std::string WithSeparator(const std::string& folder);

/// Resolves `typed` relative to `folder`: absolute names stay, "~" is the user's home folder; the
/// result has no "." and "..". "\" separates folders if that leads to an existing one.
std::string PlaceOf(const std::string& typed, const std::string& folder);

/// Returns why a file must not have this name (without a folder): a key of the resource table with
/// a placeholder for the name, or an empty text if the name is valid. Names that only other systems
/// refuse are invalid too, because files are copied between systems.
std::string_view FaultOfName(const std::string& name);

/// Shortens a long name for a message by removing its middle.
std::string Shortened(const std::string& name);

}  // namespace rasterkit::detail
