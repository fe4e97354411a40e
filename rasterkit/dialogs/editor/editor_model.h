#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/dialogs/editor/edit_picture.h>
#include <rasterkit/dialogs/editor/editor_view.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/pictures/report.h>

namespace rasterkit {

/// The picture editor without its window: a source, a list of recipe steps, and a place in that
/// list. Undo and redo move the place; saving runs the list up to the place on the source. The only
/// pixels are those of the source and of the result.
///
/// Events never throw: errors are told by the view, and picture and steps stay as they were. Events
/// that arrive while a job runs are ignored but for Cancel and Close. Not thread-safe.
class EditorModel {
 public:
  EditorModel(EditorView& view, const EditPictureOptions& options);
  ~EditorModel();
  EditorModel(const EditorModel&) = delete;
  EditorModel& operator=(const EditorModel&) = delete;

  /// Opens the file that is edited, before the window is shown: headers are read here, and a target
  /// that cannot be written is told here; pixels come by a job. Throws Error.
  void Open(const std::string& file, int page);

  // Facts.

  bool HasPicture() const;
  /// As opened, upright.
  const Picture& Source() const;
  /// With the steps up to the place.
  const Picture& Result() const;
  const TBitmap* Pixels() const;
  const std::vector<RecipeStep>& Steps() const;
  size_t Place() const;
  bool CanUndo() const;
  bool CanRedo() const;
  /// Whether OK would write something that is not there already.
  bool CanConfirm() const;
  /// Whether closing would lose work.
  bool HasUnsavedWork() const;
  bool IsWorking() const;
  /// The file whose pages can be shown: the one that was opened, or that was written since.
  const std::string& PagesFile() const;
  /// The file that OK writes, and how.
  const std::string& TargetFile() const;
  /// Why the suggested target is not the file that was opened: "Files of the type webp cannot be
  /// written. The picture is saved as photo.png."; empty if it is.
  const std::string& TargetNote() const;
  const RecipeSave& Saving() const;
  int Pages() const;
  int Page() const;
  /// Resolution at which a PDF page or a metafile is drawn; nothing for other pictures.
  std::optional<double> DrawingDpi() const;
  /// "plan.tif: 4000 x 3000 pixels, 24 bits, 300 dpi, 34.3 MiB".
  std::string Facts() const;
  /// "Lossless: the compressed pixels are moved", or "Compressed again: ...".
  std::string SavingFacts() const;
  /// "Lost: opacity, resolution"; empty if nothing is.
  std::string Losses() const;
  /// A line for each loss with its reason, in English; empty if nothing is lost.
  std::string LossDetails() const;
  std::string Title() const;
  /// "Turn left", "Crop to 800 x 600" for each step.
  std::vector<std::string> StepNames() const;
  Recipe ToRecipe() const;
  const std::optional<EditedPicture>& Written() const;

  // Events.

  void Add(const RecipeStep& step);
  void TurnLeft();
  void TurnRight();
  void Mirror();
  void Flip();
  void Rotate(double degrees);
  void Gray();
  void Mono();
  void Colors256();
  void Crop();
  void Values();
  void Size();
  void Undo();
  void Redo();
  /// Moves the place in the list of steps, as several calls of Undo or Redo do.
  void GoTo(size_t place);
  /// Draws a PDF page or a metafile at another resolution; a resolution that needs too much memory
  /// is refused before the picture is given up.
  void SetDrawingDpi(double dpi);
  void ShowPage(int page);
  void OpenOther();
  void OpenDropped(const std::string& file);
  void SaveAs();
  void Settings();
  /// Writes the target and goes on.
  void Save();
  /// Writes the target and closes.
  void Confirm();
  /// Cancels a job, else closes; asks if work would be lost. False if the window stays.
  bool CancelOrClose();
  /// Closes the window as CancelOrClose does, also while an event waits for a window that was
  /// closed. False while a job runs, and if the user stays.
  bool EndSession();
  void Help();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace rasterkit
