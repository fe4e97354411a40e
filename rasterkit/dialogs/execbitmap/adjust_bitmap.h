#pragma once

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Runs the window of `ChangeBitmap` (operation 0) with all given values in effect from the start:
/// brightness first, then contrast, sharpness and colors. After refresh was pressed, they are
/// applied in the order in which they were changed.
///
/// Returns true if the user pressed OK: the bitmap is changed then and `values` has the values of
/// the dialog; otherwise both do not change. Brightness and contrast do not change black or white
/// pixels. Throws Error if no window can be opened, and LimitError if the changed picture exceeds
/// the memory budget. Runs on the thread of the application object.
RASTERKIT_EXPORT bool AdjustBitmap(TBitmap& bitmap, TChgBmpValuesRec& values);

}  // namespace rasterkit
