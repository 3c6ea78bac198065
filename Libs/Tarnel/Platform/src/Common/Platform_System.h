#pragma once

#include <cstdint>

// What the operating system says about now and about threads.

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

// Now. All fields are 0 if the system can't say.
LocalTime CurrentLocalTime();

// Stands for something that is in force while the receipt lives; destroying the receipt undoes it.
class Receipt {
public:
    virtual ~Receipt() = default;
    Receipt(const Receipt&) = delete; // it is undone once
    Receipt& operator=(const Receipt&) = delete;

protected:
    Receipt() = default;
};

} // namespace Platform

uint32_t GetCurrentThreadIdImpl();

// The main thread: the one that made the first call. Any thread may call it afterwards.
inline uint32_t GetMainThreadId() {
    static const uint32_t mainThreadId = GetCurrentThreadIdImpl();
    return mainThreadId;
}
