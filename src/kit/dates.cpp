#include "kit/dates.hpp"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "utils/text.hpp"

namespace corvantile::kit {

std::chrono::sys_seconds now() {
  if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"); epoch != nullptr) {
    if (const auto seconds = parse_integer(epoch)) return std::chrono::sys_seconds(std::chrono::seconds(*seconds));
  }
  return std::chrono::time_point_cast<std::chrono::seconds>(std::chrono::system_clock::now());
}

std::string date_text(std::chrono::sys_seconds at) {
  using namespace std::chrono;
  static constexpr std::array days_of_week{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr std::array months_of_year{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const auto day = floor<days>(at);
  const year_month_day date(day);
  const hh_mm_ss time(at - day);
  const auto two = [](std::int64_t v) {
    std::string digits = integer_field(v);
    if (v < 10) digits.insert(0, 1, '0');
    return digits;
  };
  return std::string(days_of_week[weekday(day).c_encoding()]) + ' ' +
         months_of_year[static_cast<unsigned>(date.month()) - 1] + ' ' + two(static_cast<unsigned>(date.day())) +
         ' ' + two(time.hours().count()) + ':' + two(time.minutes().count()) + ':' + two(time.seconds().count()) +
         ' ' + std::to_string(static_cast<int>(date.year()));
}

}  // namespace corvantile::kit
