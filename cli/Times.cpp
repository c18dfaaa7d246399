#include "cli/Times.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace LldpCli {

double secondsSince(const Json& time, double now) {
   return std::max(0.0, std::round((now - time.get<double>()) * 1000) / 1000);
}

void putSince(Json& view, const char* name, const Json& time, double now) {
   bool happened = time.is_number() && time.get<double>() > 0;
   if (happened) view[name] = secondsSince(time, now);
}

std::string duration(double seconds) {
   constexpr long long minute = 60;
   constexpr long long hour = 60 * minute;
   constexpr long long day = 24 * hour;
   auto whole = static_cast<long long>(seconds);
   if (whole < minute) return fmt::format("{} s", whole);
   if (whole < hour) return fmt::format("{} min {} s", whole / minute, whole % minute);
   if (whole < day) return fmt::format("{} h {} min", whole / hour, whole % hour / minute);
   return fmt::format("{} d {} h", whole / day, whole % day / hour);
}

}  // namespace LldpCli
