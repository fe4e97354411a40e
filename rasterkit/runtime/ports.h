#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>

/// What the lower floors need from whoever is on top of them. Each port is a function that the host
/// may fill; an empty port answers as a cancelled dialog and shows nothing. Fill ports before the
/// first call that uses them; a port is called on the thread that needs it.
namespace rasterkit {

/// A picture file dialog's state: in before it runs, out after it was confirmed.
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

struct Ports {
  /// Shows a modal message.
  std::function<void(const std::string& text)> messageBox;
  /// Asks a question that is answered with Yes or No; true for Yes.
  std::function<bool(const std::string& question)> confirmation;
  /// Runs a folder chooser that starts at `directory` and shows `prompt`; true when the user chose
  /// one, which is then in `directory`. `options` are those of SelectDirectoryEx.
  std::function<bool(std::string& directory, const std::string& prompt, int options)> folderChooser;
  /// Runs a picture open or save dialog; true when the user confirmed.
  std::function<bool(PictureFileDialog& dialog)> pictureFileDialog;
  /// Lets the user pick and render a page of a PDF file into `pictureFile`, which may be changed;
  /// above 0 on success.
  std::function<int(const std::string& pdfFile, std::string& pictureFile)> pdfPageChooser;
  /// Turns the host's own event loop once, without waiting.
  std::function<void()> messagePump;
  /// The colour 0x00BBGGRR behind a system colour's index.
  std::function<uint32_t(uint32_t index)> systemColor;
  /// A value of the host's settings file, or nothing when that has none of the name.
  std::function<std::optional<std::string>(const std::string& section, const std::string& key)>
      readSetting;
  /// Keeps a value in the host's settings file.
  std::function<void(const std::string& section, const std::string& key, const std::string& value)>
      writeSetting;
  /// Shows the help topic with this number.
  std::function<void(int helpContext)> helpTopic;
  /// The minute of the local day, 0 to 1439; the system's clock when empty.
  std::function<int()> minuteOfDay;
};

/// The ports of this process.
RASTERKIT_EXPORT Ports& HostPorts();

/// Calls the port, or does what an empty one means.
RASTERKIT_EXPORT void ShowMessage(const std::string& text);
/// False when the port is empty.
RASTERKIT_EXPORT bool Confirm(const std::string& question);
/// Lets the user choose a folder, starting at `directory`, which becomes the one chosen; false, and
/// `directory` as it was, when the user cancelled. `options` are bits for the chooser of a host;
/// the one that comes with the dialogs has no choice to make and passes over them.
RASTERKIT_EXPORT bool SelectDirectoryEx(std::string& directory, const std::string& prompt,
                                        int options);
RASTERKIT_EXPORT bool ExecutePictureFileDialog(PictureFileDialog& dialog);
/// Black when the port is empty.
RASTERKIT_EXPORT uint32_t GetSysColor(uint32_t index);
/// Nothing when the port is empty.
RASTERKIT_EXPORT std::optional<std::string> ReadSetting(const std::string& section,
                                                        const std::string& key);
RASTERKIT_EXPORT void WriteSetting(const std::string& section, const std::string& key,
                                   const std::string& value);
RASTERKIT_EXPORT void ShowHelpTopic(int helpContext);
/// Minute of the local day, 0 to 1439.
RASTERKIT_EXPORT int MinuteOfDay();

}  // namespace rasterkit
