#pragma once

#include <optional>

#include <rasterkit/bands/color_change.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

class QWidget;

namespace rasterkit {

/// Lets the user change brightness, contrast, sharpness and colors of the shown pixels, which must
/// stay until the call returns and do not change. Nothing if the user canceled. Throws Error if no
/// window can be shown.
RASTERKIT_EXPORT std::optional<AdjustColors> ChooseValues(const TBitmap& pixels,
                                                          const AdjustColors& start = {},
                                                          QWidget* parent = nullptr);

/// The same for the threshold of black and white; no threshold in the answer: the user chose Otsu's
/// rule.
RASTERKIT_EXPORT std::optional<MakeMono> ChooseThreshold(const TBitmap& pixels,
                                                         const MakeMono& start = {},
                                                         QWidget* parent = nullptr);

}  // namespace rasterkit
