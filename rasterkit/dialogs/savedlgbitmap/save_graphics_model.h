#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/dialogs/savedlgbitmap/save_options.h>

namespace rasterkit {

/// What the save window of graphics knows beside names and folders, without a window: the record,
/// the size in pixels, and what the chosen entry of the file list means. Entries count from 1 (see
/// GetSaveFilter).
class SaveGraphicsModel {
 public:
  /// A compression mode above 2 becomes 2.
  explicit SaveGraphicsModel(const TrecSaveBitmap& rec);

  /// The entry to begin with: that of the name's extension where the name holds a dot anywhere,
  /// else that of the type; the first one when there is neither.
  static int FirstFilterIndex(const std::string& fileName, int32_t type);

  /// Another entry was chosen.
  void FilterChange(int filterIndex);
  /// The graphic type of the chosen entry.
  int32_t Type() const { return type_; }
  std::string DefaultExt() const;
  /// Metafiles, and what is no type, have no options.
  bool HasOptions() const;

  /// What the settings window changes, begun with the chosen type.
  TrecSaveBitmap& RecordForOptions();

  /// The record for a file of this entry.
  TrecSaveBitmap Result(int filterIndex) const;
  /// The chosen name with the extension that belongs to the type, whatever was typed.
  static std::string ResultName(const std::string& chosen, int32_t type);

  int Width = 0, Height = 0;

 private:
  TrecSaveBitmap rec_;
  int32_t type_ = 0;
};

}  // namespace rasterkit
