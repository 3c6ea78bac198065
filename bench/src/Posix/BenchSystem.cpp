#include <sys/resource.h>

#include "bench/src/Bench.h"

namespace Bench {

namespace {

rusage OwnUsage() {
    rusage usage = {};
    if (getrusage(RUSAGE_SELF, &usage) != 0) {
        Fail("the system does not tell the use of resources");
    }
    return usage;
}

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

} // namespace

double CpuSeconds() {
    const rusage usage = OwnUsage();
    return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

double PeakResidentBytes() {
    return static_cast<double>(OwnUsage().ru_maxrss) * 1024.0;
}

} // namespace Bench
