#pragma once

#include <string>
#include <string_view>

/// What people type for files and folders. Internal to the room.
namespace rasterkit::detail {

bool IsFolder(const std::string& name);

/// The folder's name with a separator at its end.
std::string WithSeparator(const std::string& folder);

/// The place that `typed` means for somebody who is in `folder`: absolute names and "~" for the
/// user's own folder as they are, others below `folder`; without "." and ".." in it. "\" separates
/// folders where that leads to one that exists.
std::string PlaceOf(const std::string& typed, const std::string& folder);

/// Why no file should get this name (without a folder); a key of the resource table with a place
/// for the name, empty when all is well. Names that only other systems refuse count as well: files
/// travel.
std::string_view FaultOfName(const std::string& name);

/// As it fits into a message: a long name loses its middle.
std::string Shortened(const std::string& name);

}  // namespace rasterkit::detail
