#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

/// Filter lists of file dialogs: pairs of a description and a pattern, separated by "|". Filter
/// indexes count from 1.
namespace rasterkit {

/// Filter for opening: 1 all supported, 2 bitmap, 3 JPEG, 4 PNG, 5 TIFF, 6 PDF, and with metafiles
/// 7 WMF, 8 EMF.
RASTERKIT_EXPORT std::string GetOpenFilter(bool withMetafiles);

/// Filter for opening a map's background: as GetOpenFilter without metafiles, but "*.tiff" belongs
/// to the TIFF entry only.
RASTERKIT_EXPORT std::string GetGeoOpenFilter();

/// Filter for saving: 1 bitmap, 2 JPEG, 3 PNG, 4 TIFF, and with metafiles 5 WMF, 6 EMF.
RASTERKIT_EXPORT std::string GetSaveFilter(bool withMetafiles);

/// Index of an extension in the save filter (with a dot, the three characters after it count); 1 if
/// it has none.
RASTERKIT_EXPORT int GetSaveFilterIndex(const std::string& ext);

/// Graphic type of an index of the save filter; 1 for an index outside 1 to 6.
RASTERKIT_EXPORT int GetSaveFilterType(int index);

/// Index of an extension in the open filter, "pdf" and metafiles included; 1 if it has none.
RASTERKIT_EXPORT int GetOpenFilterIndex(const std::string& ext);

/// Initial index of the geo filter: one higher than the entry of the extension ("bmp" gives 3, and
/// "pdf" 7, which lies beyond the list).
RASTERKIT_EXPORT int GetGeoOpenFilterIndex(const std::string& ext);

}  // namespace rasterkit
