#include "tool/pictures/recipe_options.h"

#include "tool/arguments/color_argument.h"

namespace rasterkit::tool {
namespace {

/// All that can be kept is gone: what else is stripped is part of it.
bool StripsAllAlone(const MetadataEdit& edit) {
  MetadataEdit rest = edit;
  rest.stripAll = rest.stripGps = rest.stripThumbnail = rest.stripMakerNote = false;
  return edit.stripAll && rest.IsEmpty();
}

bool IsOnly(const MetadataEdit& edit, bool MetadataEdit::*strip) {
  MetadataEdit rest = edit;
  rest.*strip = false;
  return edit.*strip && rest.IsEmpty();
}

RecipeSave::Keep KeepOf(const MetadataEdit& edit) {
  if (StripsAllAlone(edit)) return RecipeSave::Keep::nothing;
  if (IsOnly(edit, &MetadataEdit::stripGps)) return RecipeSave::Keep::withoutGps;
  return RecipeSave::Keep::all;
}

}  // namespace

RecipeSave RecipeSaveOf(const PictureOptions& options) {
  RecipeSave save;
  if (options.bits != 0) save.bits = options.bits;
  save.compression = options.compression;
  save.quality = options.quality;
  save.chromaX = options.chromaX;
  save.chromaY = options.chromaY;
  save.pngLevel = options.pngLevel;
  save.lossless = options.lossless.value_or(Lossless::exact);
  save.background = ParseColor(options.background).value_or(clWhite);
  save.metadata = KeepOf(options.edit);
  return save;
}

void AddSave(PictureOptions& options, const RecipeSave& save) {
  if (options.bits == 0) options.bits = save.bits.value_or(0);
  if (!options.compression) options.compression = save.compression;
  if (!options.quality) options.quality = save.quality;
  if (options.chromaX == 0) {
    options.chromaX = save.chromaX;
    options.chromaY = save.chromaY;
  }
  if (!options.pngLevel) options.pngLevel = save.pngLevel;
  if (!options.lossless) options.lossless = save.lossless;
  if (options.background.empty()) options.background = DigitsOf(save.background);
  if (save.metadata == RecipeSave::Keep::nothing) options.edit.stripAll = true;
  if (save.metadata == RecipeSave::Keep::withoutGps) options.edit.stripGps = true;
}

}  // namespace rasterkit::tool
