#include "Libs/Tarnel/Platform/src/Common/Platform_LocalTime.h"

#include <algorithm>
#include <cstdio>

namespace Platform {

TimePrefix FormatTimePrefix(const LocalTime& time) {
    // Each field is held within its width, so that the prefix has its one length whatever the clock says.
    const auto field = [](int value, int max) { return std::clamp(value, 0, max); };
    TimePrefix prefix;
    std::snprintf(prefix.text, sizeof(prefix.text), "[%04d-%02d-%02d %02d:%02d:%02d]\t",
                  field(time.year, 9999), field(time.month, 99), field(time.day, 99), field(time.hour, 99),
                  field(time.minute, 99), field(time.second, 99));
    return prefix;
}

} // namespace Platform
