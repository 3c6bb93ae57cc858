// Reading of ISO 8601 date and time-stamp texts for LDateUtilities. Written by hand rather than
// with date patterns: one strict grammar covers the basic and extended forms and every offset
// form, and rejects what a lenient pattern would quietly accept.

#include <cmath>
#include <optional>
#include <string_view>

#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

struct Stamp {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  double fraction = 0;
  int offsetMinutes = 0;
};

class Cursor {
 public:
  explicit Cursor(std::string_view text) : text_(text) {}

  bool atEnd() const { return position_ == text_.size(); }
  bool accept(char c) {
    if (atEnd() || text_[position_] != c) return false;
    ++position_;
    return true;
  }
  bool peekDigit() const { return !atEnd() && text_[position_] >= '0' && text_[position_] <= '9'; }
  // Exactly `count` digits.
  std::optional<int> digits(int count) {
    int value = 0;
    for (int i = 0; i < count; ++i) {
      if (!peekDigit()) return std::nullopt;
      value = value * 10 + (text_[position_++] - '0');
    }
    return value;
  }
  // The digits of a decimal fraction (after its separator), at most nine.
  std::optional<double> fraction() {
    double value = 0;
    double scale = 0.1;
    int count = 0;
    while (peekDigit()) {
      if (++count > 9) return std::nullopt;
      value += (text_[position_++] - '0') * scale;
      scale /= 10;
    }
    if (count == 0) return std::nullopt;
    return value;
  }

 private:
  std::string_view text_;
  size_t position_ = 0;
};

bool readDate(Cursor& in, Stamp& stamp) {
  const auto year = in.digits(4);
  if (!year) return false;
  const bool extended = in.accept('-');
  const auto month = in.digits(2);
  if (!month || (extended && !in.accept('-'))) return false;
  const auto day = in.digits(2);
  if (!day) return false;
  stamp.year = *year;
  stamp.month = *month;
  stamp.day = *day;
  return true;
}

bool readTime(Cursor& in, Stamp& stamp) {
  const auto hour = in.digits(2);
  if (!hour) return false;
  const bool extended = in.accept(':');
  const auto minute = in.digits(2);
  if (!minute) return false;
  stamp.hour = *hour;
  stamp.minute = *minute;
  // Seconds are optional; in the extended form they need their own colon.
  if (extended ? in.accept(':') : in.peekDigit()) {
    const auto second = in.digits(2);
    if (!second) return false;
    stamp.second = *second;
    if (in.accept('.') || in.accept(',')) {
      const auto fraction = in.fraction();
      if (!fraction) return false;
      stamp.fraction = *fraction;
    }
  }
  return true;
}

bool readOffset(Cursor& in, Stamp& stamp) {
  if (in.accept('Z')) return true;
  int sign = 0;
  if (in.accept('+')) {
    sign = 1;
  } else if (in.accept('-')) {
    sign = -1;
  } else {
    return true;  // local time, read as GMT
  }
  const auto hours = in.digits(2);
  if (!hours) return false;
  int minutes = 0;
  if (!in.atEnd()) {
    in.accept(':');
    const auto read = in.digits(2);
    if (!read) return false;
    minutes = *read;
  }
  if (*hours > 23 || minutes > 59) return false;
  stamp.offsetMinutes = sign * (*hours * 60 + minutes);
  return true;
}

std::optional<Stamp> readStamp(std::string_view text, bool& hasTime) {
  Cursor in(text);
  Stamp stamp;
  if (!readDate(in, stamp)) return std::nullopt;
  hasTime = in.accept('T') || in.accept(' ');
  if (hasTime && (!readTime(in, stamp) || !readOffset(in, stamp))) return std::nullopt;
  if (!in.atEnd()) return std::nullopt;
  if (stamp.hour > 23 || stamp.minute > 59 || stamp.second > 59) return std::nullopt;
  return stamp;
}

}  // namespace

std::optional<Date> LDateUtilities::dateFromISO8601String(std::string_view text) {
  bool hasTime = false;
  const auto stamp = readStamp(text, hasTime);
  if (!stamp) return std::nullopt;
  return dateWithYear(stamp->year, stamp->month, stamp->day);
}

std::optional<Date> LDateUtilities::timestampFromISO8601String(std::string_view text) {
  bool hasTime = false;
  const auto stamp = readStamp(text, hasTime);
  if (!stamp) return std::nullopt;
  const auto day = dateWithYear(stamp->year, stamp->month, stamp->day);
  if (!day) return std::nullopt;
  const double midnight = day->timeIntervalSinceReferenceDate() - 43200.0;
  const double seconds = stamp->hour * 3600.0 + stamp->minute * 60.0 + stamp->second +
                         stamp->fraction - stamp->offsetMinutes * 60.0;
  return Date(midnight + seconds);
}

}  // namespace ledgeon
