#pragma once

#include <functional>
#include <string>

// What the measuring programs share: clocks, a fair comparison of a subject with its bound, and the one line
// in which a row is reported. A program measures one row or a few, prints them and ends with exit code 0,
// also when a goal is missed; it calls Fail when a row could not be measured. One thread.
namespace Bench {

// --quick: fewer rounds and less data; shows that everything works, and little about speed.
// --scratch=FOLDER: where files may be made; empty without it.
struct Options {
    bool quick = false;
    std::string scratch;
};
Options ReadOptions(int argc, char** argv);

// Seconds since some moment: of the wall, or of this process's processor time in all threads. Under Wine the
// processor's clock is as coarse as the system's tick (10 ms), so what it measures has to take a second or
// more.
using Clock = double (*)();
double WallSeconds();
double CpuSeconds();

// The most memory, in bytes, that this process had resident up to now.
double PeakResidentBytes();

// What the two took at their best; a machine only ever adds to what a piece of work needs.
struct Best {
    double subject;
    double bound;
};

// Runs the two in turn, rounds times each, so that both meet the same machine.
Best Interleave(int rounds, Clock clock, const std::function<void()>& subject,
                const std::function<void()>& bound);

enum class Goal { AtMost, AtLeast };

// Prints the row with the ratio subject / bound. name has no tab; unit stands behind both figures.
void Report(const std::string& name, const char* unit, double subject, double bound, Goal goal, double limit);

// A line for the reader beside the rows.
void Note(const std::string& text);

// Prints why nothing could be measured and ends the program with exit code 1.
[[noreturn]] void Fail(const std::string& why);

} // namespace Bench
