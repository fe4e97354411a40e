#pragma once

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The window of `ChangeBitmap` (operation 0) for those who give values to begin with and expect to
/// see them: each of them counts from the start, brightness first, then contrast, sharpness and
/// colours. Once refresh was pressed, they are applied in the order in which they were touched.
///
/// True, with the bitmap changed and the values of the dialog in `values`, when the user pressed
/// OK; otherwise both stay as they were. Brightness and contrast leave pixels that are black or
/// white as they are. Throws Error when no window can be opened, and LimitError when the changed
/// picture exceeds the memory budget. Runs on the thread of the application object.
RASTERKIT_EXPORT bool AdjustBitmap(TBitmap& bitmap, TChgBmpValuesRec& values);

}  // namespace rasterkit
