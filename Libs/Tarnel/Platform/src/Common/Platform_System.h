#pragma once

#include <cstdint>
#include <memory>

// What the operating system says about now, about threads and about the console.

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

// Something that is in force while its receipt lives. The destructor undoes it.
class Receipt {
public:
    virtual ~Receipt() = default;
    Receipt(const Receipt&) = delete; // it is undone once
    Receipt& operator=(const Receipt&) = delete;

protected:
    Receipt() = default;
};

// For console programs. The standard streams carry bytes unchanged, and a Windows console shows UTF-8 while
// the receipt lives; it gets its own code page back at the end, also after Ctrl+C. One at a time.
std::unique_ptr<Receipt> UseUtf8Console();

// Whether a person sees standard error.
bool IsErrorTerminal();

} // namespace Platform

uint32_t GetCurrentThreadIdImpl();

// The main thread: the one that made the first call. Any thread may call it afterwards.
inline uint32_t GetMainThreadId() {
    static const uint32_t mainThreadId = GetCurrentThreadIdImpl();
    return mainThreadId;
}
