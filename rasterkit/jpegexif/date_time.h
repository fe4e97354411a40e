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

/// Tells whether there is such a time of day: hours 0 to 23, minutes and seconds 0 to 59,
/// milliseconds 0 to 999.
RASTERKIT_EXPORT bool IsTimeOfDay(int64_t hour, int64_t minute, int64_t second,
                                  int64_t millisecond);

/// Encodes a time of day as a fraction below 1. Throws ConversionError if `IsTimeOfDay` is
/// false.
RASTERKIT_EXPORT TDateTime EncodeTime(int64_t hour, int64_t minute, int64_t second,
                                      int64_t millisecond);

/// Combines a day and a time of day.
RASTERKIT_EXPORT TDateTime ComposeDateTime(TDateTime date, TDateTime time);

}  // namespace rasterkit
