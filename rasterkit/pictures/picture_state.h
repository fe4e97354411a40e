#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/bands/flow/executor.h>
#include <rasterkit/pictures/sources/picture_source.h>
#include <rasterkit/pictures/steps.h>

namespace rasterkit::detail {

/// Size and kind of rows.
struct KindOfRows {
  Sides sides;
  PixelLayout layout;
};

/// Rows that a stage makes, as foretold.
struct MadeRows : KindOfRows {
  bool isRaster = true;
  /// The picture that is laid over them and read as a whole.
  std::optional<KindOfRows> over;
};

/// The first stages for a smaller form of the source, in place of as many of the picture itself.
struct SmallerStart {
  SmallerForm form;
  Stages stages;
};

/// What is known about a picture after its steps so far, without reading a pixel.
struct PictureState {
  int width = 0, height = 0;
  PixelLayout layout;
  /// How the pixels are held: as a raster or as samples.
  bool isRaster = true;
  Resolution resolution;
  /// From pixel indexes of this picture to those of the source.
  Affine toOld;
  bool pixelsChanged = false, placesChanged = false;
  /// Any step was added, also one that changes no pixel.
  bool hasSteps = false;
  /// The pixels are those of the source, at other places.
  bool keepsValues = true;
  /// Each step so far moved whole pixels, turned or mirrored, or left some out.
  bool onlyMoves = true;
  /// The source's columns run along the rows of this picture, or nearly.
  bool exchangesAxes = false;
  /// In the order in which they were added.
  std::vector<MetadataEdit> edits;
  NumberStretch stretch;
  /// A position for the picture as stored, in place of that of the source.
  std::optional<Affine> given;
  Stages stages;
  /// Those that move pixels, for masks of the page: nearest pixels, and none in the corners.
  Stages maskStages;
  /// One for each stage.
  std::vector<MadeRows> madeByStages;
  /// The moves of the stages, as long as there are no others.
  std::vector<Step> moves;
  std::optional<SmallerStart> smaller;
  /// What the steps lose and note.
  Changes changes;
  /// Doubts about what the steps make.
  std::vector<std::string> warnings;

  /// What follows from the above and the source; see Follow.
  Metadata metadata;
  Placement placement;
  Changes followed;
};

/// The picture of a source without steps.
PictureState StateOf(const PictureSource& source);

/// The steps that make a picture of this EXIF orientation upright.
std::vector<Step> StepsOfOrientation(int orientation);

/// Adds one step: sides, layout, stages and losses. Throws RangeError, with the file's name, if the
/// step does not fit.
void AddStep(PictureState& state, const PictureSource& source, const Step& step);

/// Sets `metadata`, `placement` and `followed`. `thumbnail` is a JPEG file or empty; without one
/// the metadata has none if the pixels changed.
void Follow(PictureState& state, const PictureSource& source,
            std::span<const uint8_t> thumbnail = {});

/// Where the picture lies: the source's position carried through the steps.
std::optional<Affine> PositionOf(const PictureState& state, const PictureSource& source);

/// True if nothing of the file may stay that could hide what an edit removes: previews, trailers.
bool DropsHidden(const PictureState& state);

/// True if the file has a thumbnail that must be made anew when pixels change.
bool NeedsThumbnail(const PictureState& state, const PictureSource& source);

/// The state with a small picture where the thumbnail of moved pixels goes: which one it is shows
/// only when the blocks are read.
PictureState StateForMove(const PictureState& state, const PictureSource& source);

/// The number that means "not measured" in the source.
std::optional<double> NoDataOf(const PictureSource& source);

/// What a report says before any pixel is read: faults of the source and doubts.
std::vector<std::string> WarningsOf(const PictureSource& source, const PictureState& state);

/// True if pixels of both kinds fit one form. Which gray number is white is a matter of the form.
bool IsSameKind(const PixelLayout& a, const PixelLayout& b);

/// Bytes of rows of this size.
uint64_t BytesOfRows(const PixelLayout& layout, int width, int height);

}  // namespace rasterkit::detail
