#include <memory>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/recipes/recipe_output.h>
#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/pictures/save_pages.h>
#include <rasterkit/pictures/side_file_losses.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

template <class AnyStep>
MetadataEdit StripsOfSteps(const std::vector<AnyStep>& steps) {
  MetadataEdit strips;
  for (const AnyStep& step : steps) {
    if (const auto* edit = std::get_if<EditStep>(&step)) AddStrips(strips, edit->edit);
  }
  return strips;
}

template <class Apply>
Picture Changed(Picture picture, const Apply& apply) {
  apply(picture);
  return picture;
}

SaveOptions AsTiff(SaveOptions options) {
  options.type = PictureType::tiff;
  return options;
}

/// The upright picture of another page of a file.
Picture OtherPage(const detail::PagePart& part) {
  try {
    return detail::PictureParts::Of(
        part.source->Page() == part.page ? part.source : part.source->OpenPage(part.page));
  } catch (const UnsupportedError& error) {
    throw UnsupportedError(fmt::format("page {}: {}", part.page, error.Reason()), error.File());
  }
}

}  // namespace

void AddStrips(MetadataEdit& strips, const MetadataEdit& edit) {
  strips.stripAll = strips.stripAll || edit.stripAll;
  strips.stripProfile = strips.stripProfile || edit.stripProfile;
  strips.stripGps = strips.stripGps || edit.stripGps;
  strips.stripThumbnail = strips.stripThumbnail || edit.stripThumbnail;
  strips.stripMakerNote = strips.stripMakerNote || edit.stripMakerNote;
  strips.remove.insert(strips.remove.end(), edit.remove.begin(), edit.remove.end());
}

MetadataEdit StripsIn(const std::vector<RecipeStep>& steps) {
  return StripsOfSteps(steps);
}

RecipeOutput::RecipeOutput(const Picture& source, const Recipe& recipe, const RecipeSlots& slots)
    : page_(Changed(source, [&](Picture& picture) { ApplyRecipe(picture, recipe, slots); })),
      strips_(StripsOfSteps(page_.Steps())) {}

RecipeOutput::RecipeOutput(const Picture& changed, const RecipeSave& save)
    : page_(Changed(changed, [&](Picture& picture) { ApplySaving(picture, save); })),
      strips_(StripsOfSteps(page_.Steps())) {}

bool RecipeOutput::StripsOthers(PictureType type, const SaveOptions& options) const {
  return type == PictureType::tiff && !strips_.IsEmpty() && !options.onlyThisPage &&
         page_.SourceType() == PictureType::tiff && page_.Pages() > 1;
}

/// Of a TIFF file. A page that is stripped is no longer copied as it is.
detail::FileParts RecipeOutput::Parts(const SaveOptions& options) const {
  detail::FileParts parts = detail::PartsOf(page_, PictureType::tiff, options);
  for (detail::PagePart& part : parts.pages) {
    if (part.state) continue;
    const Picture stripped = OtherPage(part).Edit(strips_);
    part = {detail::PictureParts::Source(stripped), detail::PictureParts::SharedState(stripped),
            part.page};
  }
  return parts;
}

Report RecipeOutput::Plan(const std::string& file, const SaveOptions& options) const {
  if (!StripsOthers(detail::TargetType(file, options), options)) return page_.Plan(file, options);
  return detail::PlanOfFile(Parts(options), file, options);
}

Report RecipeOutput::PlanStream(const SaveOptions& options) const {
  if (!StripsOthers(options.type.value_or(page_.SourceType()), options)) {
    return page_.PlanStream(options);
  }
  const SaveOptions typed = AsTiff(options);
  return detail::ForeseeParts(Parts(typed), typed, false);
}

Report RecipeOutput::Save(const std::string& file, const SaveOptions& options,
                          const Run& run) const {
  PendingSave save = Prepare(file, options, run);
  save.Commit();
  return save.Report();
}

PendingSave RecipeOutput::Prepare(const std::string& file, const SaveOptions& options,
                                  const Run& run) const {
  if (!StripsOthers(detail::TargetType(file, options), options)) {
    return {page_, file, options, run};
  }
  return {Parts(options), file, options, run};
}

Report RecipeOutput::Save(TStream& stream, const SaveOptions& options, const Run& run) const {
  if (!StripsOthers(options.type.value_or(page_.SourceType()), options)) {
    return page_.Save(stream, options, run);
  }
  detail::RunScope scope(run);
  const SaveOptions typed = AsTiff(options);
  return detail::WriteParts(stream, Parts(typed), typed, false, scope);
}

}  // namespace rasterkit
