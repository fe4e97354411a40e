#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <rasterkit/pictures/document/document.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/recipe.h>

#include "tool/command/batch.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// A picture that a verb changes: it is upright, and no pixel of it is read yet.
struct PictureWork {
  Picture picture;
  const Job& job;
  const PictureOptions& options;
  /// What the verb has to say and loses besides the report of saving.
  std::vector<std::string> notes = {}, warnings = {};
  /// Notes for --verbose.
  std::vector<std::string> details = {};
  std::vector<Loss> losses = {};
  /// Kinds that the verb leaves out by its nature: they are no loss.
  std::vector<LossKind> leftOut = {};
  /// See JobResult.
  std::vector<std::string> notCarriedOver = {};
  /// What was added so far, and how the picture is written.
  Recipe recipe = {};

  /// Adds a step to the picture, as a recipe does. Throws RangeError.
  void Add(const RecipeStep& step, const RecipeSlots& slots = {});

  /// How numbers of a second picture are shown: what --stretch says, if it was given.
  std::optional<NumberStretch> StretchOfSecond() const;
  /// The color of --background, and what --fill and --filter say.
  TColor Background() const;
  RotateOptions Corners() const;
  /// Paints transparent parts with the color of --background, because of what the picture becomes,
  /// and counts that as a loss. A picture without such parts stays as it is.
  void PaintTransparent(const std::string& reason);
  /// Counts as a loss that transparent parts are painted, if there are any.
  void NotePaintedTransparency(const std::string& reason);
  void LeavesOut(std::vector<LossKind> kinds) { leftOut = std::move(kinds); }
  /// What saving this picture in place of the work's own would give. Throws Error.
  Report Plan(const Picture& changed) const;
  /// The type of the output's name.
  PictureType TargetType() const;
  /// The pixels to look at.
  std::unique_ptr<TBitmap> Bitmap() const;
  /// Stops the work on this picture: nothing is written. Throws Failure(exitOutputNotWritten) with
  /// the reason.
  [[noreturn]] void Refuse(const std::string& reason) const;
};

/// What a verb does to a picture: it adds steps.
using PictureChange = std::function<void(PictureWork& work)>;

/// Opens a picture. Throws Failure(exitInputUnreadable); a PDF file is referred to its verb.
Picture OpenPicture(const std::string& file, const PictureOptions& options = {});

/// Opens all pages of a TIFF file, or the picture of another file. Throws as OpenPicture.
Document OpenDocument(const std::string& file, const PictureOptions& options = {});

/// Opens a page of it, which exists. Throws Failure(exitInputUnreadable).
Picture OpenPage(const Document& document, int page, const std::string& file);

/// How the output of a job is written.
SaveOptions SaveOptionsOf(const Job& job, const PictureOptions& options);

/// The upright pixels of a file to look at. Throws Failure(exitInputUnreadable).
std::unique_ptr<TBitmap> LoadUpright(const std::string& file);
/// The same of an open picture of that file.
std::unique_ptr<TBitmap> UprightPixels(const Picture& picture, const std::string& file);

/// How the library runs for these options: threads, progress, and an end on Ctrl-C.
Run RunOf(const PictureOptions& options);

/// Works on a picture of a job. Throws Failure in place of errors of the library.
void DoWork(const Job& job, const std::function<void()>& work);

/// Saves a document as the output of a job, or says what would be written. Throws Failure.
JobResult SaveDocument(const Document& document, const Job& job, const PictureOptions& options,
                       bool isDryRun);

/// Processes one picture: opens it, changes it, and writes it, or says what would be written if
/// `isDryRun`. Of a TIFF file the pages of `options.pages` are changed, one after another; a TIFF
/// output keeps the others, another output takes one page. Throws Failure.
JobResult ChangePicture(const Job& job, const PictureOptions& options, bool isDryRun,
                        const PictureChange& change = {});

}  // namespace rasterkit::tool
