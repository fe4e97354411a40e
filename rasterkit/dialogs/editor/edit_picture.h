#pragma once

#include <functional>
#include <optional>
#include <string>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/pictures/report.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/isolation.h>

class QWidget;

namespace rasterkit {

/// What the picture editor shows, and what it tells its host.
struct EditPictureOptions {
  /// Page of a document or a PDF file at the start, counted from 1.
  int page = 1;
  /// Resolution at which a PDF page or a metafile is drawn at first; 0: as remembered.
  double dpi = 0;
  /// Where files are read.
  Isolation isolation = Isolation::none;
  bool mayOpenOtherFiles = true;
  bool showsPages = true;
  /// Name, type and settings of saving can be changed.
  bool showsSave = true;
  /// Files are chosen in the desktop's own dialogs.
  bool usesDesktopDialogs = true;
  /// The list of steps is kept in the user's state folder while the window is open, so that it can
  /// be offered again after a crash.
  bool keepsJournal = true;
  /// Called after a file was written, with its full name and the recipe that made it.
  std::function<void(const std::string& file, const Recipe& recipe, const Report& report)> onSaved;
  /// Opens the documentation; empty: that of this library.
  std::function<void()> onHelp;
};

/// What came of it.
struct EditedPicture {
  /// The file that was written last.
  std::string file;
  /// The recipe that made it from the source.
  Recipe recipe;
  /// The page of a document or a PDF file that it is for, counted from 1.
  int page = 1;
  /// Resolution at which a PDF page or a metafile was drawn; 0 for other pictures.
  double dpi = 0;
  /// Type of the source; `pdf` for a page of a PDF file.
  PictureType sourceType = PictureType::unknown;
};

/// Lets the user edit the picture of a file: a picture of any kind that the library reads, a page
/// of a document or of a PDF file, a metafile. The file that was named is the one that OK writes,
/// after a question if it exists; "Save as" writes another. What is written is what the recipe
/// makes. Returns when the window is closed: nothing if nothing was written. Throws Error if the
/// file cannot be read or no window can be shown.
RASTERKIT_EXPORT std::optional<EditedPicture> EditPicture(const std::string& file,
                                                          const EditPictureOptions& options = {},
                                                          QWidget* parent = nullptr);

}  // namespace rasterkit
