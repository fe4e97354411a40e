#pragma once

#include <string>

/// Whether a file can be written. Internal to this folder.
namespace rasterkit::detail {

/// The full name of what was typed: relative names are taken from `folder`, "~" is the user's home
/// folder, "." and ".." are resolved.
std::string FullName(const std::string& typed, const std::string& folder);

/// The folder of a full name without a separator at its end, except for the root.
std::string FolderOf(const std::string& file);

/// The part of a name after the last separator.
std::string NameIn(const std::string& file);

bool IsExistingFolder(const std::string& name);

/// Whether something has this name, also a link that leads nowhere; true if that cannot be told.
bool IsExisting(const std::string& file);

/// Says in the user's language why a file of this full name cannot be written; empty if it can, as
/// far as can be told before writing. Links are followed.
std::string FaultOfTarget(const std::string& file);

/// The name without its middle, if it is too long for a line.
std::string ShortenedName(const std::string& name);

}  // namespace rasterkit::detail
