#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/dialogs/savedlgbitmap/save_options.h>

namespace rasterkit {

/// The state of the save window of graphics besides names and folders, without a window: the
/// record, the size in pixels, and the meaning of the chosen entry of the file list. Entries count
/// from 1 (see GetSaveFilter).
class SaveGraphicsModel {
 public:
  /// Reduces a compression mode above 2 to 2.
  explicit SaveGraphicsModel(const TrecSaveBitmap& rec);

  /// Returns the first selected entry: that of the name's extension if the name has a dot, else
  /// that of the type, else the first one.
  static int FirstFilterIndex(const std::string& fileName, int32_t type);

  /// Another entry was chosen.
  void FilterChange(int filterIndex);
  /// Returns the graphic type of the chosen entry.
  int32_t Type() const { return type_; }
  std::string DefaultExt() const;
  /// False for metafiles and invalid types.
  bool HasOptions() const;

  /// Returns the record that the settings window changes, with the chosen type.
  TrecSaveBitmap& RecordForOptions();

  /// Returns the record for a file of this entry.
  TrecSaveBitmap Result(int filterIndex) const;
  /// Returns the chosen name with the extension of the type, regardless of what was typed.
  static std::string ResultName(const std::string& chosen, int32_t type);

  int Width = 0, Height = 0;

 private:
  TrecSaveBitmap rec_;
  int32_t type_ = 0;
};

}  // namespace rasterkit
