#pragma once

#include <string_view>

/// The save window and its list of files.
namespace rasterkit {

/// The list of the files in a folder. "%s" is an error message of the system.
inline constexpr std::string_view rsFileListDate = "Date";
inline constexpr std::string_view rsFileListEmpty = "There are no files of this kind";
inline constexpr std::string_view rsFileListGone = "There is no such folder";
inline constexpr std::string_view rsFileListName = "Name";
inline constexpr std::string_view rsFileListReading = "The folder is being read ...";
inline constexpr std::string_view rsFileListSize = "Size";
inline constexpr std::string_view rsFileListUnreadable = "The folder cannot be read: %s";

/// The window around the list. "%s" is a file name.
inline constexpr std::string_view rsSaveAllFiles = "All files";
inline constexpr std::string_view rsSaveButton = "Save";
inline constexpr std::string_view rsSaveButtonHint = "Saves under this name";
inline constexpr std::string_view rsSaveChooseFolder = "Choose a folder";
inline constexpr std::string_view rsSaveChooseFolderHint = "Chooses another folder";
inline constexpr std::string_view rsSaveDetail = "Detail";
inline constexpr std::string_view rsSaveFileExists = "File already exists:\r\"%s\"\rOverwrite?";
/// Shown with its "%s" unfilled: the prompt of the folder chooser.
inline constexpr std::string_view rsSaveFileExistsPrompt =
    "File \"%s\" already exists - overwrite?";
inline constexpr std::string_view rsSaveFiles = "Files of the folder";
inline constexpr std::string_view rsSaveFilesHint =
    "Choose a file to take its name; Enter opens a folder, Backspace leaves it";
inline constexpr std::string_view rsSaveFilter = "Filter: ";
inline constexpr std::string_view rsSaveFilterHint = "Kind of the file, and which files are listed";
inline constexpr std::string_view rsSaveFolderUp = "One folder up";
inline constexpr std::string_view rsSaveGraphics = "Save Graphics";
inline constexpr std::string_view rsSaveList = "List";
inline constexpr std::string_view rsSaveName = "File name:";
inline constexpr std::string_view rsSaveNameHint = "Name of the file; a folder may stand before it";
inline constexpr std::string_view rsSaveNameIsExtension = "%s is an extension without a name.";
inline constexpr std::string_view rsSaveNameReserved = "The name %s is reserved by the system.";
inline constexpr std::string_view rsSaveNameUnfit =
    "The name %s has characters that a file's name cannot have.";
inline constexpr std::string_view rsSaveOptionsHint = "Settings for the file";
inline constexpr std::string_view rsSavePath = "Path:";
inline constexpr std::string_view rsSavePathHint =
    "The folder that is listed; type another one and press Enter";

}  // namespace rasterkit
