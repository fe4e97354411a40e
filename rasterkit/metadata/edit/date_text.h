#pragma once

#include <string>
#include <string_view>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A moment as people and files write it.
struct MomentText {
  /// "2019:07:04" and "13:05:09".
  std::string day, time;
  /// Digits behind the second; empty if there are none.
  std::string fraction;
  /// "+02:00"; empty if it is not stated.
  std::string offset;

  /// "2019:07:04 13:05:09".
  std::string Exif() const { return day + " " + time; }
  /// "2019-07-04T13:05:09", with fraction and offset.
  RASTERKIT_EXPORT std::string Iso() const;
};

/// Reads "2019:07:04 13:05:09" or "2019-07-04T13:05:09", with a fraction of the second and an
/// offset ("Z", "+02:00") or without them. Throws RangeError: "is no date and time ...".
RASTERKIT_EXPORT MomentText ReadMoment(std::string_view text);

/// Reads "2019:07:04" or "2019-07-04"; gives the first form. Throws RangeError.
RASTERKIT_EXPORT std::string ReadDay(std::string_view text);

/// Reads "Z" or "+02:00"; gives the second form. Throws RangeError.
RASTERKIT_EXPORT std::string ReadOffset(std::string_view text);

/// Reads "13:05:09"; throws RangeError.
RASTERKIT_EXPORT std::string ReadTime(std::string_view text);

}  // namespace rasterkit
