#pragma once

#include <rasterkit/bands/color_change.h>
#include <rasterkit/dialogs/execbitmap/value_change.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// The step of a picture that has the values of a change: all of them at once, each exactly once,
/// in the order of AdjustColors; the task slots do not matter. Operation 5 becomes MakeMono with
/// the threshold of the change. Other operations change nothing.
ColorChange StepOf(const ValueChange& change);

/// Applies a step only to a part of a large picture, which must be inside of it.
///
/// Returns a bitmap of the size of `part` with the format, palette, alpha and transparent color of
/// the whole changed picture: byte-identical to `Picture::Of(picture).Change(step).Bitmap()` there.
/// A threshold must be given. Time and memory depend on the part. Throws LimitError beyond the
/// memory budget.
TBitmap ChangeStepPart(const TBitmap& picture, const TRect& part, const ColorChange& step);

/// The same for the values of a change, as the changed picture would be drawn on the background
/// color `ground`: pf32bit, with the size of `part`.
TBitmap DrawStepPart(const TBitmap& picture, const TRect& part, const ValueChange& change,
                     TColor ground);

}  // namespace rasterkit
