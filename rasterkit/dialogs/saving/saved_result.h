#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/pictures/report.h>

/// What a save would write, before it is written. Internal to this folder.
namespace rasterkit::detail {

/// The picture with what `save` says about depth and metadata. Throws RangeError.
Picture PreparedPicture(const Picture& picture, const RecipeSave& save);

/// How `save` writes it to a file of this kind.
SaveOptions OptionsFor(const RecipeSave& save, PictureType type);

/// What a save would do, or why it would fail.
struct PlannedSave {
  std::optional<Report> report;
  /// In English, as the library says it.
  std::string error;
};

/// Plans a save under this name, or to a stream if the name is empty. Never throws but for lack of
/// memory.
PlannedSave PlanOfSave(const Picture& picture, const RecipeSave& save, PictureType type,
                       const std::string& file);

/// Bytes of the file that a save makes: it is written, and nothing is kept. `progress` is called
/// with 0 to 1. Throws what Picture::Save throws.
uint64_t CountBytesOfSave(const Picture& picture, const RecipeSave& save, PictureType type,
                          std::stop_token cancel, const std::function<void(double)>& progress);

/// A rectangle of a picture, in its pixels.
struct PartOfPicture {
  int left = 0, top = 0, width = 0, height = 0;
  bool Contains(const PartOfPicture& other) const;
  friend bool operator==(const PartOfPicture&, const PartOfPicture&) = default;
};

struct ShownPart {
  PartOfPicture place;
  /// Null if the part could not be made.
  std::shared_ptr<const TBitmap> pixels;
};

/// The largest part that is encoded for a view of `wanted`: it begins and ends at borders of blocks
/// of every sampling, with a block more on each side, so that the pixels are those of the whole
/// picture saved.
PartOfPicture BlocksAround(const PartOfPicture& wanted, int width, int height);

/// The pixels of a part before saving. Throws what Picture::Bitmap throws.
ShownPart PartBefore(const Picture& picture, const PartOfPicture& place, std::stop_token cancel);

/// The same part as it is read back from a file with these settings.
ShownPart PartAfter(const Picture& picture, const RecipeSave& save, PictureType type,
                    const PartOfPicture& place, std::stop_token cancel);

}  // namespace rasterkit::detail
