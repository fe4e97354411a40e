#include <algorithm>
#include <array>

#include <rasterkit/metadata/edit/date_text.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

constexpr size_t kDayLetters = 10, kTimeLetters = 8, kOffsetLetters = 6;
constexpr const char* kMoment =
    "no date and time such as 2019-07-04T13:05:09 or \"2019:07:04 13:05:09\"";

bool IsDigit(char letter) {
  return letter >= '0' && letter <= '9';
}

/// True if the text has the form; 'd' stands for a digit, '-' for a separator of a day.
bool Has(std::string_view text, std::string_view form) {
  return text.size() == form.size() &&
         std::equal(text.begin(), text.end(), form.begin(), [](char letter, char wanted) {
           if (wanted == 'd') return IsDigit(letter);
           return wanted == '-' ? letter == '-' || letter == ':' : letter == wanted;
         });
}

int NumberAt(std::string_view text, size_t at, size_t digits = 2) {
  int number = 0;
  for (size_t i = at; i < at + digits; ++i) number = number * 10 + (text[i] - '0');
  return number;
}

int DaysOf(int year, int month) {
  constexpr std::array kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  constexpr int kFebruary = 2, kCentury = 100, kFourCenturies = 400;
  const bool isLeap = (year % 4 == 0 && year % kCentury != 0) || year % kFourCenturies == 0;
  return kDays[static_cast<size_t>(month - 1)] + (month == kFebruary && isLeap ? 1 : 0);
}

bool IsDay(std::string_view text) {
  constexpr size_t kMonthAt = 5, kDayAt = 8;
  constexpr int kMonths = 12;
  if (!Has(text, "dddd-dd-dd") || text[4] != text[7]) return false;
  const int year = NumberAt(text, 0, 4), month = NumberAt(text, kMonthAt);
  if (year == 0 || month < 1 || month > kMonths) return false;
  const int day = NumberAt(text, kDayAt);
  return day >= 1 && day <= DaysOf(year, month);
}

bool IsTime(std::string_view text) {
  constexpr int kHours = 24, kSixty = 60;
  return Has(text, "dd:dd:dd") && NumberAt(text, 0) < kHours && NumberAt(text, 3) < kSixty &&
         NumberAt(text, 6) < kSixty;
}

/// No place is more than 14 hours off.
bool IsOffset(std::string_view text) {
  constexpr int kMostHours = 14, kSixty = 60;
  return (Has(text, "+dd:dd") ||
          (Has(text.substr(std::min<size_t>(1, text.size())), "dd:dd") && text[0] == '-')) &&
         NumberAt(text, 1) <= kMostHours && NumberAt(text, 4) < kSixty;
}

[[noreturn]] void Refuse(std::string_view text, const char* why) {
  throw RangeError("\"" + std::string(text) + "\" is " + why);
}

}  // namespace

std::string MomentText::Iso() const {
  std::string iso = day + "T" + time;
  iso[4] = iso[7] = '-';
  if (!fraction.empty()) iso += "." + fraction;
  return iso + offset;
}

std::string ReadDay(std::string_view given) {
  const std::string text = Trim(given);
  if (!IsDay(text)) Refuse(given, "no day such as 2019-07-04");
  std::string day = text;
  day[4] = day[7] = ':';
  return day;
}

std::string ReadTime(std::string_view given) {
  std::string text = Trim(given);
  if (!IsTime(text)) Refuse(given, "no time such as 13:05:09");
  return text;
}

std::string ReadOffset(std::string_view given) {
  std::string text = Trim(given);
  if (text == "Z") return "+00:00";
  if (!IsOffset(text)) Refuse(given, "no offset such as +02:00");
  return text;
}

MomentText ReadMoment(std::string_view given) {
  const std::string text = Trim(given);
  constexpr size_t kTimeAt = kDayLetters + 1, kRestAt = kTimeAt + kTimeLetters;
  if (text.size() < kRestAt || (text[kDayLetters] != ' ' && text[kDayLetters] != 'T')) {
    Refuse(given, kMoment);
  }
  MomentText moment;
  const std::string day = text.substr(0, kDayLetters);
  moment.time = text.substr(kTimeAt, kTimeLetters);
  if (!IsDay(day) || !IsTime(moment.time)) Refuse(given, kMoment);
  moment.day = ReadDay(day);
  std::string rest = text.substr(kRestAt);
  if (!rest.empty() && rest[0] == '.') {
    const auto end = std::find_if_not(rest.begin() + 1, rest.end(), IsDigit);
    moment.fraction.assign(rest.begin() + 1, end);
    constexpr size_t kMostDigits = 9;
    if (moment.fraction.empty() || moment.fraction.size() > kMostDigits) Refuse(given, kMoment);
    rest.erase(rest.begin(), end);
  }
  if (rest.empty()) return moment;
  if (rest != "Z" && !(rest.size() == kOffsetLetters && IsOffset(rest))) Refuse(given, kMoment);
  moment.offset = ReadOffset(rest);
  return moment;
}

}  // namespace rasterkit
