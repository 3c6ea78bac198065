#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

// What the measuring programs share. A program measures a piece of work and its bound, prints the figures of
// both, and ends with exit code 0; bench/bench.py makes rows of them. One thread.
namespace Bench {

// Prints why nothing could be measured and ends the program.
[[noreturn]] inline void Fail(const char* why) {
    std::fprintf(stderr, "bench: %s\n", why);
    std::exit(1);
}

// Runs the two in turn, rounds times each, and prints the best of each in seconds: other programs on the
// machine only ever add to it. clock gives seconds since any moment.
template <class Clock, class Subject, class Bound>
void Compare(int rounds, Clock clock, Subject subject, Bound bound) {
    const auto measure = [&](auto& work, double& best) {
        const double start = clock();
        work();
        best = std::min(best, clock() - start);
    };
    double subjectSeconds = std::numeric_limits<double>::infinity();
    double boundSeconds = subjectSeconds;
    for (int round = 0; round < rounds; ++round) {
        measure(bound, boundSeconds);
        measure(subject, subjectSeconds);
    }
    std::printf("FIGURES %.6f %.6f\n", subjectSeconds, boundSeconds);
    std::fflush(stdout);
}

} // namespace Bench
