#pragma once

#include <string_view>

/// The picture file dialogs and their preview. "%s" is a file name.
namespace rasterkit {

inline constexpr std::string_view rsFileIsFolder = "%s is a folder.";
inline constexpr std::string_view rsFileNameTooLong = "The name %s is too long.";
inline constexpr std::string_view rsNoSuchFolder = "There is no folder %s.";
inline constexpr std::string_view rsOpenPicture = "Open picture";
inline constexpr std::string_view rsPreview = "Preview";
inline constexpr std::string_view rsPreviewBroken = "The file cannot be read as a picture";
inline constexpr std::string_view rsPreviewLoading = "Loading ...";
inline constexpr std::string_view rsPreviewNone = "No preview";
inline constexpr std::string_view rsPreviewTooLarge = "Too large for a preview";
inline constexpr std::string_view rsReplaceFile = "%s exists already.\nReplace it?";
inline constexpr std::string_view rsSavePicture = "Save picture";

}  // namespace rasterkit
