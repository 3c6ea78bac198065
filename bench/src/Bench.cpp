#include "bench/src/Bench.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace Bench {

namespace {

double Measure(Clock clock, const std::function<void()>& work) {
    const double start = clock();
    work();
    return clock() - start;
}

} // namespace

Options ReadOptions(int argc, char** argv) {
    constexpr std::string_view Scratch = "--scratch=";
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--quick") {
            options.quick = true;
        } else if (argument.substr(0, Scratch.size()) == Scratch) {
            options.scratch = argument.substr(Scratch.size());
        } else {
            Fail("unknown option " + std::string(argument));
        }
    }
    return options;
}

double WallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Best Interleave(int rounds, Clock clock, const std::function<void()>& subject,
                const std::function<void()>& bound) {
    constexpr double Never = std::numeric_limits<double>::infinity();
    Best best = {Never, Never};
    for (int round = 0; round < rounds; ++round) {
        best.bound = std::min(best.bound, Measure(clock, bound));
        best.subject = std::min(best.subject, Measure(clock, subject));
    }
    return best;
}

void Report(const std::string& name, const char* unit, double subject, double bound, Goal goal,
            double limit) {
    const double ratio = subject / bound;
    const bool reached = goal == Goal::AtMost ? ratio <= limit : ratio >= limit;
    std::printf("ROW\t%s\t%.3f %s\t%.3f %s\t%.3f\t%s %.4g\t%s\n", name.c_str(), subject, unit, bound, unit,
                ratio, goal == Goal::AtMost ? "<=" : ">=", limit, reached ? "ok" : "MISSED");
    std::fflush(stdout);
}

void Note(const std::string& text) {
    std::printf("  %s\n", text.c_str());
    std::fflush(stdout);
}

void Fail(const std::string& why) {
    std::fprintf(stderr, "bench: %s\n", why.c_str());
    std::fflush(nullptr);
    std::_Exit(1); // other threads may be at work: nothing is torn down under them
}

} // namespace Bench
