#pragma once

#include <string>

#include "Tools/SampleGame/src/Options.h"

namespace SampleGame {

// From here on a crash of any thread writes a submission folder, and the process ends with the crash's code.
void InstallCrashHandler(const Options& options);

// Appends a line to the game's log, which goes into the submission, and prints it unless the game is quiet.
void LogLine(const std::string& line);

} // namespace SampleGame
