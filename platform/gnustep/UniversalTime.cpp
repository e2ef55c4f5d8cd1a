#include "platform/gnustep/UniversalTime.h"

#include <array>
#include <cstdio>

namespace vantrel::gnustep {

std::string universalTime(std::chrono::sys_seconds time) {
    using namespace std::chrono;
    const auto midnight = floor<days>(time);
    const year_month_day date(midnight);
    const auto ofDay = static_cast<unsigned>((time - midnight).count());
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02u:%02u:%02uZ", int{date.year()}, unsigned{date.month()},
                  unsigned{date.day()}, ofDay / 3600, ofDay / 60 % 60, ofDay % 60);
    return text.data();
}

}  // namespace vantrel::gnustep
