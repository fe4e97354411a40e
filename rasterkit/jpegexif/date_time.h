#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The host's date-time value: days since 30 December 1899, 0:00, the time of day as the fraction.
/// For moments before that day the fraction still counts forward within its day: -1.25 is 29
/// December 1899, 6:00.
using TDateTime = double;

/// A day of the Gregorian calendar, years 1 to 9999. Throws ConversionError for a day that does not
/// exist.
RASTERKIT_EXPORT TDateTime EncodeDate(int32_t year, int32_t month, int32_t day);

/// A time of day as a fraction below 1; hours to 23, minutes and seconds to 59, milliseconds to
/// 999. Throws ConversionError beyond.
RASTERKIT_EXPORT TDateTime EncodeTime(int64_t hour, int64_t minute, int64_t second,
                                      int64_t millisecond);

/// Puts a day and a time of day together.
RASTERKIT_EXPORT TDateTime ComposeDateTime(TDateTime date, TDateTime time);

}  // namespace rasterkit
