#pragma once

#include <cstdint>
#include <string>

namespace SampleGame {

struct SubmissionSettings {
    std::string dumpsFolder = "dumps";
    std::string name; // of the submission folder
    uint32_t attachmentCount = 1;
    uint64_t attachmentSize = 4096; // bytes
    bool failInHandler = false;     // the handler itself dies before the header is written
    bool quiet = false;             // prints nothing
};

// From here on a crash of any thread writes a submission folder, and the process ends with the crash's code.
// Keeps room on the calling thread's stack for that, should the stack overflow; a game's other threads need a
// call of SetThreadStackGuarantee each.
void InstallCrashHandler(const SubmissionSettings& settings);

// Appends a line to the game's log, which becomes part of the submission, and prints it unless quiet. Main
// thread.
void LogLine(const std::string& line);

} // namespace SampleGame
