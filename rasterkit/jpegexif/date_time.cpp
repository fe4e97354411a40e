#include <chrono>
#include <string>

#include <rasterkit/jpegexif/date_time.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

constexpr double kMillisecondsADay = 24.0 * 60 * 60 * 1000;

}  // namespace

TDateTime EncodeDate(int32_t year, int32_t month, int32_t day) {
  using namespace std::chrono;
  const bool inRange =
      year >= 1 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 && day <= 31;
  const year_month_day date{std::chrono::year(inRange ? year : 1),
                            std::chrono::month(static_cast<unsigned>(inRange ? month : 1)),
                            std::chrono::day(static_cast<unsigned>(inRange ? day : 1))};
  if (!inRange || !date.ok()) {
    throw ConversionError("no such date: year " + std::to_string(year) + ", month " +
                          std::to_string(month) + ", day " + std::to_string(day));
  }
  constexpr sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
  return static_cast<double>((sys_days(date) - kDayZero).count());
}

bool IsTimeOfDay(int64_t hour, int64_t minute, int64_t second, int64_t millisecond) {
  return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60 &&
         millisecond >= 0 && millisecond < 1000;
}

TDateTime EncodeTime(int64_t hour, int64_t minute, int64_t second, int64_t millisecond) {
  if (!IsTimeOfDay(hour, minute, second, millisecond)) {
    throw ConversionError("no such time: hour " + std::to_string(hour) + ", minute " +
                          std::to_string(minute) + ", second " + std::to_string(second));
  }
  const int64_t total = ((hour * 60 + minute) * 60 + second) * 1000 + millisecond;
  return static_cast<double>(total) / kMillisecondsADay;
}

TDateTime ComposeDateTime(TDateTime date, TDateTime time) {
  return date < 0 ? date - time : date + time;
}

}  // namespace rasterkit
