#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The host's date-time value: days since 30 December 1899, 0:00, the time of day as the fraction.
/// Before that day too, the fraction counts forward within its day: -1.25 is 29 December 1899,
/// 6:00.
using TDateTime = double;

/// Encodes a day of the Gregorian calendar, years 1 to 9999. Throws ConversionError for a day that
/// does not exist.
RASTERKIT_EXPORT TDateTime EncodeDate(int32_t year, int32_t month, int32_t day);

/// Encodes a time of day as a fraction below 1. Throws ConversionError if hours exceed 23, minutes
/// or seconds 59, or milliseconds 999.
RASTERKIT_EXPORT TDateTime EncodeTime(int64_t hour, int64_t minute, int64_t second,
                                      int64_t millisecond);

/// Combines a day and a time of day.
RASTERKIT_EXPORT TDateTime ComposeDateTime(TDateTime date, TDateTime time);

}  // namespace rasterkit
