#pragma once

#include <rasterkit/runtime/export.h>

/// Start-up and shut-down of the package, which registers picture formats with the host while it is
/// loaded.
///
/// Each unit counts how often it was initialised: its start-up runs at the first time, its
/// shut-down at the last finalisation. Loading the library initialises all units once and unloading
/// finalises them once, so that a host need not call anything; one that does must call both equally
/// often. Safe on any thread.
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

/// Bitmaptools registers "JPG" ("JPeg", TJPEGImage), Tifftobmp "TIF" ("Tiff Files", TWICBitmap);
/// the other units only count.
RASTERKIT_EXPORT void InitializeUnit(Unit unit);
/// Does nothing when the unit is not initialised.
RASTERKIT_EXPORT void FinalizeUnit(Unit unit);
RASTERKIT_EXPORT int InitializationCount(Unit unit);

/// All units, in their order; finalised the other way round.
RASTERKIT_EXPORT void Initialize();
RASTERKIT_EXPORT void Finalize();

}  // namespace rasterkit
