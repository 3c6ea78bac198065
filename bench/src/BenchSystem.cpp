#include <windows.h>

#include <psapi.h>

#include "bench/src/Bench.h"

namespace Bench {

namespace {

double Seconds(const FILETIME& time) {
    return (time.dwHighDateTime * 4294967296.0 + time.dwLowDateTime) * 1e-7;
}

} // namespace

double CpuSeconds() {
    FILETIME created = {};
    FILETIME ended = {};
    FILETIME kernel = {};
    FILETIME user = {};
    if (!GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user)) {
        Fail("the system does not tell the processor time");
    }
    return Seconds(kernel) + Seconds(user);
}

double PeakResidentBytes() {
    PROCESS_MEMORY_COUNTERS counters = {};
    if (!K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) {
        Fail("the system does not tell the memory");
    }
    return static_cast<double>(counters.PeakWorkingSetSize);
}

} // namespace Bench
