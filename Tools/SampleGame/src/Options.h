#pragma once

#include <cstdint>
#include <string>

namespace SampleGame {

enum class CrashKind { None, AccessViolation, Abort, Exception };

struct Options {
    std::string dumpsFolder = "dumps";
    std::string name; // of the submission; empty: made of the time and the process id
    CrashKind crash = CrashKind::AccessViolation;
    uint32_t attachmentCount = 1;
    uint64_t attachmentSize = 4096;
    uint32_t stayAliveMs = 0;   // runs this long before it crashes or ends
    bool failInHandler = false; // the crash handler itself crashes before the header is written
    bool quiet = false;
};

// Reads "--option value" pairs (argv in UTF-8). An empty result is success, else it says what is wrong.
std::string ParseOptions(int argc, const char* const* argv, Options& options);

// What the program prints when its arguments are wrong.
extern const char g_usage[];

} // namespace SampleGame
