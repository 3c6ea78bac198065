#pragma once

namespace Platform {

// A moment in the local time zone. Year in full, month and day from 1.
struct LocalTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Now. All fields are 0 when the system cannot say.
LocalTime CurrentLocalTime();

// "[year-month-day hour:minute:second]\t" with a terminator, for the entries of a log.
struct TimePrefix {
    static constexpr int Length = 22;
    char text[Length + 1];
};
TimePrefix FormatTimePrefix(const LocalTime& time);

} // namespace Platform
