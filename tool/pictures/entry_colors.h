#pragma once

#include <optional>
#include <vector>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::tool {

/// What became of the colours of a palette: one for each index of the format, nothing for an index
/// that no pixel has.
using EntryColors = std::vector<std::optional<TColor>>;

/// Compares a bitmap with a palette and the same picture in 24 bits with other colours. Nothing
/// when pixels of one entry became different: no palette can say that.
std::optional<EntryColors> ChangedEntries(const TBitmap& before, const TBitmap& after);

/// Gives the entries these colours; see ChangeColors for what stays.
void SetEntryColors(TBitmap& bitmap, const EntryColors& colors);

}  // namespace rasterkit::tool
