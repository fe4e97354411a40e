#pragma once

#include <optional>
#include <vector>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// New colors of a palette: one per index of the format; nothing for an index that no pixel uses.
using EntryColors = std::vector<std::optional<TColor>>;

/// Compares a bitmap with a palette with a 24-bit version of the same picture that has other
/// colors. Returns nothing if pixels of the same entry became different: no palette can express
/// that.
RASTERKIT_EXPORT std::optional<EntryColors> ChangedEntries(const TBitmap& before,
                                                           const TBitmap& after);

/// Sets the colors of the entries; see ChangeColors for what is kept.
RASTERKIT_EXPORT void SetEntryColors(TBitmap& bitmap, const EntryColors& colors);

}  // namespace rasterkit::detail
