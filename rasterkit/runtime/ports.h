#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>

/// Functions that the host provides to the library. Each port may be filled or left empty; an empty
/// port shows nothing and answers as a canceled dialog does. Fill ports before the first call that
/// uses them. A port is called on the thread that needs it.
namespace rasterkit {

/// The state of a picture file dialog: input before it runs, output after the user confirmed it.
struct PictureFileDialog {
  enum class Kind { open, save } kind = Kind::open;
  /// Pairs of a description and a pattern, separated by "|".
  std::string Filter;
  /// 1-based; the index that is chosen when the dialog closes.
  int FilterIndex = 1;
  std::string InitialDir;
  std::string FileName;
  bool ofOverwritePrompt = false;
  /// The dialog must not change the process's current folder.
  bool ofNoChangeDir = false;
};

/// The functions that a host may fill.
struct Ports {
  /// Shows a modal message.
  std::function<void(const std::string& text)> messageBox;
  /// Asks a question to be answered with Yes or No; true for Yes.
  std::function<bool(const std::string& question)> confirmation;
  /// Runs a folder chooser that starts at `directory` and shows `prompt`. True if the user chose a
  /// folder, which is then in `directory`. `options` are those of SelectDirectoryEx.
  std::function<bool(std::string& directory, const std::string& prompt, int options)> folderChooser;
  /// Runs a picture open or save dialog; true if the user confirmed.
  std::function<bool(PictureFileDialog& dialog)> pictureFileDialog;
  /// Lets the user pick and render a page of a PDF file into `pictureFile`, which may be changed;
  /// above 0 on success.
  std::function<int(const std::string& pdfFile, std::string& pictureFile)> pdfPageChooser;
  /// Processes the host's pending events once, without waiting.
  std::function<void()> messagePump;
  /// Returns the color 0x00BBGGRR of a system color's index.
  std::function<uint32_t(uint32_t index)> systemColor;
  /// Reads a value of the host's settings file; no value if the key is missing.
  std::function<std::optional<std::string>(const std::string& section, const std::string& key)>
      readSetting;
  /// Writes a value to the host's settings file.
  std::function<void(const std::string& section, const std::string& key, const std::string& value)>
      writeSetting;
  /// Shows the help topic with this number.
  std::function<void(int helpContext)> helpTopic;
  /// Returns the minute of the local day, 0 to 1439. If empty, the system clock is used.
  std::function<int()> minuteOfDay;
};

/// The ports of this process.
RASTERKIT_EXPORT Ports& HostPorts();

/// Shows a message; no-op if the port is empty.
RASTERKIT_EXPORT void ShowMessage(const std::string& text);
/// Asks a question; false if the port is empty.
RASTERKIT_EXPORT bool Confirm(const std::string& question);
/// Lets the user choose a folder. `directory` is the folder to start at and then the chosen one.
/// False, with `directory` unchanged, if the user canceled or the port is empty. `options` are bits
/// for a host's own chooser; the chooser of librasterkit-dialogs ignores them.
RASTERKIT_EXPORT bool SelectDirectoryEx(std::string& directory, const std::string& prompt,
                                        int options);
/// Runs a picture file dialog; false if the user canceled or the port is empty.
RASTERKIT_EXPORT bool ExecutePictureFileDialog(PictureFileDialog& dialog);
/// Returns a system color, 0x00BBGGRR; black if the port is empty.
RASTERKIT_EXPORT uint32_t GetSysColor(uint32_t index);
/// Reads a setting; no value if the port is empty or the key is missing.
RASTERKIT_EXPORT std::optional<std::string> ReadSetting(const std::string& section,
                                                        const std::string& key);
/// Writes a setting; no-op if the port is empty.
RASTERKIT_EXPORT void WriteSetting(const std::string& section, const std::string& key,
                                   const std::string& value);
/// Shows a help topic; no-op if the port is empty.
RASTERKIT_EXPORT void ShowHelpTopic(int helpContext);
/// Returns the minute of the local day, 0 to 1439.
RASTERKIT_EXPORT int MinuteOfDay();

}  // namespace rasterkit
