#pragma once

#include <string>
#include <vector>

#include <rasterkit/metadata/edit/metadata_edit.h>
#include <rasterkit/pictures/pending_save.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

namespace detail {
struct FileParts;
}

/// Adds what `edit` strips and removes.
RASTERKIT_EXPORT void AddStrips(MetadataEdit& strips, const MetadataEdit& edit);

/// The strips in steps of a recipe: no page of a file may keep what they remove.
RASTERKIT_EXPORT MetadataEdit StripsIn(const std::vector<RecipeStep>& steps);

/// What a recipe makes of a picture, to be saved. A TIFF file that keeps the other pages of the
/// picture's file keeps nothing on them that a step of the picture strips.
///
///     RecipeOutput(Picture::Open("scans.tif"), recipe).Save("out.tif",
///     SaveOptionsOf(recipe.save));
class RASTERKIT_EXPORT RecipeOutput {
 public:
  /// Throws as ApplyRecipe.
  RecipeOutput(const Picture& source, const Recipe& recipe, const RecipeSlots& slots = {});
  /// The same for a picture that has its steps, and lacks what `save` says about depth and
  /// metadata.
  RecipeOutput(const Picture& changed, const RecipeSave& save);

  /// The page that was changed.
  const Picture& Page() const { return page_; }

  /// As those of Picture. They throw FormatError and UnsupportedError too if another page has
  /// metadata to be stripped and cannot be read.
  Report Plan(const std::string& file, const SaveOptions& options) const;
  Report PlanStream(const SaveOptions& options) const;
  Report Save(const std::string& file, const SaveOptions& options, const Run& run = {}) const;
  /// Does all of Save but the last step.
  PendingSave Prepare(const std::string& file, const SaveOptions& options,
                      const Run& run = {}) const;
  Report Save(TStream& stream, const SaveOptions& options, const Run& run = {}) const;

 private:
  bool StripsOthers(PictureType type, const SaveOptions& options) const;
  detail::FileParts Parts(const SaveOptions& options) const;

  Picture page_;
  MetadataEdit strips_;
};

}  // namespace rasterkit
