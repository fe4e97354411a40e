#pragma once

#include <rasterkit/runtime/export.h>

/// Start-up and shut-down of the library, which registers picture formats while it is loaded.
///
/// Each unit counts its initializations: its start-up runs at the first one, its shut-down at the
/// last finalization. Loading the library initializes all units once, and unloading finalizes them
/// once, so a host need not call anything. A host that does must call both equally often. May be
/// called on any thread.
namespace rasterkit {

enum class Unit {
  Bitmaptools,
  Jpegexif,
  Tifftobmp,
  Editchangesize,
  Editpdfbitmap,
  Savedlgbitmap,
  Savedlgext
};

/// Initializes a unit. Bitmaptools registers "JPG" ("JPeg", TJPEGImage), Tifftobmp "TIF" ("Tiff
/// Files", TWICBitmap); the other units only count.
RASTERKIT_EXPORT void InitializeUnit(Unit unit);
/// Finalizes a unit; no-op if it is not initialized.
RASTERKIT_EXPORT void FinalizeUnit(Unit unit);
/// Returns how often the unit is initialized now.
RASTERKIT_EXPORT int InitializationCount(Unit unit);

/// Initializes all units in their order.
RASTERKIT_EXPORT void Initialize();
/// Finalizes all units in the reverse order.
RASTERKIT_EXPORT void Finalize();

}  // namespace rasterkit
