#pragma once

#include <cstdint>

/// Tags of EXIF blocks that lead to other bytes, follow the pixels or tell facts.
namespace rasterkit::exif {

// Main and thumbnail directories.
inline constexpr uint16_t kWidth = 256, kHeight = 257, kCompression = 259, kMake = 271,
                          kModel = 272;
inline constexpr uint16_t kStripPlaces = 273, kOrientation = 274, kStripBytes = 279;
inline constexpr uint16_t kResolutionX = 282, kResolutionY = 283, kResolutionUnit = 296;
inline constexpr uint16_t kDateChanged = 306;
inline constexpr uint16_t kJpegPlace = 513, kJpegBytes = 514;
inline constexpr uint16_t kExifPointer = 34665, kGpsPointer = 34853, kInteropPointer = 40965;

// EXIF directory.
inline constexpr uint16_t kDateTaken = 36867, kDateDigitized = 36868;
inline constexpr uint16_t kSubjectArea = 37396, kMakerNote = 37500;
inline constexpr uint16_t kColorSpace = 40961, kPixelWidth = 40962, kPixelHeight = 40963;
inline constexpr uint16_t kFocalPlaneX = 41486, kFocalPlaneY = 41487, kSubjectLocation = 41492;

// Interoperability directory.
inline constexpr uint16_t kRelatedWidth = 4097, kRelatedHeight = 4098;

// GPS directory.
inline constexpr uint16_t kLatitudeRef = 1, kLatitude = 2, kLongitudeRef = 3, kLongitude = 4;
inline constexpr uint16_t kAltitudeRef = 5, kAltitude = 6;

}  // namespace rasterkit::exif
